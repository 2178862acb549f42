#include "tools/arborist/render/explanation_words.h"

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
    const std::string word = Evidence::VerdictText(rule.verdict);
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

std::vector<std::string> IdsAt(const RecordedTree& tree, const std::vector<std::size_t>& places)
{
    std::vector<std::string> ids;
    for (const std::size_t place : places) {
        ids.push_back(tree.events[place].id);
    }
    return ids;
}

} // namespace diagnosis::command
