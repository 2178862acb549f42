#include "arborist/evaluation/sweep/kept_answers.h"

#include "arborist/model/event.h"

void KeptAnswers::Ask(RuleDecider& rules, const Event& event, const std::set<std::string>& ruleNames)
{
    for (const std::string& name : ruleNames) {
        const std::pair key(&event, name);
        mAnswers.erase(key); // what is kept would be given again
        Evidence::Alternative alternative;
        const bool fires = rules.Fires(name, event.GetId(), &alternative);
        mAnswers[key] = {fires, std::move(alternative.rules.front())};
    }
}

const RuleAnswer* KeptAnswers::Find(const Event& event, const std::string& ruleName) const
{
    const auto found = mAnswers.find(std::pair(&event, ruleName));
    return found == mAnswers.end() ? nullptr : &found->second;
}
