#include "arborist/evaluation/code_rule_index.h"

#include <algorithm>

#include "arborist/model/rule.h"

std::shared_ptr<CodeRule> CodeRuleIndex::FindFirst(std::string_view text,
                                                   const std::vector<std::shared_ptr<CodeRule>>& rules)
{
    if (!IsBuiltFrom(rules)) {
        Build(rules);
    }
    std::size_t first = mCodes.find(text);
    while (first != std::string::npos) {
        const auto next = std::upper_bound(mBegins.begin(), mBegins.end(), first);
        const auto rule = static_cast<std::size_t>(next - mBegins.begin()) - 1;
        if (first + text.size() <= mBegins[rule] + LengthOfCode(rule)) {
            return mRules[rule];
        }
        // Skip a match that crosses codes: a text with a zero byte can begin in one code and end in another.
        first = mCodes.find(text, first + 1);
    }
    return nullptr;
}

bool CodeRuleIndex::IsBuiltFrom(const std::vector<std::shared_ptr<CodeRule>>& rules) const
{
    // Every parse creates new rules, so the first rule distinguishes the lists of two parses.
    return mRules.size() == rules.size() && (rules.empty() || mRules.front() == rules.front());
}

void CodeRuleIndex::Build(const std::vector<std::shared_ptr<CodeRule>>& rules)
{
    mRules = rules;
    mCodes.clear();
    mBegins.clear();
    mBegins.reserve(rules.size());
    for (const auto& rule : rules) {
        mBegins.push_back(mCodes.size());
        mCodes += rule != nullptr ? rule->codeItem.id : std::string();
        mCodes += '\0'; // no code of a file contains it
    }
}

std::size_t CodeRuleIndex::LengthOfCode(std::size_t rule) const
{
    const std::size_t end = rule + 1 < mBegins.size() ? mBegins[rule + 1] : mCodes.size();
    return end - 1 - mBegins[rule];
}
