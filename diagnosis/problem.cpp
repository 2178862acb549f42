#include "diagnosis/problem.h"

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

} // namespace diagnosis
