#include "diagnosis/lint/reading/binding_walk.h"

namespace diagnosis::lint {

void AddEventIds(const rule_source::RuleSet& rules, NearNames& names)
{
    for (const auto& [id, index] : rules.eventsById) {
        names.Add(id);
    }
}

std::string_view Trimmed(std::string_view text)
{
    static constexpr std::string_view BLANKS = " \t\r\n\v\f";
    const std::size_t begin = text.find_first_not_of(BLANKS);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(BLANKS) - begin + 1);
}

bool IsPadded(std::string_view text)
{
    return Trimmed(text).size() != text.size();
}

} // namespace diagnosis::lint
