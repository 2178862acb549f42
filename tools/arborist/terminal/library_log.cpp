#include "diagnosis/bundle/library_log.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include <sys/mman.h>

#include "arborist/frame/log.h"
#include "diagnosis/scratch/path_names.h"

namespace diagnosis {

namespace {

constexpr const char* LEVEL_WORDS[] = {"trace", "debug", "info", "warn", "error", "fatal", "none"};
// The tags of the library's own logger, so that a log reads the same wherever it was taken.
constexpr const char* LEVEL_TAGS[] = {"[TRACE] ", "[DEBUG] ", "[INFO] ", "[WARN] ", "[ERROR] ", "[FATAL] "};

const PathNames* pathNames = nullptr;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

LogListener* listener = nullptr;

// The file as it was given, and why a line could not be written, in memory that forks of the process share; 0 while
// all could be.
std::string fileName;
std::atomic<int>* failure = nullptr;
static_assert(std::atomic<int>::is_always_lock_free);

std::atomic<int>* SharedNumber()
{
    void* memory = mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? throw std::bad_alloc() : new (memory) std::atomic<int>(0);
}

// Every line is "FUNc:function: message".
void Tell(LogListener& to, const std::string& line)
{
    static constexpr std::string_view HEAD = "FUNc:";
    const auto start = line.find(HEAD);
    const auto end = line.find(": ", start);
    if (start != std::string::npos && end != std::string::npos) {
        const auto function = start + HEAD.size();
        to.OnLine(line.substr(function, end - function), line.substr(end + 2, line.size() - end - 3));
    }
}

class LevelLogger : public FT::ILogger {
public:
    LevelLogger(int level, File file) : mLevel(level), mFile(std::move(file)) {}

    void Print(unsigned int level, const std::string& format, va_list args) override
    {
        const bool isForScreen = static_cast<int>(level) >= mLevel;
        const bool isListenedTo = listener != nullptr && listener->IsWanted(level, format);
        if (!isForScreen && mFile == nullptr && !isListenedTo) {
            return;
        }
        const std::string line = Line(level, format, args);
        if (isListenedTo) {
            Tell(*listener, line);
        }
        if (isForScreen) {
            std::fwrite(line.data(), 1, line.size(), stderr);
        }
        if (mFile != nullptr) {
            WriteToFile(line);
        }
    }

private:
    void WriteToFile(const std::string& line)
    {
        errno = 0;
        std::fwrite(line.data(), 1, line.size(), mFile.get());
        if (std::ferror(mFile.get()) != 0) {
            int none = 0;
            failure->compare_exchange_strong(none, errno == 0 ? EIO : errno);
        }
    }

    static std::string Line(unsigned int level, const std::string& format, va_list args)
    {
        std::string line = std::string("[") + (level < std::size(LEVEL_TAGS) ? LEVEL_TAGS[level] : "") + "]:";
        va_list again;
        va_copy(again, args);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // checked where the library logs
        const int length = std::vsnprintf(nullptr, 0, format.c_str(), args);
        if (length > 0) {
            std::vector<char> text(static_cast<std::size_t>(length) + 1);
            std::vsnprintf(text.data(), text.size(), format.c_str(), again);
            line.append(text.data(), static_cast<std::size_t>(length));
        }
#pragma GCC diagnostic pop
        va_end(again);
        return (pathNames == nullptr ? line : pathNames->Shown(line)) + "\n";
    }

    int mLevel;
    File mFile;
};

} // namespace

LogListener::LogListener()
{
    listener = this;
}

LogListener::~LogListener()
{
    listener = nullptr;
}

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
        file.reset(std::fopen(options.file.c_str(), "we"));
        if (file == nullptr) {
            return options.file + ": can't be written: " + std::strerror(errno);
        }
        // Line by line: a crash leaves all that was logged, and several processes can share the file.
        std::setvbuf(file.get(), nullptr, _IOLBF, BUFSIZ);
        fileName = options.file;
        failure = SharedNumber();
    }
    const std::string word = !options.level.empty() ? options.level : file == nullptr ? "error" : "none";
    const int level = LogLevelOf(word).value_or(FT::LEVEL_ERROR);
    FT::Log::GetInstance().SetUserLogger(std::make_unique<LevelLogger>(level, std::move(file)));
    return std::nullopt;
}

std::optional<std::string> LibraryLogProblem()
{
    const int reason = failure == nullptr ? 0 : failure->load();
    return reason == 0 ? std::nullopt : std::optional(fileName + ": can't be written: " + std::strerror(reason));
}

void ShowPathsInLibraryLog(const PathNames* names)
{
    pathNames = names;
}

} // namespace diagnosis
