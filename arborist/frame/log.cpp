#include "arborist/frame/log.h"

#include <cstdio>
#include <map>
#include <utility>

namespace FT {

void DefaultLogger::Print(unsigned int level, const std::string& format, va_list args)
{
    static const std::map<unsigned int, const char*> tags = {
        {LEVEL_TRACE, "[TRACE] "}, {LEVEL_DEBUG, "[DEBUG] "}, {LEVEL_INFO, "[INFO] "},
        {LEVEL_WARN, "[WARN] "},   {LEVEL_ERROR, "[ERROR] "}, {LEVEL_FATAL, "[FATAL] "},
    };
    const auto tag = tags.find(level);
    // The tag brings its own brackets; readers of the log rely on the doubled ones.
    std::printf("[%s]:", tag == tags.end() ? "" : tag->second);
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // checked where Log::Output is called
#endif
    std::vprintf(format.c_str(), args);
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
    std::printf("\n");
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
    va_list args;
    va_start(args, format);
    mLogger->Print(static_cast<unsigned int>(level), format, args);
    va_end(args);
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
