#include "arborist/frame/log.h"

#include <cstdio>
#include <map>
#include <utility>

#include "arborist/frame/log_recording.h"
#include "arborist/frame/thread_value.h"

namespace FT {
namespace {

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // checked where Log::Output is called
#endif
std::string Formatted(const std::string& format, va_list args)
{
    char room[1024];
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(room, sizeof(room), format.c_str(), args);
    std::string text(length < 0 ? 0 : static_cast<std::size_t>(length), '\0');
    if (text.size() < sizeof(room)) {
        text.assign(room, text.size());
    } else {
        std::vsnprintf(text.data(), text.size() + 1, format.c_str(), again);
    }
    va_end(again);
    return text;
}
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

} // namespace

void DefaultLogger::Print(unsigned int level, const std::string& format, va_list args)
{
    static const std::map<unsigned int, const char*> tags = {
        {LEVEL_TRACE, "[TRACE] "}, {LEVEL_DEBUG, "[DEBUG] "}, {LEVEL_INFO, "[INFO] "},
        {LEVEL_WARN, "[WARN] "},   {LEVEL_ERROR, "[ERROR] "}, {LEVEL_FATAL, "[FATAL] "},
    };
    const auto tag = tags.find(level);
    // The tag brings its own brackets; readers of the log rely on the doubled ones. Prints with a single call, so that
    // lines of several threads don't mix.
    std::printf("[%s]:%s\n", tag == tags.end() ? "" : tag->second, Formatted(format, args).c_str());
}

Log::Log() : mLogger(std::make_unique<DefaultLogger>()) {}

Log& Log::GetInstance()
{
    static Log instance;
    return instance;
}

void Log::Output(int level, const char* format, ...)
{
    if (format == nullptr) {
        return;
    }
    // Loggers take a string, and a detection can log a line for each event id: use the memory of the last one. A logger
    // that logs itself finds none.
    std::string& spare = ValueOfThread<std::string, Log>();
    std::string text = std::move(spare);
    text = format;
    va_list args;
    va_start(args, format);
    if (LogLines* const recorded = LogRecording::OfThread()) {
        recorded->push_back({level, Formatted(text, args)});
    } else {
        mLogger->Print(static_cast<unsigned int>(level), text, args);
    }
    va_end(args);
    spare = std::move(text);
}

bool Log::SetUserLogger(std::unique_ptr<ILogger> logger)
{
    if (logger == nullptr) {
        return false;
    }
    mLogger = std::move(logger);
    return true;
}

} // namespace FT
