#ifndef ARBORIST_EVALUATION_CODE_RULE_INDEX_H
#define ARBORIST_EVALUATION_CODE_RULE_INDEX_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class CodeRule;

/// Finds the first code rule whose detect code holds a given text, in one pass over all codes laid end to end.
///
/// Built from a list of rules and rebuilt when asked about another one.
class CodeRuleIndex {
public:
    /// The first rule of `rules` whose detect code holds `text`, which is not empty; null when none does.
    std::shared_ptr<CodeRule> FindFirst(std::string_view text, const std::vector<std::shared_ptr<CodeRule>>& rules);

private:
    bool IsBuiltFrom(const std::vector<std::shared_ptr<CodeRule>>& rules) const;
    void Build(const std::vector<std::shared_ptr<CodeRule>>& rules);
    std::size_t LengthOfCode(std::size_t rule) const;

    // The rules are kept, so that the address of none of them can come to mean another rule.
    std::vector<std::shared_ptr<CodeRule>> mRules;
    std::string mCodes;
    std::vector<std::size_t> mBegins; // where the code of each rule begins in mCodes
};

#endif
