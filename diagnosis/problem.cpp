#include "diagnosis/problem.h"

namespace diagnosis {

std::string PlacedMessage(const Problem& problem)
{
    if (problem.file.empty()) {
        return problem.message;
    }
    // A message about a file as a whole begins with its path anyway.
    const std::string path = problem.file + ": ";
    const bool hasPath = problem.message.rfind(path, 0) == 0;
    const std::string place = problem.line == 0 ? path : problem.file + ":" + std::to_string(problem.line) + ": ";
    return place + (hasPath ? problem.message.substr(path.size()) : problem.message);
}

} // namespace diagnosis
