#include "diagnosis/rule_set/item.h"

#include <array>

#include "diagnosis/rule_source/source_file.h"

namespace diagnosis::rule_set {

Place PlaceOf(rule_source::Element element)
{
    return element ? Place{element.File()->Path(), element.Line()} : Place{};
}

const char* KindWord(ItemKind kind)
{
    static constexpr std::array<const char*, 10> WORDS = {"tag", "tree", "event", "event rules", "rule",
        "fault descriptions", "solutions", "repairs", "shared data", "database"};
    return WORDS[static_cast<std::size_t>(kind)];
}

} // namespace diagnosis::rule_set
