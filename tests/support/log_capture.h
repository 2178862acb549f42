#ifndef ARBORIST_TESTS_SUPPORT_LOG_CAPTURE_H
#define ARBORIST_TESTS_SUPPORT_LOG_CAPTURE_H

#include <memory>
#include <string>
#include <utility>
#include <vector>

/// Takes the log channel while the object lives and gives the default logger back at the end.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// All messages so far, formatted, in order, without their level ("FUNc:Name: text").
    std::vector<std::string> Lines() const;
    /// Those of one FT::LogLevel.
    std::vector<std::string> Lines(int level) const;
    void Clear();

private:
    using Entries = std::vector<std::pair<int, std::string>>;
    std::shared_ptr<Entries> mEntries;
};

#endif
