#ifndef ARBORIST_DIAGNOSIS_RULE_SET_WORD_NAMES_H
#define ARBORIST_DIAGNOSIS_RULE_SET_WORD_NAMES_H

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "diagnosis/rule_source/grammar.h"

namespace diagnosis::rule_set {

/// Gives each kind of element a name for a schema, and remembers which are still to be described.
class WordNames {
public:
    /// The name of a kind, after the first element that has it: "or", and "or-2" for the next kind of that name.
    const std::string& NameOf(const rule_source::ElementWords& words, std::string_view element);

    /// Calls `describe(words, name)` for each kind that was named, including those that `describe` names.
    template <typename Describe>
    void ForEach(Describe describe)
    {
        for (std::size_t next = 0; next < mInOrder.size(); ++next) {
            const auto [words, name] = mInOrder[next];
            describe(*words, name);
        }
    }

private:
    std::map<const rule_source::ElementWords*, std::string> mNames;
    std::map<std::string, int> mCounts;
    std::vector<std::pair<const rule_source::ElementWords*, std::string>> mInOrder;
};

/// True for elements whose only content is text.
bool IsText(const rule_source::ElementWords& words);

} // namespace diagnosis::rule_set

#endif
