#include "arborist/evaluation/alternative_finder.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "arborist/evaluation/rule_helper.h"
#include "arborist/utilities/string_util.h"
#include "arborist/utilities/text_hash.h"

namespace {

// Up to this length a linear search is as fast as a look-up.
constexpr std::size_t SHORT_LIST = 16;

bool IsSingleOf(const OrRuleSingle& rule, const std::string& name)
{
    return rule.type == RuleHelper::SINGLE_RULE && rule.ruleName == name;
}

// True if the list contains every part, in any order; it may contain more.
bool ListsAll(const std::vector<std::string>& list, const std::vector<std::string>& parts)
{
    if (parts.empty() || list.empty()) {
        return false;
    }
    if (parts == list) {
        return true;
    }
    if (list.size() <= SHORT_LIST) {
        return std::all_of(parts.begin(), parts.end(), [&list](const std::string& part) {
            return std::find(list.begin(), list.end(), part) != list.end();
        });
    }
    const std::unordered_set<std::string_view, TextHash> names(list.begin(), list.end());
    return std::all_of(
        parts.begin(), parts.end(), [&names](const std::string& part) { return names.count(part) != 0; });
}

} // namespace

AlternativeFinder::AlternativeFinder(const OrRuleList& rules) : mRules(rules)
{
    if (rules.size() <= SHORT_LIST) {
        return;
    }
    for (std::size_t place = 0; place < rules.size(); ++place) {
        if (rules[place] == nullptr) {
            continue;
        }
        if (rules[place]->type == RuleHelper::SINGLE_RULE) {
            mFirstSingle.emplace(rules[place]->ruleName, place);
        }
        for (const auto& name : rules[place]->ruleNameList) {
            mListing[name].push_back(place);
        }
    }
}

std::shared_ptr<OrRuleSingle> AlternativeFinder::Find(const std::string& name)
{
    return mRules.size() <= SHORT_LIST ? FindByWalk(name) : FindByIndex(name);
}

std::shared_ptr<OrRuleSingle> AlternativeFinder::FindByWalk(const std::string& name) const
{
    std::vector<std::string> parts;
    for (const auto& rule : mRules) {
        if (rule == nullptr) {
            continue;
        }
        if (IsSingleOf(*rule, name)) {
            return rule;
        }
        if (parts.empty() && !rule->ruleNameList.empty()) {
            parts = StringUtil::Split(name, RuleHelper::TYPE_COMMA);
        }
        if (ListsAll(rule->ruleNameList, parts)) {
            return rule;
        }
    }
    return nullptr;
}

std::shared_ptr<OrRuleSingle> AlternativeFinder::FindByIndex(const std::string& name)
{
    const auto single = mFirstSingle.find(name);
    const std::size_t end = single != mFirstSingle.end() ? single->second : mRules.size();
    const std::size_t first = end == 0 ? end : std::min(end, FirstListing(name));
    return first < mRules.size() ? mRules[first] : nullptr;
}

// The names in a list of names, sorted, each once.
std::vector<std::string> AlternativeFinder::PartsOf(const std::string& name) const
{
    std::vector<std::string> parts = StringUtil::Split(name, RuleHelper::TYPE_COMMA);
    std::sort(parts.begin(), parts.end());
    parts.erase(std::unique(parts.begin(), parts.end()), parts.end());
    return parts;
}

// For each part the alternatives that list it, the shortest list first; empty if no alternative lists one of the parts.
std::vector<const AlternativeFinder::Places*> AlternativeFinder::ListingsOf(const std::vector<std::string>& parts) const
{
    std::vector<const Places*> listings;
    for (const auto& part : parts) {
        const auto listing = mListing.find(part);
        if (listing == mListing.end()) {
            return {};
        }
        listings.push_back(&listing->second);
    }
    std::sort(listings.begin(), listings.end(),
        [](const Places* one, const Places* other) { return one->size() < other->size(); });
    return listings;
}

// The position of the first alternative that lists all parts of the name; their number if there is none.
std::size_t AlternativeFinder::FirstListing(const std::string& name)
{
    const std::vector<std::string> parts = PartsOf(name);
    std::string set;
    for (const std::string& part : parts) {
        set.append(part).append(RuleHelper::TYPE_COMMA); // no part contains one
    }
    const auto [known, isNew] = mFirstListing.try_emplace(std::move(set), mRules.size());
    if (isNew) {
        known->second = FirstOfAll(ListingsOf(parts));
    }
    return known->second;
}

std::size_t AlternativeFinder::FirstOfAll(const std::vector<const Places*>& listings) const
{
    if (listings.empty()) {
        return mRules.size();
    }
    const auto first = std::find_if(listings.front()->begin(), listings.front()->end(), [&](std::size_t place) {
        return std::all_of(listings.begin() + 1, listings.end(), [place](const Places* places) {
            return std::binary_search(places->begin(), places->end(), place);
        });
    });
    return first == listings.front()->end() ? mRules.size() : *first;
}
