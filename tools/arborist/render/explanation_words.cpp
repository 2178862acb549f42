#include "tools/arborist/render/explanation_words.h"

#include <algorithm>

#include "diagnosis/results/verdict_text.h"

namespace diagnosis::command {

std::string Counted(std::uint64_t number, const std::string& one, const std::string& several)
{
    return std::to_string(number) + " " + (number == 1 ? one : several);
}

std::string TimesText(std::uint64_t times, Colour colour)
{
    return times == 1 ? "" : "  " + colour.Faint("(stands " + std::to_string(times) + " times in the list)");
}

std::string VerdictText(const Evidence::Rule& rule, Colour colour)
{
    std::string word = Evidence::VerdictText(rule.verdict);
    switch (rule.verdict) {
    case Evidence::Verdict::FIRED:
        return colour.Red(word);
    case Evidence::Verdict::NOT_FIRED:
        return colour.Green(word);
    case Evidence::Verdict::SKIPPED:
        return colour.Yellow(word);
    }
    return word;
}

std::string ColouredVerdict(const Evidence::TreeVerdict& verdict, Colour colour)
{
    using Word = Evidence::TreeVerdict::Word;
    const std::string words = VerdictWords(verdict);
    return verdict.word == Word::NO_FAULT ? colour.Green(words)
        : verdict.word == Word::FAULT     ? words
                                          : colour.Yellow(words);
}

std::string ColouredStatus(Evidence::EventState status, std::size_t width, Colour colour)
{
    std::string word = Evidence::StateText(status);
    word.resize(std::max(word.size(), width), ' ');
    return Evidence::IsInError(status)            ? colour.Red(word)
        : status == Evidence::EventState::UNKNOWN ? colour.Yellow(word)
                                                  : colour.Green(word);
}

std::vector<std::string> IdsAt(const RecordedTree& tree, const std::vector<std::size_t>& places)
{
    std::vector<std::string> ids;
    ids.reserve(places.size());
    for (const std::size_t place : places) {
        ids.push_back(tree.events[place].id);
    }
    return ids;
}

} // namespace diagnosis::command
