#include "diagnosis/problem.h"

namespace diagnosis {

std::string PlacedMessage(const Warning& warning)
{
    if (warning.file.empty()) {
        return warning.message;
    }
    // A message about a file as a whole begins with its path anyway.
    const std::string path = warning.file + ": ";
    const bool hasPath = warning.message.rfind(path, 0) == 0;
    const std::string place = warning.line == 0 ? path : warning.file + ":" + std::to_string(warning.line) + ": ";
    return place + (hasPath ? warning.message.substr(path.size()) : warning.message);
}

} // namespace diagnosis
