#ifndef ARBORIST_FRAME_LOG_H
#define ARBORIST_FRAME_LOG_H

#include <cstdarg>
#include <memory>
#include <string>

#include "arborist/arborist_export.h"

// Lets the compiler check arguments against the format; positions count from the first parameter, `this` included.
#if defined(__MINGW32__)
#define ARBORIST_PRINTF_LIKE(formatIndex, firstArgument) \
    __attribute__((format(gnu_printf, formatIndex, firstArgument)))
#elif defined(__GNUC__)
#define ARBORIST_PRINTF_LIKE(formatIndex, firstArgument) \
    __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define ARBORIST_PRINTF_LIKE(formatIndex, firstArgument)
#endif

namespace FT {

/// Severity of a log line, lowest first.
enum LogLevel : int {
    LEVEL_TRACE = 0,
    LEVEL_DEBUG = 1,
    LEVEL_INFO = 2,
    LEVEL_WARN = 3,
    LEVEL_ERROR = 4,
    LEVEL_FATAL = 5,
};

/// Receives log lines. A host derives from this class and passes an object to Log::SetUserLogger.
class ARBORIST_EXPORT ILogger {
public:
    virtual ~ILogger() = default;

    /// Receives one message: a LogLevel, a printf format without line end, and its arguments. `args` can be read once;
    /// use va_copy to read it again.
    ///
    /// Called on the thread that logs: the thread that called the library, or a thread of the loader for which the calling
    /// thread waits. If several threads call the library at once, several calls of Print may run at once.
    ///
    /// Should not throw: an exception ends the call of the library that logs, and leaves it.
    virtual void Print(unsigned int level, const std::string& format, va_list args) = 0;
};

/// Prints every line, whatever its level, to standard output as "[[LEVEL] ]:message".
class ARBORIST_EXPORT DefaultLogger : public ILogger {
public:
    void Print(unsigned int level, const std::string& format, va_list args) override;
};

/// The channel for all messages of the library; one for the process.
///
/// Any number of threads may call Output at once. SetUserLogger is not thread-safe: call it while no other thread uses the
/// library.
class ARBORIST_EXPORT Log {
public:
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    /// The channel; it lives as long as the process.
    static Log& GetInstance();

    /// Passes a message to the current logger. `level` is a LogLevel; `format` and arguments are as for printf. Every
    /// format of the library begins with "FUNc:%s: ", and its first argument is the function's qualified name. What the
    /// logger throws leaves the call.
    void Output(int level, const char* format, ...) ARBORIST_PRINTF_LIKE(3, 4);

    /// Destroys the current logger and uses this one from now on. For null returns false and changes nothing.
    bool SetUserLogger(std::unique_ptr<ILogger> logger);

private:
    Log();
    ~Log() = default;

    std::unique_ptr<ILogger> mLogger;
};

} // namespace FT

#endif
