#include "tools/arborist/terminal/library_log.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>

#include "arborist/frame/log.h"
#include "diagnosis/process/library_log.h"
#include "diagnosis/process/shared_memory.h"
#include "tools/arborist/terminal/console.h"

namespace diagnosis::command {

namespace {

constexpr const char* LEVEL_WORDS[] = {"trace", "debug", "info", "warn", "error", "fatal", "none"};

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

// The name of the file as given, and the error number of a line that could not be written, in memory shared with forked
// processes; 0 as long as there is none.
std::string fileName;
std::atomic<int>* failure = nullptr;
static_assert(std::atomic<int>::is_always_lock_free);

/// Writes lines from a level on to standard error, and all lines to a file if there is one.
class ScreenAndFile : public LogSink {
public:
    ScreenAndFile(int level, File file) : mLevel(level), mFile(std::move(file)) {}

    bool IsWanted(unsigned int level) const override { return mFile != nullptr || IsForScreen(level); }

    void OnLine(unsigned int level, const std::string& line) override
    {
        if (IsForScreen(level)) {
            std::fwrite(line.data(), 1, line.size(), stderr);
        }
        if (mFile != nullptr) {
            WriteToFile(line);
        }
    }

private:
    bool IsForScreen(unsigned int level) const { return static_cast<int>(level) >= mLevel; }

    void WriteToFile(const std::string& line)
    {
        errno = 0;
        std::fwrite(line.data(), 1, line.size(), mFile.get());
        if (std::ferror(mFile.get()) != 0) {
            int none = 0;
            failure->compare_exchange_strong(none, errno == 0 ? EIO : errno);
        }
    }

    int mLevel;
    File mFile;
};

} // namespace

std::optional<int> LogLevelOf(const std::string& word)
{
    for (std::size_t level = 0; level < std::size(LEVEL_WORDS); ++level) {
        if (word == LEVEL_WORDS[level]) {
            return static_cast<int>(level);
        }
    }
    return std::nullopt;
}

std::optional<std::string> OpenLibraryLog(const LogOptions& options)
{
    File file;
    if (!options.file.empty()) {
        file.reset(OpenLineByLine(options.file));
        if (file == nullptr) {
            return options.file + ": can't be written: " + std::strerror(errno);
        }
        fileName = options.file;
        failure = new (TakeSharedMemory(sizeof(std::atomic<int>))) std::atomic<int>(0);
    }
    const int level = LogLevelOf(options.level.empty() ? "none" : options.level).value_or(FT::LEVEL_ERROR);
    SendLibraryLogTo(std::make_unique<ScreenAndFile>(level, std::move(file)));
    return std::nullopt;
}

std::optional<std::string> LibraryLogProblem()
{
    const int reason = failure == nullptr ? 0 : failure->load();
    return reason == 0 ? std::nullopt : std::optional(fileName + ": can't be written: " + std::strerror(reason));
}

} // namespace diagnosis::command
