#include "tests/tools/input_guard.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

bool EndsIn(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool IsOneOf(const std::string& word, std::initializer_list<const char*> words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

bool IsOutput(const std::string& option)
{
    return IsOneOf(option, {"-o", "--output", "--to", "--log-file", "--junit", "--write-baseline", "--man-to",
        "--svg"});
}

bool IsOfABundle(const std::string& path)
{
    const auto isBelow = [&path](const char* folder) { return path.find(folder) != std::string::npos; };
    return isBelow("/programdata/") || isBelow("/device/") || isBelow("/rules/") || EndsIn(path, "/bundle.json")
        || EndsIn(path, ".zip");
}

// The folder of a test, the current directory, is the only one that may be large or change meanwhile.
bool IsFolderOfATest(const std::string& path)
{
    return path.find("/arborist-test-") != std::string::npos;
}

} // namespace

InputGuard::InputGuard(std::vector<std::string> arguments, std::vector<std::string> written)
    : mArguments(std::move(arguments)), mWritten(std::move(written))
{
    for (std::size_t index = 0; index < mArguments.size(); ++index) {
        const auto equals = mArguments[index].find('=');
        if (IsOutput(mArguments[index].substr(0, equals))) {
            const bool isBehind = equals == std::string::npos;
            mWritten.push_back(!isBehind ? mArguments[index].substr(equals + 1)
                : index + 1 < mArguments.size() ? mArguments[index + 1] : "");
        }
    }
    mBefore = Read();
}

InputGuard::~InputGuard()
{
    std::string command;
    for (const std::string& argument : mArguments) {
        command += " " + argument;
    }
    const State after = Read();
    for (const auto& [path, state] : mBefore) {
        const auto now = after.find(path);
        EXPECT_TRUE(MayBeWritten(path) || (now != after.end() && now->second == state))
            << path << " was changed by:" << command;
    }
    for (const auto& [path, state] : after) {
        const auto companion = path.rfind("log.db-");
        const bool isNew = companion != std::string::npos && mBefore.count(path) == 0;
        EXPECT_FALSE(isNew && mBefore.count(path.substr(0, companion) + "log.db") != 0)
            << path << " was made by:" << command;
    }
}

InputGuard::State InputGuard::Read() const
{
    State state;
    std::error_code error;
    std::vector<std::string> folders;
    if (const std::string here = fs::current_path(error).generic_string(); IsFolderOfATest(here)) {
        folders.push_back(here);
    }
    const std::string examples = std::string(ARBORIST_SOURCE_DIR) + "/examples/";
    std::copy_if(mArguments.begin(), mArguments.end(), std::back_inserter(folders),
        [&examples](const std::string& argument) { return argument.compare(0, examples.size(), examples) == 0; });
    for (const std::string& folder : folders) {
        for (auto entry = fs::recursive_directory_iterator(folder, fs::directory_options::skip_permission_denied, error);
             entry != fs::recursive_directory_iterator(); entry.increment(error)) {
            std::error_code ignored;
            if (!entry->is_symlink(ignored) && entry->is_regular_file(ignored)) {
                std::ifstream file(entry->path(), std::ios::binary);
                const std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
                state[entry->path().generic_string()] = {content.size(), std::hash<std::string>()(content)};
            }
        }
    }
    return state;
}

bool InputGuard::MayBeWritten(const std::string& path) const
{
    const auto has = [this](const std::string& word) {
        return std::find(mArguments.begin(), mArguments.end(), word) != mArguments.end();
    };
    if (has("record") && path.find("repair_record.db") != std::string::npos) {
        return true;
    }
    // A program of the test may write what it likes, but for the device that is diagnosed.
    if (has("--code-runner") && !IsOfABundle(path)) {
        return true;
    }
    if ((has("--fix") || has("--unsafe-fixes")) && EndsIn(path, ".xml")) {
        return true;
    }
    return std::any_of(mWritten.begin(), mWritten.end(), [&path](const std::string& written) {
        const std::string plain = fs::path("/" + written).lexically_normal().generic_string();
        return plain != "/" && (EndsIn(path, plain) || path.find(plain + "/") != std::string::npos);
    });
}
