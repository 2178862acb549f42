#ifndef ARBORIST_TOOLS_COMMANDS_SECONDS_H
#define ARBORIST_TOOLS_COMMANDS_SECONDS_H

#include <chrono>
#include <string>

#include "tools/arborist/options/options.h"

namespace diagnosis::command {

/// Adds an option for a time in seconds, from `least` to a day; its default is the value of `seconds`.
Option AddSeconds(Command app, const std::string& name, double& seconds, double least,
    const std::string& description);

/// Rounds up: a short time must not become 0, which may mean no limit.
std::chrono::milliseconds Milliseconds(double seconds);

} // namespace diagnosis::command

#endif
