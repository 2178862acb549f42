#ifndef ARBORIST_EVALUATION_RULE_ENGINE_H
#define ARBORIST_EVALUATION_RULE_ENGINE_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "arborist/evaluation/event_decider.h"
#include "arborist/evaluation/rule_engine_helper.h"

class DeviceDetails;
class FaultTree;
class FaultTreeParser;
class RuleHelper;
struct DetectInfo;

/// Runs the rules of a detection: prepares their shared data, then, tree by tree, runs the rules of each event and sets
/// the status TRUE for events whose rules fired. Nothing else sets that status.
///
/// Shares ownership of its arguments. Runs on the caller's thread and locks nothing.
class RuleEngine {
public:
    /// See EventDecider.
    static constexpr std::string_view DETECT_INTERACTION_RULE = EventDecider::DETECT_INTERACTION_RULE;
    static constexpr char EMPTY_STRING[] = "";

    /// With a null `detectInfo` there is no helper, and running a tree does nothing.
    RuleEngine(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<FaultTreeParser> faultTreeParser);

    /// Prepares the common part and the derived databases. Call it once for each detection, after the parse.
    void Init();
    /// Runs the rules of one tree. Its events stay in the store until the next tree starts. A null tree is ignored.
    void StartRunRules(const std::shared_ptr<FaultTree>& faultTree);

    /// Closes the database that a rule asked last. Call it when the last tree has run, however the detection ends.
    void EndDetection() { mDecider.GetRules().GetCheckers().EndDetection(); }

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
    const TreeChecks& GetTreeChecks() const { return mDecider.GetTreeChecks(); }

    /// Sets the observer that is notified of each decided event; null for none. Not owned: it must outlive the engine
    /// or be removed with null.
    void SetObserver(DetectionObserver* observer) { mDecider.GetRules().SetObserver(observer); }

private:
    void InitCommonPart();
    void Reset();
    void MarkObservable();
    void RunRules();
    bool RunRulesOfEvent(const std::shared_ptr<Event>& event, const std::shared_ptr<EventRule>& eventRule);

    std::shared_ptr<FaultTreeParser> mFaultTreeParser;
    std::shared_ptr<DetectInfo> mDetectInfo;
    std::shared_ptr<DeviceDetails> mDeviceDetails;
    std::shared_ptr<RuleHelper> mRuleHelper;
    std::shared_ptr<RuleEngineHelper> mRuleEngineHelper;
    std::shared_ptr<FaultTree> mFaultTree;
    EventDecider mDecider;
};

#endif
