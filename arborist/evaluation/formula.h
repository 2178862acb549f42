#ifndef ARBORIST_EVALUATION_FORMULA_H
#define ARBORIST_EVALUATION_FORMULA_H

#include <functional>
#include <string>
#include <string_view>

/// An arithmetic formula over named values, worked out by the rules that rule files are written for.
///
/// "*" and "/" go before "+" and "-". Within one level a chain is worked out from the right: "10 - 3 - 2" is 9 and
/// "2 * 6 / 3" is 4. Divided by 0 is 0, and a name without a value that is no number counts as 0 (with an error in
/// the log). A value that begins with an operator, such as a negative number, counts as that operator. A blank never
/// ends a name. Takes time in proportion to the text, whatever it holds.
class Formula {
public:
    /// The value of a name: null or empty when it has none, which leaves the name to stand for itself.
    using ValueOf = std::function<const std::string*(std::string_view name)>;

    struct Outcome {
        /// Six decimals; empty when the formula is ill-formed: an operator lacks a value, or parentheses their other.
        std::string result;
        /// The formula as it was worked out, every grouping in parentheses: "10 - (3 - 2)". Empty when not asked for
        /// and when there is no result.
        std::string grouping;
    };

    explicit Formula(std::string expression);

    /// Without a word or sign.
    bool IsEmpty() const { return mText.empty(); }
    Outcome Calculate(const ValueOf& valueOf, bool withGrouping) const;

private:
    std::string mText; // without blanks
};

#endif
