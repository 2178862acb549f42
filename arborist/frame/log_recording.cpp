#include "arborist/frame/log_recording.h"

#include <string_view>
#include <utility>

#include "arborist/frame/log.h"

namespace FT {
namespace {

thread_local LogLines* innermost = nullptr;

// What every line begins with, and the end of the function's name.
constexpr std::string_view START = "FUNc:";
constexpr std::string_view END_OF_NAME = ": ";

// The text as a part of a format.
std::string Escaped(std::string_view text)
{
    std::string escaped;
    escaped.reserve(text.size());
    for (const char letter : text) {
        escaped.append(letter == '%' ? 2 : 1, letter);
    }
    return escaped;
}

} // namespace

LogRecording::LogRecording(LogLines* lines) : mOuter(std::exchange(innermost, lines)) {}

LogRecording::~LogRecording()
{
    innermost = mOuter;
}

LogLines* LogRecording::OfThread()
{
    return innermost;
}

void LogAgain(const LogLine& line)
{
    const std::string_view text = line.text;
    const std::size_t end = text.find(END_OF_NAME);
    if (!text.starts_with(START) || end == std::string_view::npos) {
        Log::GetInstance().Output(line.level, "%s", line.text.c_str()); // a host's own line
        return;
    }
    const std::string name(text.substr(START.size(), end - START.size()));
    const std::string format = std::string(START) + "%s" + Escaped(text.substr(end));
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // made here
#endif
    Log::GetInstance().Output(line.level, format.c_str(), name.c_str());
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
}

} // namespace FT
