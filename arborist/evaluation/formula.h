#ifndef ARBORIST_EVALUATION_FORMULA_H
#define ARBORIST_EVALUATION_FORMULA_H

#include <functional>
#include <string>
#include <string_view>

/// An arithmetic formula over named values, calculated by the rules on which rule files rely.
///
/// "*" and "/" precede "+" and "-". Within one level a chain is calculated from the right: "10 - 3 - 2" is 9 and "2 * 6
/// / 3" is 4. Division by 0 gives 0, and a name that has no value and is no number counts as 0 (with an error in the
/// log). A value that begins with an operator, such as a negative number, counts as that operator. A blank never ends a
/// name. Takes time proportional to the length of the text.
class Formula {
public:
    /// The value of a name; null or empty if it has none, so that the name itself is used.
    using ValueOf = std::function<const std::string*(std::string_view name)>;

    struct Outcome {
        /// The result with six decimals; empty if the formula is ill-formed: an operator without a value, or an
        /// unmatched parenthesis.
        std::string result;
        /// The formula with every grouping in parentheses: "10 - (3 - 2)". Empty unless requested, and if there is no
        /// result.
        std::string grouping;
        /// A value is no number and counts as 0, or begins with an operator and counts as that.
        bool hasBadNumber = false;
        /// A name that nothing has, and that is no number, counts as 0.
        bool hasUnknownName = false;
        /// A division by 0 gave 0.
        bool hasDividedByZero = false;
    };

    explicit Formula(std::string expression);

    /// True if the text has no name, number or operator.
    bool IsEmpty() const { return mText.empty(); }
    Outcome Calculate(const ValueOf& valueOf, bool withGrouping) const;

private:
    std::string mText; // without blanks
};

#endif
