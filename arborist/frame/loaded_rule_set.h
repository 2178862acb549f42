#ifndef ARBORIST_FRAME_LOADED_RULE_SET_H
#define ARBORIST_FRAME_LOADED_RULE_SET_H

#include <memory>

#include "arborist/arborist_export.h"

class FaultTreeParser;
struct DetectInfo;

/// A rule set that is read once and that the detections of many devices start from, one after the other:
/// `Arborist(detectInfo, ruleSet)`.
///
/// Each detection answers, logs and tells its observer what it would if it read the two files itself, as they were when
/// the set was read. Later changes of the files have no effect. A process that forks shares the set with its children,
/// each of which has a set of its own from then on.
///
/// Any number of threads may make engines with a set and destroy them, and ask queries, each of its own engine. Detections
/// take turns: one that starts while another is using the set, on another thread or from within a host's callback, returns
/// an empty answer and logs a warning. A host whose threads share a set therefore lets them start one detection after the
/// other, by a lock of its own, or gives each thread a set.
class ARBORIST_EXPORT LoadedRuleSet {
public:
    /// Reads the rule set that `mRuleFileDir`, `mRuleFilePrefix` and `mTreeTag` name; uses nothing else of the input, and
    /// doesn't keep it. Logs nothing: each detection logs the lines of the reading. A file that is missing or malformed
    /// is known as such to each detection. Nothing stops the reading.
    explicit LoadedRuleSet(const DetectInfo& detectInfo);
    ~LoadedRuleSet();
    LoadedRuleSet(const LoadedRuleSet&) = delete;
    LoadedRuleSet& operator=(const LoadedRuleSet&) = delete;

private:
    friend class Arborist;

    struct Content;

    const std::shared_ptr<FaultTreeParser>& GetParser() const;
    void LogLines() const;
    bool Take();
    void Release();

    std::unique_ptr<Content> mContent;
};

#endif
