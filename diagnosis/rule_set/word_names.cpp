#include "diagnosis/rule_set/word_names.h"

namespace diagnosis::rule_set {

const std::string& WordNames::NameOf(const rule_source::ElementWords& words, std::string_view element)
{
    const auto [found, isNew] = mNames.try_emplace(&words);
    if (isNew) {
        const std::string name(element);
        const int number = ++mCounts[name];
        found->second = name + (number == 1 ? "" : "-" + std::to_string(number));
        mInOrder.emplace_back(&words, found->second);
    }
    return found->second;
}

bool IsText(const rule_source::ElementWords& words)
{
    return words.attributes.empty() && words.children.empty() && words.others == nullptr;
}

} // namespace diagnosis::rule_set
