#ifndef ARBORIST_TESTS_TOOLS_INPUT_GUARD_H
#define ARBORIST_TESTS_TOOLS_INPUT_GUARD_H

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// Fails the test if a run of the command changes a file that was there before: every file of the test's folder and of
/// the examples that the command line names is an input, but for those that the command line tells it to write. Nothing
/// may appear beside an event log either.
class InputGuard {
public:
    /// `written` are values of the environment that name files which the run may write.
    explicit InputGuard(std::vector<std::string> arguments, std::vector<std::string> written = {});
    ~InputGuard();
    InputGuard(const InputGuard&) = delete;
    InputGuard& operator=(const InputGuard&) = delete;

private:
    /// Length and checksum by path.
    using State = std::map<std::string, std::pair<std::uintmax_t, std::size_t>>;

    State Read() const;
    bool MayBeWritten(const std::string& path) const;

    std::vector<std::string> mArguments;
    std::vector<std::string> mWritten;
    State mBefore;
};

#endif
