#ifndef ARBORIST_TOOLS_COMMANDS_SECONDS_H
#define ARBORIST_TOOLS_COMMANDS_SECONDS_H

#include <chrono>
#include <string>

namespace CLI {
class App;
class Option;
}

namespace diagnosis::command {

/// An option for a time in seconds, from `least` to a day; what `seconds` holds is what it is unless given.
CLI::Option* AddSeconds(CLI::App& app, const std::string& name, double& seconds, double least,
    const std::string& description);

/// Rounded up: a short time must not become 0, which may stand for no limit.
std::chrono::milliseconds Milliseconds(double seconds);

} // namespace diagnosis::command

#endif
