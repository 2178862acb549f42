#ifndef ARBORIST_FRAME_LOG_SWEEP_H
#define ARBORIST_FRAME_LOG_SWEEP_H

#include <memory>

#include "arborist/arborist_export.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/sweep_observer.h"

class StopRequest;

/// Finds, from one reading of rule set and event log, what detections would find as of each second between two moments:
/// for each second the answer of a detection with Settings::AS_OF and Settings::CURRENT_TIME set to that second.
///
/// Asks an alarm rule again only where a row that enters or leaves a window takes the rule over its threshold or below
/// it, a command rule on derived tables only where an event enters or leaves these tables, and both at repairs. The same
/// checkers answer as in a detection. Everything else has no history and is taken as it is now: node files, answers to
/// code rules, external databases, the current version, and the latest date of each repair.
///
/// Sets both settings while it runs, and restores them at the end. Call from one thread at a time. Don't run a sweep
/// within a detection, nor a detection within a sweep's observer: that detection would run as of the moment that the
/// settings have just then.
class ARBORIST_EXPORT LogSweep {
public:
    /// Shares ownership of the input, which must not be null, and never writes to it.
    explicit LogSweep(const std::shared_ptr<DetectInfo>& detectInfo);
    ~LogSweep();
    LogSweep(const LogSweep&) = delete;
    LogSweep& operator=(const LogSweep&) = delete;

    /// Reads the rule set and sweeps. Returns false if the rule file is missing or there is no tree. Throws what
    /// Arborist::StartDetection throws.
    bool Run(const SweepRequest& request, SweepObserver& observer);

    /// Asks the running sweep to end early, as Arborist::RequestStop asks a detection; Settings::TIME_LIMIT does the same.
    /// SweepObserver::OnStopped receives the moment at which the sweep ended; the answers for earlier moments hold. Does
    /// nothing without a running sweep. Any thread and any signal handler may call it.
    void RequestStop() noexcept;

private:
    std::shared_ptr<DetectInfo> mDetectInfo;
    std::unique_ptr<StopRequest> mStop;
};

#endif
