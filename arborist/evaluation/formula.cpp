#include "arborist/evaluation/formula.h"

#include <cstddef>
#include <string_view>

#include "arborist/utilities/string_util.h"

namespace {

// An operator's place is its priority; the blank keeps the two levels more than one apart.
constexpr std::string_view PRIORITY = "+- */";

// Words and signs of a formula, room for which is made at once.
constexpr std::size_t USUAL_LENGTH = 16;

bool IsLegalOperator(char sign)
{
    return sign == '+' || sign == '-' || sign == '*' || sign == '/';
}

// Only "*" and "/" give way to an incoming "+" or "-". Operators of one level never do: chains go from the right.
bool IsPriorityIsBiggerOrTheSame(char top, const std::string& token)
{
    const std::size_t topPlace = PRIORITY.find(top);
    const std::size_t tokenPlace = PRIORITY.find_first_of(token);
    return topPlace != std::string_view::npos && topPlace >= tokenPlace + 2;
}

// Which values were joined by which operator: a binary tree that is written out at the end, so that long chains are
// not copied at every step.
class Grouping {
public:
    void Push(std::string_view name)
    {
        mStack.push_back(mNodes.size());
        mNodes.push_back({name, 0, 0, '\0'});
    }

    // Takes the two last values; with an operator it puts back what they make together.
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
    std::vector<std::size_t> mStack; // beside the numbers, value by value
};

// The two stacks of a calculation. Every step answers whether the calculation can go on.
class Calculation {
public:
    explicit Calculation(Grouping* grouping) : mGrouping(grouping)
    {
        mNumbers.reserve(USUAL_LENGTH);
        mOperators.reserve(USUAL_LENGTH);
    }

    bool Take(const std::string& text, const std::string& name)
    {
        const char sign = text.front();
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
        Push(StringUtil::StringToDoubleDef(text, 0), name);
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

private:
    bool RunLegalOperator(const std::string& token)
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

    // Without two values nothing can change any more: whoever asks again would ask for ever.
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
        if (IsLegalOperator(sign)) { // a "(" that was never closed takes both values with it
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

    void Push(double number, const std::string& name)
    {
        mNumbers.push_back(number);
        if (mGrouping != nullptr) {
            mGrouping->Push(name);
        }
    }

    std::vector<double> mNumbers;
    std::vector<char> mOperators;
    Grouping* mGrouping;
};

} // namespace

Formula::Formula(const std::string& expression, const ValueOf& valueOf)
{
    mTokens.reserve(USUAL_LENGTH);
    std::string name;
    for (const char sign : expression) {
        if (sign == '(' || sign == ')' || IsLegalOperator(sign)) {
            CloseName(name, valueOf);
            mTokens.push_back({std::string(1, sign), nullptr});
        } else if (sign != ' ') { // two words with a blank between them are one name
            name += sign;
        }
    }
    CloseName(name, valueOf);
}

void Formula::CloseName(std::string& name, const ValueOf& valueOf)
{
    if (name.empty()) {
        return;
    }
    const std::string* value = valueOf(name);
    mTokens.push_back({std::move(name), value != nullptr && !value->empty() ? value : nullptr});
    name.clear();
}

Formula::Outcome Formula::Calculate(bool withGrouping) const
{
    Grouping grouping;
    Calculation calculation(withGrouping ? &grouping : nullptr);
    for (const auto& token : mTokens) {
        if (!calculation.Take(token.Text(), token.name)) {
            return {};
        }
    }
    if (!calculation.Finish()) {
        return {};
    }
    return {StringUtil::FixedText(calculation.Result()), withGrouping ? grouping.Text() : std::string()};
}
