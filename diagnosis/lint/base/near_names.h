#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_NEAR_NAMES_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_NEAR_NAMES_H

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace diagnosis::lint {

/// Finds the known name that an unknown one was probably meant to be. As each search compares all names, a rule set
/// full of unknown names would take for ever: after a number of compared letters it finds nothing any more.
class NearNames {
public:
    using Fill = std::function<void(NearNames& names)>;

    NearNames() = default;
    /// `fill` adds the names at the first search; mostly there is none.
    explicit NearNames(Fill fill) : mFill(std::move(fill)) {}

    void Add(std::string_view name);

    /// The near name; empty if none is near.
    std::string Find(std::string_view name);
    /// `did you mean "..."?`, or nothing: the help of a finding.
    std::string Help(std::string_view name);

private:
    static constexpr std::size_t MOST_LETTERS = 50'000'000;

    Fill mFill;
    std::vector<std::string> mNames;
    std::size_t mLetters = 0;
    std::size_t mLettersLooked = 0;
};

} // namespace diagnosis::lint

#endif
