#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_WARNINGS_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_WARNINGS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "arborist/frame/evidence.h"
#include "arborist/frame/trouble.h"
#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/evidence/warning_list.h"

namespace diagnosis {

/// Collects, from the calls to the observer, the problems that make a detection's result less reliable.
class DetectionWarnings {
public:
    void OnRuleSet(const Evidence::RuleSet& ruleSet);
    void OnEvent(const Evidence::Event& event);
    void OnTreeFinished(const Evidence::TreeResult& result);
    void OnTrouble(const Evidence::Trouble& trouble);

    /// Call it before the detection, which may create an empty log if there was none.
    void LookBefore(const BundleSession& session);
    /// Call it after the detection: compares what the rules read with the bundle.
    void LookAfter(const BundleSession& session) { LookAfter(session, session.Now(), session.AsOf()); }
    /// The same for the last of several detections: as of this moment, and without rows after `asOf`.
    void LookAfter(const BundleSession& session, std::int64_t now, std::optional<std::int64_t> asOf);

    const WarningList& List() const { return mList; }

private:
    void OnRule(const Evidence::Rule& rule);
    void OnStatement(const Evidence::Statement& statement, const std::string& ruleName);
    void TellStop();
    void TellNodes();
    void TellEventLog(const BundleSession& session, std::int64_t now, std::optional<std::int64_t> asOf);
    void TellAttributes(const BundleSession& session);

    WarningList mList;
    std::set<std::string> mUnreadableNodes;
    /// Node files with a negative value that a formula uses.
    std::set<std::string> mNegativeNodes;
    /// Derived tables whose events were read from the log; two may have the same name.
    std::multiset<std::string> mEventTables;
    std::string mEventLogTrouble;
    bool mHadLog = false;
    bool mWantsLog = false;
    bool mHasBadExtra = false;
    /// Members of "extra" that can't be used as values.
    std::set<std::string> mBadMembers;
    bool mHasOtherVersions = false;
    bool mLacksThresholds = false;
    std::size_t mTrees = 0;
    std::size_t mStoppedTrees = 0;
};

} // namespace diagnosis

#endif
