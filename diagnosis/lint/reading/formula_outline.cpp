#include "diagnosis/lint/reading/formula_outline.h"

namespace diagnosis::lint {

namespace {

using Pieces = std::vector<FormulaPiece>;

bool IsSign(char letter)
{
    return std::string_view("()+-*/").find(letter) != std::string_view::npos;
}

std::string_view WithoutBlanksAround(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool IsOfSum(char sign)
{
    return sign == '+' || sign == '-';
}

// Joins operands with two stacks, like the engine, and counts the parentheses that each piece gets.
class Joining {
public:
    explicit Joining(const Pieces& pieces) : mPieces(pieces), mOpened(pieces.size()), mClosed(pieces.size()) {}

    std::string Write()
    {
        for (std::size_t place = 0; place < mPieces.size(); ++place) {
            Take(place);
        }
        while (!mOperators.empty()) {
            Join();
        }
        return Text();
    }

private:
    // A value: the pieces from `first` to `last`.
    struct Value {
        std::size_t first;
        std::size_t last;
        bool isJoined;
    };

    void Take(std::size_t place)
    {
        const char sign = mPieces[place].sign;
        if (sign == '(') {
            mOperators.push_back(place);
        } else if (sign == ')') {
            while (SignOf(mOperators.back()) != '(') {
                Join();
            }
            mValues.back() = {mOperators.back(), place, false};
            mOperators.pop_back();
        } else if (mPieces[place].IsOperand()) {
            mValues.push_back({place, place, false});
        } else {
            while (!mOperators.empty() && GoesBefore(SignOf(mOperators.back()), sign)) {
                Join();
            }
            mOperators.push_back(place);
        }
    }

    char SignOf(std::size_t place) const { return mPieces[place].sign; }

    // An operator is applied after those of its level to its right.
    static bool GoesBefore(char waiting, char sign)
    {
        return (waiting == '*' || waiting == '/') && (sign == '+' || sign == '-');
    }

    void Join()
    {
        const Value right = mValues.back();
        mValues.pop_back();
        const Value left = mValues.back();
        Enclose(left);
        Enclose(right);
        mValues.back() = {left.first, right.last, true};
        mOperators.pop_back();
    }

    void Enclose(const Value& value)
    {
        if (value.isJoined) {
            ++mOpened[value.first];
            ++mClosed[value.last];
        }
    }

    std::string Text() const
    {
        std::string text;
        for (std::size_t place = 0; place < mPieces.size(); ++place) {
            const FormulaPiece& piece = mPieces[place];
            text.append(mOpened[place], '(');
            if (piece.IsOperand()) {
                text += piece.operand;
            } else {
                text += piece.IsOperator() ? std::string{' ', piece.sign, ' '} : std::string(1, piece.sign);
            }
            text.append(mClosed[place], ')');
        }
        return text;
    }

    const Pieces& mPieces;
    std::vector<std::size_t> mOpened;
    std::vector<std::size_t> mClosed;
    std::vector<Value> mValues;
    std::vector<std::size_t> mOperators; // and open parentheses, as indexes of their pieces
};

} // namespace

std::vector<FormulaPiece> ReadFormula(std::string_view formula)
{
    Pieces pieces;
    std::size_t start = 0;
    for (std::size_t place = 0; place <= formula.size(); ++place) {
        const bool isEnd = place == formula.size();
        if (!isEnd && !IsSign(formula[place])) {
            continue;
        }
        const std::string_view operand = WithoutBlanksAround(formula.substr(start, place - start));
        if (!operand.empty()) {
            pieces.push_back({'\0', operand});
        }
        if (!isEnd) {
            pieces.push_back({formula[place]});
        }
        start = place + 1;
    }
    return pieces;
}

std::string FaultOf(const Pieces& pieces)
{
    std::size_t open = 0;
    bool wantsOperand = true;
    for (const FormulaPiece& piece : pieces) {
        const bool isStart = piece.IsOperand() || piece.sign == '(';
        const std::string text = piece.IsOperand() ? std::string(piece.operand) : std::string(1, piece.sign);
        if (isStart != wantsOperand) {
            return std::string(wantsOperand ? "there is no number or name" : "there is no operator") + " before \"" + text + "\"";
        }
        if (piece.sign == ')' && open == 0) {
            return "a \")\" has no \"(\"";
        }
        open += piece.sign == '(' ? 1U : 0U;
        open -= piece.sign == ')' ? 1U : 0U;
        wantsOperand = piece.sign == '(' || piece.IsOperator();
    }
    return wantsOperand ? "there is no number or name at its end" : open > 0 ? "a \"(\" has no \")\"" : "";
}

std::string WithParentheses(const Pieces& pieces)
{
    return Joining(pieces).Write();
}

bool IsOrderVital(const Pieces& pieces)
{
    // The previous operator of each level in each open pair of parentheses. An operator of the lower level ends a run
    // of the higher one.
    struct Level {
        char sum = '\0';
        char product = '\0';
    };
    std::vector<Level> levels(1);
    for (const FormulaPiece& piece : pieces) {
        if (piece.sign == '(') {
            levels.emplace_back();
        } else if (piece.sign == ')') {
            levels.pop_back();
        } else if (piece.IsOperator()) {
            const bool isSum = IsOfSum(piece.sign);
            char& before = isSum ? levels.back().sum : levels.back().product;
            if (before == '-' || before == '/') {
                return true;
            }
            before = piece.sign;
            levels.back().product = isSum ? '\0' : piece.sign;
        }
    }
    return false;
}

} // namespace diagnosis::lint
