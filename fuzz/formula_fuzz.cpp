// Any text as a formula: the first line is the formula, each further line "name=value" gives a value.

#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

#include "arborist/evaluation/formula.h"
#include "fuzz/fuzz_support.h"

namespace {

using Values = std::map<std::string, std::string, std::less<>>;

Values ValuesOf(std::istream& lines)
{
    Values values;
    for (std::string line; std::getline(lines, line);) {
        const auto sign = line.find('=');
        if (sign != std::string::npos) {
            values[line.substr(0, sign)] = line.substr(sign + 1);
        }
    }
    return values;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
    std::string expression;
    std::getline(lines, expression);
    const auto values = ValuesOf(lines);
    const auto valueOf = [&values](std::string_view name) {
        const auto value = values.find(name);
        return value != values.end() ? &value->second : nullptr;
    };
    const Formula formula(expression);
    const auto plain = formula.Calculate(valueOf, false);
    const auto explained = formula.Calculate(valueOf, true);
    if (plain.result != explained.result || explained.grouping.empty() != plain.result.empty()) {
        std::abort();
    }
    return 0;
}
