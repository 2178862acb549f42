#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_WARNINGS_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_WARNINGS_H

#include <set>
#include <string>
#include <vector>

#include "arborist/frame/evidence.h"
#include "arborist/frame/trouble.h"
#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/evidence/warning_list.h"

namespace diagnosis {

/// Notes what makes a detection's result less than it looks, out of what the observer is told.
class DetectionWarnings {
public:
    void OnRuleSet(const Evidence::RuleSet& ruleSet);
    void OnEvent(const Evidence::Event& event);
    void OnTrouble(const Evidence::Trouble& trouble);

    /// Before the detection: it may leave an empty log where there was none.
    void LookBefore(const BundleSession& session);
    /// After it: holds what was asked against the bundle.
    void LookAfter(const BundleSession& session);

    std::vector<Warning> Told() const { return mList.Told(); }

private:
    void OnRule(const Evidence::Rule& rule);
    void OnStatement(const Evidence::Statement& statement, const std::string& ruleName);
    void TellNodes();
    void TellEventLog(const BundleSession& session);
    void TellAttributes(const BundleSession& session);

    WarningList mList;
    std::set<std::string> mUnreadableNodes;
    /// Derived tables for which the log was asked for events; two may share a name.
    std::multiset<std::string> mEventTables;
    std::string mEventLogTrouble;
    bool mHadLog = false;
    bool mWantsLog = false;
    bool mHasBadExtra = false;
    bool mLacksThresholds = false;
};

} // namespace diagnosis

#endif
