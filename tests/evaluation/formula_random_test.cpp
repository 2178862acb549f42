// Compares random formulas, including ill-formed ones and values that are operators, with a plain implementation on two
// stacks.

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "arborist/evaluation/formula.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_cases.h"

namespace {

using Values = std::map<std::string, std::string, std::less<>>;

// The tokens of a formula, with names replaced by their values.
std::vector<std::string> Tokens(const std::string& formula, const Values& values)
{
    std::vector<std::string> tokens;
    std::string name;
    const auto closeName = [&] {
        if (!name.empty()) {
            const auto value = values.find(name);
            tokens.push_back(value == values.end() || value->second.empty() ? name : value->second);
            name.clear();
        }
    };
    for (const char letter : formula) {
        if (std::string_view("()+-*/").find(letter) != std::string_view::npos) {
            closeName();
            tokens.emplace_back(1, letter);
        } else if (letter != ' ') {
            name += letter;
        }
    }
    closeName();
    return tokens;
}

// A calculation on two stacks. Ends without a result if a step would change nothing or read an empty stack.
class TwoStacks {
public:
    std::string Result(const std::vector<std::string>& tokens)
    {
        for (const std::string& token : tokens) {
            Take(token);
        }
        while (!mIsStuck && !mOperators.empty()) {
            Compute();
        }
        if (mIsStuck || mNumbers.empty()) {
            return "";
        }
        if (std::isnan(mNumbers.back())) {
            return std::signbit(mNumbers.back()) ? "-nan" : "nan"; // which the C library of Windows writes without its sign
        }
        char text[400];
        std::snprintf(text, sizeof(text), "%f", mNumbers.back());
        return text;
    }

private:
    void Take(const std::string& token)
    {
        switch (token[0]) {
        case '+':
        case '-':
        case '*':
        case '/':
            while (!mIsStuck && !mOperators.empty() && GivesWay(mOperators.back(), token)) {
                Compute();
            }
            mOperators.push_back(token[0]);
            break;
        case '(':
            mOperators.push_back('(');
            break;
        case ')':
            while (!mIsStuck && !mOperators.empty() && mOperators.back() != '(') {
                Compute();
            }
            mIsStuck = mIsStuck || mOperators.empty();
            if (!mIsStuck) {
                mOperators.pop_back();
            }
            break;
        default:
            mNumbers.push_back(NumberOf(token));
        }
    }

    // Compares positions in a text in which the two levels are two apart; any letter of the token counts.
    static bool GivesWay(char top, const std::string& token)
    {
        const std::string places = "+- */";
        const auto topPlace = places.find(top);
        return topPlace != std::string::npos &&
            static_cast<int>(topPlace) - static_cast<int>(places.find_first_of(token)) >= 2;
    }

    static double NumberOf(const std::string& token)
    {
        char* end = nullptr;
        errno = 0;
        const double number = std::strtod(token.c_str(), &end);
        return end == token.c_str() || errno == ERANGE ? 0 : number;
    }

    void Compute()
    {
        mIsStuck = mIsStuck || mNumbers.size() < 2;
        if (mIsStuck) {
            return;
        }
        const double right = mNumbers.back();
        mNumbers.pop_back();
        const double left = mNumbers.back();
        mNumbers.pop_back();
        const char sign = mOperators.back();
        mOperators.pop_back();
        if (sign == '+') {
            mNumbers.push_back(left + right);
        } else if (sign == '-') {
            mNumbers.push_back(left - right);
        } else if (sign == '*') {
            mNumbers.push_back(left * right);
        } else if (sign == '/') {
            mNumbers.push_back(right == 0 ? 0 : left / right);
        }
    }

    std::vector<double> mNumbers;
    std::vector<char> mOperators;
    bool mIsStuck = false;
};

TEST(FormulaRandomTest, GivesWhatTwoPlainStacksGive)
{
    const LogCapture log;
    const Values values = {{"a", "5"}, {"b", "2.5"}, {"zero", "0"}, {"negative", "-4"}, {"times", "*"}, {"slash", "/ 2"},
        {"open", "("}, {"close", ")"}, {"empty", ""}, {"text", "x"}, {"line", "7\n"}, {"blank", " 8"}, {"mixed", "*4 -"},
        {"large", "1e300"}};
    RandomCases cases(5000);
    for (int index = 0; index < cases.GetCount(); ++index) {
        const std::string formula = cases.Join({"a", "b", "3", "10", "0", "1e5", "zero", "negative", "times", "slash",
            "open", "close", "empty", "text", "line", "blank", "mixed", "large", "inf", "unknown", "+", "-", "*", "/",
            "+", "-", "*", "/", "a + b", "b * a", "10 / 4 - a", "(", ")", "(a - b)", " ", " "}, 12);
        const auto valueOf = [&values](std::string_view name) {
            const auto value = values.find(name);
            return value == values.end() ? nullptr : &value->second;
        };
        EXPECT_EQ(Formula(formula).Calculate(valueOf, false).result, TwoStacks().Result(Tokens(formula, values)))
            << "'" << formula << "' seed " << cases.GetSeed();
    }
}

} // namespace
