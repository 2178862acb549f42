#include "diagnosis/process/library_log.h"

#include <cstdio>
#include <iterator>
#include <vector>

#include "arborist/frame/log.h"
#include "diagnosis/text/path_names.h"

namespace diagnosis {

namespace {

// The same tags as in the library's own logger, so that all logs look alike.
constexpr const char* LEVEL_TAGS[] = {"[TRACE] ", "[DEBUG] ", "[INFO] ", "[WARN] ", "[ERROR] ", "[FATAL] "};

const PathNames* pathNames = nullptr;

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
        if (mSink->IsWanted(level)) {
            mSink->OnLine(level, Line(level, format, args));
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

} // namespace diagnosis
