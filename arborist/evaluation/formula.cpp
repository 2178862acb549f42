#include "arborist/evaluation/formula.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "arborist/utilities/string_util.h"

namespace {

// The position of an operator is its priority; the blank separates the two levels by more than one.
constexpr std::string_view PRIORITY = "+- */";

// Number of pending values for which memory is reserved at once.
constexpr std::size_t USUAL_VALUES = 16;

bool IsLegalOperator(char sign)
{
    return sign == '+' || sign == '-' || sign == '*' || sign == '/';
}

bool IsSign(char letter)
{
    return letter == '(' || letter == ')' || IsLegalOperator(letter);
}

// The operator or parenthesis at the front, or the name up to the next one.
std::string_view FirstToken(std::string_view text)
{
    std::size_t length = 1;
    while (!IsSign(text.front()) && length < text.size() && !IsSign(text[length])) {
        ++length;
    }
    return text.substr(0, length);
}

// True if `top` is calculated before the incoming operator: only "*" and "/" before "+" or "-". Operators of one level
// wait, so that chains are calculated from the right.
bool IsPriorityIsBiggerOrTheSame(char top, std::string_view token)
{
    if (top != '*' && top != '/') {
        return false;
    }
    // A value that counts as an operator may have several characters; all of them are searched.
    const std::size_t place = token.size() == 1 ? PRIORITY.find(token.front()) : PRIORITY.find_first_of(token);
    return PRIORITY.find(top) >= place + 2;
}

// Records which values each operator joined, as a binary tree that is printed at the end, so that long chains are not
// copied at every step.
class Grouping {
public:
    void Push(std::string_view name)
    {
        mStack.push_back(mNodes.size());
        mNodes.push_back({name, 0, 0, '\0'});
    }

    // Removes the two last values; with an operator pushes their combination.
    void Join(char sign)
    {
        const std::size_t right = Pop();
        const std::size_t left = Pop();
        if (IsLegalOperator(sign)) {
            mStack.push_back(mNodes.size());
            mNodes.push_back({{}, left, right, sign});
        }
    }

    std::string Text() const
    {
        std::string text;
        std::vector<Step> steps{{mStack.back(), WHOLE}};
        while (!steps.empty()) {
            const Step step = steps.back();
            steps.pop_back();
            Write(step, text, steps);
        }
        return text;
    }

private:
    struct Node {
        std::string_view name;
        std::size_t left;
        std::size_t right;
        char sign;
    };
    enum Form { WHOLE, NESTED, SIGN, CLOSE };
    struct Step {
        std::size_t node;
        Form form;
    };

    std::size_t Pop()
    {
        const std::size_t node = mStack.back();
        mStack.pop_back();
        return node;
    }

    void Write(const Step& step, std::string& text, std::vector<Step>& steps) const
    {
        const Node& node = mNodes[step.node];
        if (step.form == SIGN) {
            text.append({' ', node.sign, ' '});
        } else if (step.form == CLOSE) {
            text += ')';
        } else if (node.sign == '\0') {
            text += node.name;
        } else {
            if (step.form == NESTED) {
                text += '(';
                steps.push_back({step.node, CLOSE});
            }
            steps.push_back({node.right, NESTED});
            steps.push_back({step.node, SIGN});
            steps.push_back({node.left, NESTED});
        }
    }

    std::vector<Node> mNodes;
    std::vector<std::size_t> mStack; // parallel to the stack of numbers
};

// The two stacks of a calculation. Every step returns whether the calculation can continue.
class Calculation {
public:
    explicit Calculation(Grouping* grouping) : mGrouping(grouping)
    {
        mNumbers.reserve(USUAL_VALUES);
    }

    // `value` is null or empty if `token` has no value and is used itself.
    bool Take(std::string_view token, const std::string* value)
    {
        const bool hasValue = value != nullptr && !value->empty();
        const std::string_view text = hasValue ? *value : token;
        const char sign = text.front();
        NoteTakenForZero(token, text, value);
        if (IsLegalOperator(sign)) {
            return RunLegalOperator(text);
        }
        if (sign == '(') {
            mOperators.push_back(sign);
            return true;
        }
        if (sign == ')') {
            return RunParenthesis();
        }
        Push(StringUtil::StringToDoubleDef(hasValue ? *value : std::string(token), 0), token);
        return true;
    }

    bool Finish()
    {
        while (!mOperators.empty()) {
            if (!Compute()) {
                return false;
            }
        }
        return !mNumbers.empty();
    }

    double Result() const { return mNumbers.back(); }
    bool HasBadNumber() const { return mHasBadNumber; }
    bool HasUnknownName() const { return mHasUnknownName; }
    bool HasDividedByZero() const { return mHasDividedByZero; }

private:
    // Only where somebody wants to hear of the grouping, too. A name with an empty value has its own reason.
    void NoteTakenForZero(std::string_view token, std::string_view text, const std::string* value)
    {
        if (mGrouping == nullptr || IsSign(token.front()) || StringUtil::DoubleOf(std::string(text))) {
            mHasBadNumber = mHasBadNumber || (value != nullptr && !value->empty() && IsSign(text.front()));
        } else if (value == nullptr) {
            mHasUnknownName = true;
        } else {
            mHasBadNumber = mHasBadNumber || !value->empty();
        }
    }

    bool RunLegalOperator(std::string_view token)
    {
        while (!mOperators.empty() && IsPriorityIsBiggerOrTheSame(mOperators.back(), token)) {
            if (!Compute()) {
                return false;
            }
        }
        mOperators.push_back(token.front());
        return true;
    }

    bool RunParenthesis()
    {
        while (!mOperators.empty() && mOperators.back() != '(') {
            if (!Compute()) {
                return false;
            }
        }
        if (mOperators.empty()) {
            return false; // no "(" to go with this ")"
        }
        mOperators.pop_back();
        return true;
    }

    // Fails without two values: nothing can change any more, so that a caller's loop would never end.
    bool Compute()
    {
        if (mNumbers.size() < 2) {
            return false;
        }
        const char sign = mOperators.back();
        mOperators.pop_back();
        const double right = mNumbers.back();
        mNumbers.pop_back();
        const double left = mNumbers.back();
        mNumbers.pop_back();
        if (mGrouping != nullptr) {
            mGrouping->Join(sign);
        }
        mHasDividedByZero = mHasDividedByZero || (sign == '/' && right == 0);
        if (IsLegalOperator(sign)) { // an unclosed "(" drops both values
            mNumbers.push_back(Combine(sign, left, right));
        }
        return true;
    }

    static double Combine(char sign, double left, double right)
    {
        switch (sign) {
        case '+':
            return left + right;
        case '-':
            return left - right;
        case '*':
            return left * right;
        default:
            return right == 0 ? 0 : left / right;
        }
    }

    void Push(double number, std::string_view name)
    {
        mNumbers.push_back(number);
        if (mGrouping != nullptr) {
            mGrouping->Push(name);
        }
    }

    std::vector<double> mNumbers;
    std::string mOperators; // a string, whose short form needs no allocation for most formulas
    Grouping* mGrouping;
    bool mHasBadNumber = false;
    bool mHasUnknownName = false;
    bool mHasDividedByZero = false;
};

} // namespace

Formula::Formula(std::string expression) : mText(std::move(expression))
{
    std::erase(mText, ' '); // two words with a blank between them are one name
}

Formula::Outcome Formula::Calculate(const ValueOf& valueOf, bool withGrouping) const
{
    Grouping grouping;
    Calculation calculation(withGrouping ? &grouping : nullptr);
    Outcome outcome;
    bool isWellFormed = true;
    for (std::string_view rest = mText; !rest.empty() && isWellFormed;) {
        const std::string_view token = FirstToken(rest);
        rest.remove_prefix(token.size());
        isWellFormed = calculation.Take(token, IsSign(token.front()) ? nullptr : valueOf(token));
    }
    if (isWellFormed && calculation.Finish()) {
        outcome.result = StringUtil::FixedText(calculation.Result());
        outcome.grouping = withGrouping ? grouping.Text() : std::string();
    }
    outcome.hasBadNumber = calculation.HasBadNumber();
    outcome.hasUnknownName = calculation.HasUnknownName();
    outcome.hasDividedByZero = calculation.HasDividedByZero();
    return outcome;
}
