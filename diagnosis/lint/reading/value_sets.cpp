#include "diagnosis/lint/reading/value_sets.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>

#include "diagnosis/rule_source/numbers.h"

namespace diagnosis::lint {

namespace {

constexpr double LOWEST = std::numeric_limits<std::int32_t>::min();
constexpr double HIGHEST = std::numeric_limits<std::int32_t>::max();

std::optional<double> NumberOf(ValueKind kind, std::string_view text)
{
    if (kind == ValueKind::WHOLE) {
        const rule_source::WholeNumber number = rule_source::ReadWholeNumber(text);
        return number.isWhole ? std::optional<double>(number.value) : std::nullopt;
    }
    double number = 0;
    return rule_source::ReadDecimalNumber(text, number) && !std::isnan(number) ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<ValueKind> ValueKindOf(std::string_view type)
{
    if (type == "string") {
        return ValueKind::TEXT;
    }
    if (type == "int" || type == "long") {
        return ValueKind::WHOLE;
    }
    return type == "float" || type == "double" ? std::optional(ValueKind::DECIMAL) : std::nullopt;
}

void ValueSets::Add(std::string_view word, std::string_view value)
{
    if (mKind == ValueKind::TEXT) {
        AddText(word, value);
    } else if (const auto number = NumberOf(mKind, value)) {
        AddNumber(word, *number);
    }
}

void ValueSets::AddText(std::string_view word, std::string_view value)
{
    if (word == "eq") {
        mTexts.insert(value);
    } else if (word == "ne") {
        mOtherTexts.insert(value);
    }
}

void ValueSets::AddNumber(std::string_view word, double value)
{
    // For whole numbers "gt 5" is "ge 6", so that no end is open.
    const bool isWhole = mKind == ValueKind::WHOLE;
    if (word == "eq") {
        mPoints.insert(value);
    } else if (word == "ne") {
        mHoles.insert(value);
    } else if (word == "lt") {
        AddBelow(isWhole ? End{value - 1, false} : End{value, true});
    } else if (word == "le") {
        AddBelow({value, false});
    } else if (word == "gt") {
        AddAbove(isWhole ? End{value + 1, false} : End{value, true});
    } else if (word == "ge") {
        AddAbove({value, false});
    }
}

void ValueSets::AddBelow(End end)
{
    // Of two ends at one value the open one is the narrower.
    const auto isNarrower = [](const End& one, const End& other) {
        return one.value < other.value || (one.value == other.value && one.isOpen && !other.isOpen);
    };
    mLowestBelow = mLowestBelow && !isNarrower(end, *mLowestBelow) ? mLowestBelow : end;
    mHighestBelow = mHighestBelow && !isNarrower(*mHighestBelow, end) ? mHighestBelow : end;
}

void ValueSets::AddAbove(End end)
{
    const auto isNarrower = [](const End& one, const End& other) {
        return one.value > other.value || (one.value == other.value && one.isOpen && !other.isOpen);
    };
    mHighestAbove = mHighestAbove && !isNarrower(end, *mHighestAbove) ? mHighestAbove : end;
    mLowestAbove = mLowestAbove && !isNarrower(*mLowestAbove, end) ? mLowestAbove : end;
}

// True if a value fails one of the tests.
bool ValueSets::IsPointExcluded(double value) const
{
    const bool isBelow = !mLowestBelow || value < mLowestBelow->value
        || (value == mLowestBelow->value && !mLowestBelow->isOpen);
    const bool isAbove = !mHighestAbove || value > mHighestAbove->value
        || (value == mHighestAbove->value && !mHighestAbove->isOpen);
    return !isBelow || !isAbove || mHoles.count(value) != 0;
}

bool ValueSets::IsNonePassingAll() const
{
    if (mKind == ValueKind::TEXT) {
        return mTexts.size() > 1 || (mTexts.size() == 1 && mOtherTexts.count(*mTexts.begin()) != 0);
    }
    if (!mPoints.empty()) {
        return mPoints.size() > 1 || IsPointExcluded(*mPoints.begin());
    }
    const bool isWhole = mKind == ValueKind::WHOLE;
    const double low = mHighestAbove ? mHighestAbove->value : isWhole ? LOWEST : -INFINITE;
    const double high = mLowestBelow ? mLowestBelow->value : isWhole ? HIGHEST : INFINITE;
    if (low >= high || !isWhole) {
        return low > high || (low == high && IsPointExcluded(low));
    }
    const auto holes = std::distance(mHoles.lower_bound(low), mHoles.upper_bound(high));
    return static_cast<double>(holes) >= high - low + 1;
}

// True if the points fill the gap between two half-lines, including both its ends.
bool ValueSets::IsGapFilled(double low, double high) const
{
    if (low >= high || mKind == ValueKind::DECIMAL) {
        return low > high || (low == high && mPoints.count(low) != 0);
    }
    const auto points = std::distance(mPoints.lower_bound(low), mPoints.upper_bound(high));
    return static_cast<double>(points) >= high - low + 1;
}

bool ValueSets::IsEveryOnePassingOne() const
{
    if (mKind == ValueKind::TEXT) {
        return mOtherTexts.size() > 1 || (mOtherTexts.size() == 1 && mTexts.count(*mOtherTexts.begin()) != 0);
    }
    if (!mHoles.empty()) {
        const double hole = *mHoles.begin();
        const bool isBelow = mHighestBelow
            && (hole < mHighestBelow->value || (hole == mHighestBelow->value && !mHighestBelow->isOpen));
        const bool isAbove = mLowestAbove
            && (hole > mLowestAbove->value || (hole == mLowestAbove->value && !mLowestAbove->isOpen));
        return mHoles.size() > 1 || isBelow || isAbove || mPoints.count(hole) != 0;
    }
    if (mKind == ValueKind::WHOLE) {
        return IsGapFilled(
            mHighestBelow ? mHighestBelow->value + 1 : LOWEST, mLowestAbove ? mLowestAbove->value - 1 : HIGHEST);
    }
    if (!mHighestBelow || !mLowestAbove) {
        return false;
    }
    // Half-lines that touch leave out their common end if both are open there.
    const bool isTouched = mHighestBelow->value == mLowestAbove->value && (!mHighestBelow->isOpen || !mLowestAbove->isOpen);
    return isTouched || IsGapFilled(mHighestBelow->value, mLowestAbove->value);
}

} // namespace diagnosis::lint
