#ifndef ARBORIST_TOOLS_COMMANDS_VERSIONS_H
#define ARBORIST_TOOLS_COMMANDS_VERSIONS_H

#include <string>

namespace diagnosis::command {

/// One JSON object with the versions of the command and of the libraries that it was built with; for SQLite of the one
/// that it runs with.
std::string VersionsJson();

} // namespace diagnosis::command

#endif
