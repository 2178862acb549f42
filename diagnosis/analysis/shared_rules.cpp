#include "diagnosis/analysis/shared_rules.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>
#include <variant>

#include "diagnosis/analysis/check_fold.h"

namespace diagnosis {

namespace {

/// What an answer is known by: the name of a rule, or what the host is asked of a code rule.
enum class Kind : unsigned char { RULE, CODE, TEXT };
using Answers = std::set<std::pair<Kind, std::string_view>>;

// False if one of its answers is there already. Without a host that could be asked, nothing is known but the name.
bool AddNew(const Evidence::Rule& rule, Answers& answers)
{
    bool isNew = answers.emplace(Kind::RULE, rule.name).second;
    if (const auto* code = std::get_if<Evidence::Code>(&rule.part)) {
        isNew = (code->detectCode.empty() || answers.emplace(Kind::CODE, code->detectCode).second) && isNew;
        isNew = (code->userDefinedInfo.empty() || answers.emplace(Kind::TEXT, code->userDefinedInfo).second) && isNew;
    }
    return isNew;
}

bool HasSharedRules(const RecordedTree& tree)
{
    Answers answers;
    for (const Evidence::Event& event : tree.evidence) {
        if (!Evidence::IsOpen(event.check)) {
            continue;
        }
        for (const PlacedRule& placed : RulesOf(event)) {
            if (Evidence::IsOpen(placed.rule.check) && !AddNew(placed.rule, answers)) {
                return true;
            }
        }
    }
    return false;
}

// The one rule that an open event rests on; empty if there is none, or more than one.
std::string_view SoleRuleOf(const RecordedTree& tree, const RecordedEvent& event)
{
    std::string_view sole;
    if (!Evidence::IsOpen(event.check) || event.evidence == RecordedEvent::NONE) {
        return sole;
    }
    for (const PlacedRule& placed : RulesOf(*tree.EvidenceOf(event))) {
        if (!IsUnanswered(placed.rule) || placed.rule.name == sole) {
            continue;
        }
        if (!sole.empty()) {
            return {};
        }
        sole = placed.rule.name;
    }
    return sole;
}

} // namespace

SharedRules::SharedRules(const RecordedTree& tree) : mTree(tree), mHasAny(HasSharedRules(tree))
{
    for (std::size_t place = 0; mHasAny && place < tree.events.size(); ++place) {
        const std::string_view rule = SoleRuleOf(tree, tree.events[place]);
        if (!rule.empty()) {
            mEventsOfRule[rule].push_back(tree.events[place].id);
        }
    }
}

std::vector<std::string_view> SharedRules::AnsweredWith(std::size_t event) const
{
    const std::string_view own = mTree.events[event].id;
    std::vector<std::string_view> ids{own};
    const auto found = mEventsOfRule.find(SoleRuleOf(mTree, mTree.events[event]));
    if (found != mEventsOfRule.end()) {
        std::copy_if(found->second.begin(), found->second.end(), std::back_inserter(ids),
            [own](std::string_view id) { return id != own; });
    }
    return ids;
}

} // namespace diagnosis
