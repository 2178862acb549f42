#ifndef ARBORIST_EVALUATION_CODE_RULE_ENGINE_H
#define ARBORIST_EVALUATION_CODE_RULE_ENGINE_H

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "arborist/evaluation/rule_checker.h"
#include "arborist/utilities/text_hash.h"

class CodeRule;
class Event;
class EventRule;
class FaultTreeParser;
class RuleEngineHelper;
struct DetectInfo;
struct OrRuleSingle;

/// Decides code rules by asking the host's CodeRuleRunner, and translates a detect code into the ids of the event that
/// uses its rule, also before any detection.
///
/// Shares ownership of what it is given; each may be null, and what needs it then answers false or empty.
class CodeRuleEngine : public RuleChecker {
public:
    CodeRuleEngine(std::shared_ptr<RuleEngineHelper> ruleEngineHelper,
                   std::shared_ptr<FaultTreeParser> faultTreeParser, std::shared_ptr<DetectInfo> detectInfo);

    /// What the host's runner answers, called here and now; false without a runner. The event id is not used.
    bool IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId) override;

    /// The ids of one kind (RuleHelper::FAULT, SUGGESTION or REPAIR) of the first event in the store that names the
    /// code rule of this detect code. An empty store is first filled with the events of all trees. Empty when there is
    /// no such rule or event, and for another kind.
    std::vector<std::string> GetCodeRuleInfoByType(std::string_view type, const std::string& detectCode);

private:
    // What a detect code stands for. The texts are the parser's and the event's.
    struct CodeMeaning {
        std::span<const std::string> faults;
        std::span<const std::string> suggestions;
        const std::string* eventId;
    };

    const CodeMeaning* FindMeaning(const std::string& detectCode);
    void FetchAllEvents();
    const Event* GetEventByName(const std::string& ruleName);
    bool IsIndexCurrent() const;
    void IndexRuleNames();
    void IndexNamesOf(const OrRuleSingle& single, const std::shared_ptr<Event>& event);

    std::shared_ptr<RuleEngineHelper> mRuleEngineHelper;
    std::shared_ptr<FaultTreeParser> mFaultTreeParser;
    std::shared_ptr<DetectInfo> mDetectInfo;

    // The first event of the store that names a rule, and of which store and rule set that holds.
    std::unordered_map<std::string, std::shared_ptr<Event>, TextHash> mEventByRuleName;
    // The codes that were asked for, while that holds: a host asks for three kinds of ids, one after the other.
    std::unordered_map<std::string, CodeMeaning, TextHash> mMeanings;
    std::uint64_t mIndexedRevision = 0;
    std::uint64_t mIndexedRules = 0;
    bool mIsIndexed = false;
};

#endif
