#ifndef ARBORIST_EVALUATION_RULE_ENGINE_H
#define ARBORIST_EVALUATION_RULE_ENGINE_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "arborist/evaluation/rule_checkers.h"
#include "arborist/evaluation/rule_engine_helper.h"
#include "arborist/evaluation/tree_checks.h"
#include "arborist/frame/detection_observer.h"
#include "arborist/model/event_rule.h"

class AlternativeFinder;
class CommonPart;
class DeviceDetails;
class FaultTree;
class FaultTreeParser;
class Rule;
class RuleHelper;
struct DetectInfo;

/// Runs the rules of a detection: prepares their shared data, then, tree by tree, runs the rules of each event and sets
/// the status TRUE for events whose rules fired. Nothing else sets that status.
///
/// Shares ownership of its arguments. Runs on the caller's thread and locks nothing.
class RuleEngine {
public:
    /// Detect mode of events that are left to the host: their rules never run here.
    static constexpr std::string_view DETECT_INTERACTION_RULE = "2";
    static constexpr char EMPTY_STRING[] = "";

    /// With a null `detectInfo` there is no helper, and running a tree does nothing.
    RuleEngine(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<FaultTreeParser> faultTreeParser);

    /// Prepares the common part and the derived databases. Call it once for each detection, after the parse.
    void Init();
    /// Runs the rules of one tree. Its events stay in the store until the next tree starts. A null tree is ignored.
    void StartRunRules(const std::shared_ptr<FaultTree>& faultTree);

    void FetchEvent(const std::shared_ptr<Event>& event);
    /// Copies of the store's list and map; kept for the tests, which look at the events of a run by them.
    RuleEngineHelper::EventList GetAllEventList() const;
    RuleEngineHelper::EventMap GetEventMap() const;
    /// Null if the engine was created without a DetectInfo.
    const std::shared_ptr<RuleHelper>& GetRuleHelper() const { return mRuleHelper; }
    /// The ids of one kind (RuleHelper::FAULT, SUGGESTION or REPAIR) for a detect code; see
    /// CodeRuleEngine::GetCodeRuleInfoByType.
    std::vector<std::string> GetCodeRuleInfoByType(std::string_view type, const std::string& detectCode);

    /// The checks of the events of the last tree; complete only with an observer.
    const TreeChecks& GetTreeChecks() const { return mTreeChecks; }

    /// Sets the observer that is notified of each decided event; null for none. Not owned: it must outlive the engine
    /// or be removed with null.
    void SetObserver(DetectionObserver* observer) { mObserver = observer; }

private:
    void InitCommonPart();
    void Reset();
    void MarkObservable();
    void RunRules();
    bool RunRulesOfEvent(const std::shared_ptr<Event>& event, const std::shared_ptr<EventRule>& eventRule);
    bool IsFaultHappenedForEvent(const std::shared_ptr<Event>& event, const std::shared_ptr<EventRule>& eventRule);
    bool DecideEvent(const Event& event, EventRule* eventRule, EventCheck* eventCheck, Evidence::Event* record);
    bool AskRulesOfEvent(const std::string& eventId, EventRule& eventRule, const std::vector<std::string>& names,
                         EventCheck* eventCheck, Evidence::Event* record);
    bool GetSingleRuleCheckResult(
        const std::string& ruleName, const std::string& eventId, Evidence::Alternative* alternative);
    bool AskIfSupported(const std::shared_ptr<Rule>& rule, const std::string& eventId, Evidence::Rule* record);
    std::shared_ptr<OrRuleSingle> DoSingleRuleCheck(const std::string& name, const std::string& eventId,
        const AlternativeFinder& finder, Evidence::Alternative* alternative);
    std::shared_ptr<OrRuleSingle> DoMultiRulesCheck(const std::string& names, const std::string& eventId,
        const std::shared_ptr<OrRuleSingle>& entry, Evidence::Alternative* alternative);
    bool AskRule(const std::shared_ptr<Rule>& rule, const std::string& eventId, Evidence::Rule* record);
    // Null without an observer.
    DetectionObserver* GetObserver() const { return mObserver; }

    std::shared_ptr<FaultTreeParser> mFaultTreeParser;
    std::shared_ptr<DetectInfo> mDetectInfo;
    std::shared_ptr<DeviceDetails> mDeviceDetails;
    std::shared_ptr<RuleHelper> mRuleHelper;
    std::shared_ptr<RuleEngineHelper> mRuleEngineHelper;
    std::shared_ptr<CommonPart> mCommonPart;
    std::shared_ptr<FaultTree> mFaultTree;
    RuleCheckers mCheckers;
    TreeChecks mTreeChecks;
    DetectionObserver* mObserver = nullptr;
};

#endif
