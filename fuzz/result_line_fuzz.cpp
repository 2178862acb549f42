// Any text as lines of results. A reader that remembers pieces of the lines before must answer as if it read each alone.

#include <sstream>

#include "diagnosis/results_db/result_line.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace diagnosis::results_db;
    ResultLineReader reader(false);
    std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
    for (std::string line; std::getline(lines, line);) {
        std::string problem;
        const auto plain = ReadResultLine(line, true, problem);
        std::string otherProblem;
        const auto read = reader.Read(line, otherProblem);
        if (!plain && problem.empty()) {
            std::abort();
        }
        if (plain && (!read || read->bundle != plain->bundle || read->now != plain->now || read->seconds != plain->seconds
                || read->trees.size() != plain->trees.size() || read->warnings.size() != plain->warnings.size())) {
            std::abort();
        }
    }
    return 0;
}
