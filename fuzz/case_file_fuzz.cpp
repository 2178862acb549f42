// Any bytes as a case file: it has cases that expect something, or failures with their reasons.

#include "diagnosis/cases/case_file.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto file = diagnosis::cases::ReadCaseText("a.test.json", text);
    if (file.cases.empty() == file.failures.empty()) {
        std::abort();
    }
    for (const auto& failure : file.failures) {
        if (failure.message.find("a.test.json") != 0) {
            std::abort();
        }
    }
    for (const auto& testCase : file.cases) {
        if (testCase.expected.IsEmpty() || testCase.name.find('\0') != std::string::npos) {
            std::abort();
        }
    }
    return 0;
}
