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

/// Finds the alternative of an event by its name; see RuleHelper::GetRuleByName.
///
/// Refers to the list of alternatives. Indexes a long list, as an event looks up each of its alternatives. All look-ups
/// of a list with n names together take at most some n * sqrt(n) steps, whatever the names: each set of names is
/// intersected once, by its rarest name.
class AlternativeFinder {
public:
    explicit AlternativeFinder(const OrRuleList& rules);

    /// Null if no alternative matches. Keeps the answers of a long list.
    std::shared_ptr<OrRuleSingle> Find(const std::string& name);

private:
    using Places = std::vector<std::size_t>;

    std::shared_ptr<OrRuleSingle> FindByWalk(const std::string& name) const;
    std::shared_ptr<OrRuleSingle> FindByIndex(const std::string& name);
    std::vector<std::string> PartsOf(const std::string& name) const;
    std::vector<const Places*> ListingsOf(const std::vector<std::string>& parts) const;
    std::size_t FirstListing(const std::string& name);
    std::size_t FirstOfAll(const std::vector<const Places*>& listings) const;

    const OrRuleList& mRules;
    std::unordered_map<std::string_view, std::size_t, TextHash> mFirstSingle; // by rule name
    std::unordered_map<std::string_view, Places, TextHash> mListing; // by listed name, positions ascending
    // By a set of names: the first alternative that lists them all, of those that were looked for.
    std::unordered_map<std::string, std::size_t, TextHash> mFirstListing;
};

#endif
