#include "tests/support/log_capture.h"

#include <cstdio>

#include "arborist/frame/log.h"

namespace {

class CapturingLogger : public FT::ILogger {
public:
    explicit CapturingLogger(std::shared_ptr<std::vector<std::pair<int, std::string>>> entries)
        : mEntries(std::move(entries))
    {
    }

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
        mEntries->emplace_back(static_cast<int>(level), std::move(line));
    }

private:
    std::shared_ptr<std::vector<std::pair<int, std::string>>> mEntries;
};

} // namespace

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
    for (const auto& [level, line] : *mEntries) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> LogCapture::Lines(int level) const
{
    std::vector<std::string> lines;
    for (const auto& [entryLevel, line] : *mEntries) {
        if (entryLevel == level) {
            lines.push_back(line);
        }
    }
    return lines;
}

void LogCapture::Clear()
{
    mEntries->clear();
}
