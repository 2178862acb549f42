#include "arborist/evaluation/event_check.h"

using Evidence::Check;

void EventCheck::Land(const OrRuleSingle* entry, bool result, Check check, std::size_t alternative)
{
    if (entry != nullptr) {
        mLanded[entry] = {result, check, alternative};
    }
}

void EventCheck::KeepTrue(Check check)
{
    mKept = check;
}

EventCheck::Word EventCheck::GetWord() const
{
    Word word{GetTrueCheck() == Check::DECIDED ? Check::DECIDED : mKept, std::nullopt};
    if (word.check == Check::DECIDED) {
        return word;
    }
    for (const auto& [entry, landed] : mLanded) {
        const bool isFirst = landed.check == word.check && word.alternative && landed.alternative < *word.alternative;
        if (landed.check > word.check || isFirst) {
            word = {landed.check, landed.alternative};
        }
    }
    return word;
}

// Prefers a decided alternative; otherwise takes the least open check.
Check EventCheck::GetTrueCheck() const
{
    Check least = mKept;
    for (const auto& [entry, landed] : mLanded) {
        if (landed.result && (least == Check::NONE || landed.check < least)) {
            least = landed.check;
        }
    }
    return least;
}
