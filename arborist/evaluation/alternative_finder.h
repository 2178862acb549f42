#ifndef ARBORIST_EVALUATION_ALTERNATIVE_FINDER_H
#define ARBORIST_EVALUATION_ALTERNATIVE_FINDER_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "arborist/model/event_rule.h"
#include "arborist/utilities/text_hash.h"

/// Finds the alternative of an event that a rule name stands for; see RuleHelper::GetRuleByName.
///
/// Refers to the list that it was made for. An event with many alternatives is asked for each of them, so a long list
/// is indexed.
class AlternativeFinder {
public:
    explicit AlternativeFinder(const OrRuleList& rules);

    /// Null when none fits.
    std::shared_ptr<OrRuleSingle> Find(const std::string& name) const;

private:
    using Places = std::vector<std::size_t>;

    std::shared_ptr<OrRuleSingle> FindByWalk(const std::string& name) const;
    std::shared_ptr<OrRuleSingle> FindByIndex(const std::string& name) const;
    std::vector<const Places*> ListingsOf(const std::string& name) const;

    const OrRuleList& mRules;
    std::unordered_map<std::string_view, std::size_t, TextHash> mFirstSingle; // by rule name
    std::unordered_map<std::string_view, Places, TextHash> mListing; // by name in the list, places ascending
};

#endif
