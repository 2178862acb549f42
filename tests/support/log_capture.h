#ifndef ARBORIST_TESTS_SUPPORT_LOG_CAPTURE_H
#define ARBORIST_TESTS_SUPPORT_LOG_CAPTURE_H

#include <memory>
#include <string>
#include <vector>

/// Captures the log as long as the object exists; restores the default logger at the end.
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
    /// The formats of all messages so far, as a logger receives them ("FUNc:%s: text %d").
    std::vector<std::string> Formats() const;
    void Clear();

private:
    struct Entry {
        int level;
        std::string format;
        std::string line;
    };
    using Entries = std::vector<Entry>;
    class CapturingLogger;

    std::shared_ptr<Entries> mEntries;
};

#endif
