#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_RECORDER_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_RECORDER_H

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "arborist/frame/detection_observer.h"
#include "diagnosis/evidence/detection_warnings.h"

namespace diagnosis {

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

/// A root cause with one cut set that it stands for.
struct RecordedCause {
    std::string id;
    /// Path of each member, ids from the top down joined by "/".
    std::vector<std::string> cutSet;
    /// How often the list of root causes repeats it: a branch that is written out twice gives it twice.
    std::size_t count;
};

/// One tree with its events in pre-order, and its root causes without repetition.
struct RecordedTree {
    std::string id;
    std::vector<RecordedEvent> events;
    std::vector<RecordedCause> causes;
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

/// Of a "defDBTable": its name, and the pattern for the files that it stands for.
struct RecordedPattern {
    std::string database;
    std::string pattern;
};

/// Keeps what the command shows of a detection beside its results.
class DetectionRecorder : public DetectionObserver {
public:
    /// Events and root causes are kept only with `keepsEvents`: written-out trees can be large.
    explicit DetectionRecorder(bool keepsEvents) : mKeepsEvents(keepsEvents) {}

    void OnRuleSetFile(const RuleSetFile& file) override;
    void OnThresholds(const ThresholdsSeen& thresholds) override { mWarnings.OnThresholds(thresholds); }
    void OnExternalDatabase(const ExternalDatabaseSeen& database) override;
    void OnTreeStarted(const TreeStarted& tree) override;
    void OnEventFolded(const EventFolded& event) override;
    void OnRootCause(const RootCauseSeen& rootCause) override;
    void OnRuleAsked(const RuleAsked& rule) override { mWarnings.OnRuleAsked(rule); }
    void OnAlarmWindow(const AlarmWindowSeen& window) override { mWarnings.OnAlarmWindow(window); }
    void OnNodeFile(const NodeFileSeen& node) override { mWarnings.OnNodeFile(node); }
    void OnQuery(const QuerySeen& query) override { mWarnings.OnQuery(query); }
    void OnRuleDecided(const RuleDecided& rule) override { mWarnings.OnRuleDecided(rule); }

    const std::vector<RecordedFile>& GetFiles() const { return mFiles; }
    const std::vector<RecordedPattern>& GetPatterns() const { return mPatterns; }
    /// In the order of the results.
    const std::vector<RecordedTree>& GetTrees() const { return mTrees; }
    /// What makes the result less than it looks.
    DetectionWarnings& GetWarnings() { return mWarnings; }

private:
    bool mKeepsEvents;
    std::vector<RecordedFile> mFiles;
    std::vector<RecordedPattern> mPatterns;
    std::vector<RecordedTree> mTrees;
    // Place among the causes of the last tree, by id and cut set.
    std::map<std::pair<std::string, std::vector<std::string>>, std::size_t> mCausePlaces;
    DetectionWarnings mWarnings;
};

} // namespace diagnosis

#endif
