// Any bytes as an "extra" to redact, as a whole and line by line.

#include <sstream>

#include "diagnosis/redaction/extra_text.h"
#include "diagnosis/text/json_text.h"
#include "fuzz/fuzz_support.h"

namespace {

// Aborts if a redacted text is not what it says: an object with the same members replaced, or no JSON object.
void Check(const std::string& extra)
{
    diagnosis::LogMembers members;
    members.names = {{"a", "a"}, {"user", "USER"}, {"", ""}};
    const std::string key = "0123456789abcdef";
    const auto redacted = diagnosis::RedactExtra(extra, {&members}, key);
    std::string problem;
    const auto json = diagnosis::ParseJson(redacted.text, problem);
    const bool isObject = json && json->isObject();
    if (!extra.empty() && isObject == redacted.isWhole) {
        std::abort();
    }
    if (!redacted.isWhole && diagnosis::RedactExtra(redacted.text, {&members}, key).members != redacted.members) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    Check(text);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        Check(line);
    }
    return 0;
}
