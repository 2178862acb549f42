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

/// Decides code rules by calling the host's CodeRuleRunner, and finds the ids of the event that uses the rule of a
/// detect code, even before any detection.
///
/// Shares ownership of its arguments; each may be null, and calls that need it then return false or empty.
class CodeRuleEngine : public RuleChecker {
public:
    CodeRuleEngine(std::shared_ptr<RuleEngineHelper> ruleEngineHelper,
                   std::shared_ptr<FaultTreeParser> faultTreeParser, std::shared_ptr<DetectInfo> detectInfo);

    /// Calls the host's runner and returns its answer; false without a runner. Ignores the event id.
    bool IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId) override;

    /// The ids of one kind (RuleHelper::FAULT, SUGGESTION or REPAIR) of the first event in the store that names the
    /// code rule of this detect code. Fills an empty store with the events of all trees first. Returns nothing if there
    /// is no such rule or event, and for another kind.
    std::vector<std::string> GetCodeRuleInfoByType(std::string_view type, const std::string& detectCode);

private:
    // The meaning of a detect code. The texts belong to the parser and the event.
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

    // The first event of the store that names a rule, and the revisions of store and rule set for which the map is
    // valid.
    std::unordered_map<std::string, std::shared_ptr<Event>, TextHash> mEventByRuleName;
    // Cache of looked-up codes for these revisions, as a host asks for three kinds of ids of a code in a row.
    std::unordered_map<std::string, CodeMeaning, TextHash> mMeanings;
    std::uint64_t mIndexedRevision = 0;
    std::uint64_t mIndexedRules = 0;
    bool mIsIndexed = false;
};

#endif
