#ifndef ARBORIST_DIAGNOSIS_LINT_READING_FORMULA_OUTLINE_H
#define ARBORIST_DIAGNOSIS_LINT_READING_FORMULA_OUTLINE_H

#include <string>
#include <string_view>
#include <vector>

namespace diagnosis::lint {

/// A piece of a node rule's formula: a sign, or an operand, which is a name or a number.
struct FormulaPiece {
    /// One of "()+-*/"; NUL for an operand.
    char sign = '\0';
    /// An operand without the blanks around it. The engine also drops those inside it.
    std::string_view operand = {};

    bool IsOperand() const { return sign == '\0'; }
    bool IsOperator() const { return sign == '+' || sign == '-' || sign == '*' || sign == '/'; }
};

/// Divides a formula like the engine: each sign is a piece, and blanks don't separate operands.
std::vector<FormulaPiece> ReadFormula(std::string_view formula);

/// The problem with the form of a formula, "there is no operator before ..."; empty if each operator has two operands
/// and all parentheses are paired.
std::string FaultOf(const std::vector<FormulaPiece>& pieces);

/// A well-formed formula with parentheses around each operation in the engine's order: "*" and "/" before "+" and
/// "-", and within one level the right operator first.
std::string WithParentheses(const std::vector<FormulaPiece>& pieces);

/// Whether in a well-formed formula a "-" or a "/" is followed by another operator of its level, so that it matters
/// which one goes first.
bool IsOrderVital(const std::vector<FormulaPiece>& pieces);

} // namespace diagnosis::lint

#endif
