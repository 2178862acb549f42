#ifndef ARBORIST_EVALUATION_CODE_RULE_INDEX_H
#define ARBORIST_EVALUATION_CODE_RULE_INDEX_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class CodeRule;

/// Finds the first code rule whose detect code contains a given text, in one pass over the concatenation of all codes.
///
/// Builds an index of the list of rules, and rebuilds it if called with another list.
class CodeRuleIndex {
public:
    /// The first rule of `rules` whose detect code contains `text`, which must not be empty; null if there is none.
    std::shared_ptr<CodeRule> FindFirst(std::string_view text, const std::vector<std::shared_ptr<CodeRule>>& rules);

private:
    bool IsBuiltFrom(const std::vector<std::shared_ptr<CodeRule>>& rules) const;
    void Build(const std::vector<std::shared_ptr<CodeRule>>& rules);
    std::size_t LengthOfCode(std::size_t rule) const;

    // Keeps the rules alive, so that no new rule can have the address of an old one.
    std::vector<std::shared_ptr<CodeRule>> mRules;
    std::string mCodes;
    std::vector<std::size_t> mBegins; // where the code of each rule begins in mCodes
};

#endif
