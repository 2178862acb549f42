#ifndef ARBORIST_TOOLS_DETECTION_DETECTION_RECORDER_H
#define ARBORIST_TOOLS_DETECTION_DETECTION_RECORDER_H

#include <cstddef>
#include <string>
#include <vector>

#include "arborist/frame/detection_observer.h"
#include "tools/arborist/problem.h"

namespace command {

/// One event of a tree, as it stood when the statuses were folded up.
struct RecordedEvent {
    std::size_t depth;
    DetectionObserver::EventFolded::Kind kind;
    DetectionObserver::EventFolded::GateKind gate;
    std::string id;
    std::string name;
    EventStatus status;
    bool observable;
};

/// One tree with its events in pre-order.
struct RecordedTree {
    std::string id;
    std::vector<RecordedEvent> events;
};

/// One of the two files of the rule set.
struct RecordedFile {
    DetectionObserver::RuleSetFile::Kind kind;
    DetectionObserver::RuleSetFile::State state;
    std::string path;
    std::string message;
    int line;
    std::size_t count;
};

/// Keeps what the command shows of a detection beside its results.
class DetectionRecorder : public DetectionObserver {
public:
    /// Events are kept only with `keepsEvents`: written-out trees can be large.
    explicit DetectionRecorder(bool keepsEvents) : mKeepsEvents(keepsEvents) {}

    void OnRuleSetFile(const RuleSetFile& file) override;
    void OnTreeStarted(const TreeStarted& tree) override;
    void OnEventFolded(const EventFolded& event) override;
    void OnRuleDecided(const RuleDecided& rule) override;

    const std::vector<RecordedFile>& GetFiles() const { return mFiles; }
    /// In the order of the results.
    const std::vector<RecordedTree>& GetTrees() const { return mTrees; }
    /// What makes the result less than it looks: a warning for each kind of trouble stands here once it can be seen.
    const std::vector<Warning>& GetWarnings() const { return mWarnings; }

private:
    bool mKeepsEvents;
    std::vector<RecordedFile> mFiles;
    std::vector<RecordedTree> mTrees;
    std::vector<Warning> mWarnings;
};

} // namespace command

#endif
