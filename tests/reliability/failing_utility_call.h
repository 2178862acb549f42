#ifndef ARBORIST_TESTS_RELIABILITY_FAILING_UTILITY_CALL_H
#define ARBORIST_TESTS_RELIABILITY_FAILING_UTILITY_CALL_H

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/reliability/failing_files.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

/// A kind of calls, and how they fail.
struct Kind {
    FailingFiles::Call call;
    int error;
};
using Kinds = std::vector<Kind>;

/// The call of a kind with a number.
struct Numbered {
    FailingFiles::Call call;
    std::uint64_t number;
};
using NumberedCalls = std::vector<Numbered>;

/// A folder of its own, whose files can't always be opened, read or written.
class FailingUtilityCall : public testing::Test {
protected:
    /// Calls `work` with a function that makes an attempt: first with one that nothing fails in, then, for each call of
    /// the kind that it made, with one in which that call fails. The number of calls.
    template <typename Work>
    static std::uint64_t ForEachCall(FailingFiles::Call call, int error, Work work)
    {
        std::uint64_t calls = 0;
        for (std::uint64_t number = 0; number <= calls; ++number) {
            SCOPED_TRACE("call " + std::to_string(number));
            work([&](auto attempt) {
                FailingFiles::Watch(call, error);
                CallCounter::Start(number);
                const auto result = attempt();
                const std::uint64_t counted = CallCounter::Stop();
                calls = number == 0 ? counted : calls;
                return result;
            });
        }
        return calls;
    }

    /// The last line, or the empty text; forgets all lines.
    std::string Log()
    {
        const std::vector<std::string> lines = mLog.Lines();
        mLog.Clear();
        return lines.empty() ? "" : lines.back();
    }

    TempDir mDir;
    LogCapture mLog;
};

#endif
