// Any text as lines of events for "log import", and as a list of event numbers for "log slice".

#include <sstream>

#include "diagnosis/log_db/event_line.h"
#include "diagnosis/log_db/slice_log.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::string problem;
        if (!diagnosis::ParseEventLine(line, problem) && problem.empty()) {
            std::abort();
        }
    }
    if (const auto ranges = diagnosis::ParseIdRanges(text)) {
        for (const auto& [first, last] : *ranges) {
            if (first > last) {
                std::abort();
            }
        }
    }
    return 0;
}
