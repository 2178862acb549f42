#include "tests/support/log_capture.h"

#include <cstdio>
#include <utility>

#include "arborist/frame/log.h"

class LogCapture::CapturingLogger : public FT::ILogger {
public:
    explicit CapturingLogger(std::shared_ptr<Entries> entries) : mEntries(std::move(entries)) {}

    void Print(unsigned int level, const std::string& format, va_list args) override
    {
        va_list again;
        va_copy(again, args);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        const int length = std::vsnprintf(nullptr, 0, format.c_str(), args);
        std::string line(static_cast<std::size_t>(length) + 1, '\0');
        std::vsnprintf(line.data(), line.size(), format.c_str(), again);
#pragma GCC diagnostic pop
        va_end(again);
        line.pop_back();
        mEntries->push_back({static_cast<int>(level), format, std::move(line)});
    }

private:
    std::shared_ptr<Entries> mEntries;
};

LogCapture::LogCapture() : mEntries(std::make_shared<Entries>())
{
    FT::Log::GetInstance().SetUserLogger(std::make_unique<CapturingLogger>(mEntries));
}

LogCapture::~LogCapture()
{
    FT::Log::GetInstance().SetUserLogger(std::make_unique<FT::DefaultLogger>());
}

std::vector<std::string> LogCapture::Lines() const
{
    std::vector<std::string> lines;
    for (const Entry& entry : *mEntries) {
        lines.push_back(entry.line);
    }
    return lines;
}

std::vector<std::string> LogCapture::Lines(int level) const
{
    std::vector<std::string> lines;
    for (const Entry& entry : *mEntries) {
        if (entry.level == level) {
            lines.push_back(entry.line);
        }
    }
    return lines;
}

std::vector<std::string> LogCapture::Formats() const
{
    std::vector<std::string> formats;
    for (const Entry& entry : *mEntries) {
        formats.push_back(entry.format);
    }
    return formats;
}

void LogCapture::Clear()
{
    mEntries->clear();
}
