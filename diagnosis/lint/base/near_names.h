#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_NEAR_NAMES_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_NEAR_NAMES_H

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "diagnosis/rule_source/params.h"

namespace diagnosis::lint {

/// Finds the known name that an unknown one was probably meant to be. As each search compares all names, a rule set
/// full of unknown names would take for ever: after a number of compared letters it finds nothing any more.
class NearNames {
public:
    using Fill = std::function<void(NearNames& names)>;

    NearNames() = default;
    /// `fill` adds the names at the first search; mostly there is none.
    explicit NearNames(Fill fill) : mFill(std::move(fill)) {}
    NearNames(std::initializer_list<std::string_view> names) : NearNames(names.begin(), names.end()) {}
    template <typename Iterator>
    NearNames(Iterator begin, Iterator end)
    {
        for (; begin != end; ++begin) {
            Add(*begin);
        }
    }

    void Add(std::string_view name);

    /// The near name; empty if none is near.
    std::string Find(std::string_view name);

private:
    static constexpr std::size_t MOST_LETTERS = 50'000'000;

    Fill mFill;
    std::vector<std::string> mNames;
    std::size_t mLetters = 0;
    std::size_t mLettersLooked = 0;
};

/// The id of a table that an unknown one was probably meant to be, among the first hundred; empty if none is near.
std::string NearIdIn(const rule_source::ParamTable& table, std::string_view id);

} // namespace diagnosis::lint

#endif
