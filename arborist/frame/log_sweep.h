#ifndef ARBORIST_FRAME_LOG_SWEEP_H
#define ARBORIST_FRAME_LOG_SWEEP_H

#include <memory>

#include "arborist/arborist_export.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/sweep_observer.h"

class StopRequest;

/// Finds what detections would find as of every moment of a time, from one reading of rule set and event log: the
/// answer of a detection with Settings::AS_OF and Settings::CURRENT_TIME set to that moment.
///
/// An alarm rule is asked again only where a row that enters or leaves a window brings it over its threshold or below
/// it, a command rule on derived tables where an event enters or leaves them, and both at repairs. The rules that decide
/// between are the checkers of a detection. Everything else has no history and is taken as it is now: node files, answers
/// to code rules, external databases, the current version, and the latest date of each repair.
///
/// Sets both settings while it runs. Call from one thread at a time, and not within a detection.
class ARBORIST_EXPORT LogSweep {
public:
    /// Shares ownership of the input, which must not be null, and never writes to it.
    explicit LogSweep(const std::shared_ptr<DetectInfo>& detectInfo);
    ~LogSweep();
    LogSweep(const LogSweep&) = delete;
    LogSweep& operator=(const LogSweep&) = delete;

    /// Reads the rule set and sweeps. False if the rule file is missing or there is no tree. Throws std::regex_error like
    /// a detection.
    bool Run(const SweepRequest& request, SweepObserver& observer);

    /// Stops the running sweep early, as Arborist::RequestStop stops a detection, and as Settings::TIME_LIMIT does: the
    /// observer is told at which moment, and the answers before it hold. Does nothing without a running sweep. Any thread
    /// and any signal handler may call it.
    void RequestStop() noexcept;

private:
    std::shared_ptr<DetectInfo> mDetectInfo;
    std::unique_ptr<StopRequest> mStop;
};

#endif
