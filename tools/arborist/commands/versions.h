#ifndef ARBORIST_TOOLS_COMMANDS_VERSIONS_H
#define ARBORIST_TOOLS_COMMANDS_VERSIONS_H

#include <string>

namespace diagnosis::command {

/// Versions of the command and of the libraries that it was built with and, for SQLite, runs with: one JSON object.
std::string VersionsJson();

} // namespace diagnosis::command

#endif
