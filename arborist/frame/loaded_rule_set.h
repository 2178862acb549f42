#ifndef ARBORIST_FRAME_LOADED_RULE_SET_H
#define ARBORIST_FRAME_LOADED_RULE_SET_H

#include <memory>

#include "arborist/arborist_export.h"

class FaultTreeParser;
struct DetectInfo;

/// A rule set that is read once for the detections of many devices, which use it one after the other:
/// `Arborist(detectInfo, ruleSet)`.
///
/// Each detection answers, logs and tells its observer what it would if it read the two files itself, with the content
/// that they had when the set was read. Later changes of the files have no effect. After a fork each process has a set of
/// its own.
///
/// Any number of threads may make engines with a set, destroy them and ask queries, as long as each thread uses its own
/// engine. Detections take turns: a detection that starts while another one is using the set, on another thread or from
/// within a host's callback, returns an empty answer and logs a warning. A host whose threads share a set therefore orders
/// their detections by a lock of its own, or gives each thread a set.
class ARBORIST_EXPORT LoadedRuleSet {
public:
    /// Reads the rule set that `mRuleFileDir`, `mRuleFilePrefix` and `mTreeTag` name; uses nothing else of the input, and
    /// doesn't keep it. Logs nothing: each detection logs the lines of the reading, and answers for a file that was missing
    /// or malformed as if it had tried to read the file itself. Neither a request nor a time limit stops the reading.
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
