#ifndef ARBORIST_DIAGNOSIS_LINT_READING_VALUE_SETS_H
#define ARBORIST_DIAGNOSIS_LINT_READING_VALUE_SETS_H

#include <limits>
#include <optional>
#include <set>
#include <string_view>

namespace diagnosis::lint {

/// The type of compared values: whole numbers of 32 bits, other numbers, or texts.
enum class ValueKind { WHOLE, DECIMAL, TEXT };

/// The kind of a parameter's type; nothing for an unknown type.
std::optional<ValueKind> ValueKindOf(std::string_view type);

/// The values that pass all, or any, of some tests of one parameter. Leaves out a test whose word or number is invalid.
/// Adding a test takes as long as an insertion into a sorted set.
class ValueSets {
public:
    explicit ValueSets(ValueKind kind) : mKind(kind) {}

    void Add(std::string_view word, std::string_view value);

    /// True if no value passes all tests.
    bool IsNonePassingAll() const;
    /// True if every value passes at least one of the tests.
    bool IsEveryOnePassingOne() const;

private:
    /// An end of a half-line. An open one is not part of it.
    struct End {
        double value;
        bool isOpen;
    };

    void AddText(std::string_view word, std::string_view value);
    void AddNumber(std::string_view word, double value);
    void AddBelow(End end);
    void AddAbove(End end);
    bool IsPointExcluded(double value) const;
    bool IsGapFilled(double low, double high) const;

    ValueKind mKind;
    std::set<std::string_view> mTexts;
    std::set<std::string_view> mOtherTexts;

    static constexpr double INFINITE = std::numeric_limits<double>::infinity();
    /// "eq" and "ne".
    std::set<double> mPoints;
    std::set<double> mHoles;
    /// The narrowest and the widest of the tests with an upper bound ("lt", "le"), and of those with a lower bound.
    std::optional<End> mLowestBelow;
    std::optional<End> mHighestBelow;
    std::optional<End> mHighestAbove;
    std::optional<End> mLowestAbove;
};

} // namespace diagnosis::lint

#endif
