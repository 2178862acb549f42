#include "diagnosis/process/library_log.h"

#include <cstdio>
#include <iterator>
#include <string_view>
#include <vector>

#include "arborist/frame/log.h"
#include "diagnosis/text/path_names.h"

namespace diagnosis {

namespace {

// The tags of the library's own logger, so that a log reads the same wherever it was taken.
constexpr const char* LEVEL_TAGS[] = {"[TRACE] ", "[DEBUG] ", "[INFO] ", "[WARN] ", "[ERROR] ", "[FATAL] "};

const PathNames* pathNames = nullptr;
LogListener* listener = nullptr;

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

std::string Line(unsigned int level, const std::string& format, va_list args)
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

class SinkLogger : public FT::ILogger {
public:
    explicit SinkLogger(std::unique_ptr<LogSink> sink) : mSink(std::move(sink)) {}

    void Print(unsigned int level, const std::string& format, va_list args) override
    {
        const bool isForSink = mSink->IsWanted(level);
        const bool isListenedTo = listener != nullptr && listener->IsWanted(level, format);
        if (!isForSink && !isListenedTo) {
            return;
        }
        const std::string line = Line(level, format, args);
        if (isListenedTo) {
            Tell(*listener, line);
        }
        if (isForSink) {
            mSink->OnLine(level, line);
        }
    }

private:
    std::unique_ptr<LogSink> mSink;
};

} // namespace

void SendLibraryLogTo(std::unique_ptr<LogSink> sink)
{
    FT::Log::GetInstance().SetUserLogger(std::make_unique<SinkLogger>(std::move(sink)));
}

void GiveLibraryLogBack()
{
    FT::Log::GetInstance().SetUserLogger(std::make_unique<FT::DefaultLogger>());
}

PathsShown::~PathsShown()
{
    pathNames = nullptr;
}

void PathsShown::Show(const PathNames& names)
{
    pathNames = &names;
}

LogListener::LogListener()
{
    listener = this;
}

LogListener::~LogListener()
{
    listener = nullptr;
}

} // namespace diagnosis
