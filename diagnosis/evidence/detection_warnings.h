#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_WARNINGS_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_WARNINGS_H

#include <set>
#include <string>
#include <vector>

#include "arborist/frame/detection_observer.h"
#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/evidence/warning_list.h"
#include "diagnosis/process/library_log.h"

namespace diagnosis {

/// Notes what makes a detection's result less than it looks, out of what the observer is told and, where they are the
/// only sign, of the library's log lines. Lives as long as the detection that it listens to.
class DetectionWarnings : public LogListener {
public:
    using Observer = DetectionObserver;

    bool IsWanted(unsigned int level, const std::string& format) const override;
    void OnLine(const std::string& function, const std::string& message) override;

    void OnRuleSetFile(const Observer::RuleSetFile& file);
    void OnThresholds(const Observer::ThresholdsSeen& thresholds);
    void OnRuleAsked(const Observer::RuleAsked& rule);
    void OnAlarmWindow(const Observer::AlarmWindowSeen& window);
    void OnNodeFile(const Observer::NodeFileSeen& node);
    void OnQuery(const Observer::QuerySeen& query);
    void OnRuleDecided(const Observer::RuleDecided& rule);

    /// Before the detection: it may leave an empty log where there was none.
    void LookBefore(const BundleSession& session);
    /// After it: holds what was asked against the bundle.
    void LookAfter(const BundleSession& session);

    std::vector<Warning> Told() const { return mList.Told(); }

private:
    void TellFailedSql(const std::string& where);
    void TellNodes();
    void TellEventLog(const BundleSession& session);
    void TellAttributes(const BundleSession& session);

    WarningList mList;
    std::set<std::string> mUnreadableNodes;
    Observer::Family mFamily = Observer::Family::NONE;
    std::string mRuleName;
    /// What SQLite said of the statement that ran last; empty when it said nothing.
    std::string mSqlTrouble;
    std::string mEventLogTrouble;
    bool mHadLog = false;
    bool mWantsLog = false;
    bool mBuildsTables = false;
    bool mHasBadExtra = false;
    bool mLacksThresholds = false;
};

} // namespace diagnosis

#endif
