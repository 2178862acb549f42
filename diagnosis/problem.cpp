#include "diagnosis/problem.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace diagnosis {

std::string PlacedMessage(const Remark& remark)
{
    if (remark.file.empty()) {
        return remark.message;
    }
    // A message about a file as a whole begins with its path anyway.
    const std::string path = remark.file + ": ";
    const bool hasPath = remark.message.rfind(path, 0) == 0;
    const std::string place = remark.line == 0 ? path : remark.file + ":" + std::to_string(remark.line) + ": ";
    return place + (hasPath ? remark.message.substr(path.size()) : remark.message);
}

bool Failure::IsWorthARetry() const
{
    static constexpr std::string_view OF_THE_MACHINE[] = {
        "no_scratch", "out_of_memory", "timeout", "crashed", "not_copied"};
    return std::find(std::begin(OF_THE_MACHINE), std::end(OF_THE_MACHINE), code) != std::end(OF_THE_MACHINE);
}

} // namespace diagnosis
