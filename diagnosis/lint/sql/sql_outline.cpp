#include "diagnosis/lint/sql/sql_outline.h"

#include <algorithm>
#include <array>

namespace diagnosis::lint {

namespace {

using Kind = SqlToken::Kind;
using Tokens = std::span<const SqlToken>;

char Lower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// For SQLite every byte beyond ASCII is a letter of a name.
bool IsOfWord(char letter)
{
    const char lower = Lower(letter);
    return (lower >= 'a' && lower <= 'z') || (letter >= '0' && letter <= '9') || letter == '_' || letter == '$'
        || letter == '.' || static_cast<unsigned char>(letter) >= 0x80;
}

bool IsBlank(char letter)
{
    return letter == ' ' || (letter >= '\t' && letter <= '\r');
}

char ClosingQuote(char opening)
{
    return opening == '[' ? ']' : opening;
}

class Reader {
public:
    explicit Reader(std::string_view sql) : mRest(sql) {}

    SqlPieces Read()
    {
        while (!mRest.empty()) {
            if (IsBlank(mRest.front())) {
                mRest.remove_prefix(1);
            } else if (mRest.starts_with("--")) {
                SkipComment("\n");
            } else if (mRest.starts_with("/*")) {
                SkipComment("*/");
            } else {
                ReadToken();
            }
        }
        while (!mOpen.empty()) {
            Close();
        }
        return std::move(mPieces);
    }

private:
    void SkipComment(std::string_view end)
    {
        const std::size_t place = mRest.find(end, 2);
        mPieces.endsInComment = place == std::string_view::npos;
        mRest.remove_prefix(mPieces.endsInComment ? mRest.size() : place + end.size());
    }

    void ReadToken()
    {
        const char first = mRest.front();
        if (first == '\'' || first == '"' || first == '`' || first == '[') {
            Add(first == '\'' ? Kind::LITERAL : Kind::NAME, QuotedLength(ClosingQuote(first)));
        } else if (IsOfWord(first)) {
            const auto end = std::find_if_not(mRest.begin(), mRest.end(), IsOfWord);
            Add(Kind::WORD, static_cast<std::size_t>(end - mRest.begin()));
        } else {
            Add(Kind::SIGN, 1);
        }
    }

    // A doubled quote is an escaped one. Treating it as the start of another literal gives the same pieces around it.
    std::size_t QuotedLength(char closing) const
    {
        const std::size_t place = mRest.find(closing, 1);
        return place == std::string_view::npos ? mRest.size() : place + 1;
    }

    void Add(Kind kind, std::size_t length)
    {
        const SqlToken token{kind, mRest.substr(0, length), mOpen.size()};
        mRest.remove_prefix(length);
        auto& tokens = mPieces.tokens;
        const bool isInParentheses = !mOpen.empty() && IsSign(tokens[mOpen.back()], '(');
        if (!mOpen.empty() && (isInParentheses ? IsSign(token, ')') : IsKeyword(token, "end"))) {
            Close();
        }
        tokens.push_back(token);
        tokens.back().depth = mOpen.size();
        if (isInParentheses && IsSign(token, ',')) {
            tokens[mOpen.back()].hasComma = true;
        } else if (IsSign(token, '(') || IsKeyword(token, "case")) {
            mOpen.push_back(tokens.size() - 1);
        }
    }

    void Close()
    {
        mPieces.tokens[mOpen.back()].within = mPieces.tokens.size() - mOpen.back() - 1;
        mOpen.pop_back();
    }

    std::string_view mRest;
    std::vector<std::size_t> mOpen; // open parentheses and "case", as indexes of their tokens
    SqlPieces mPieces;
};

bool IsOneOf(const SqlToken& token, std::initializer_list<std::string_view> words)
{
    return std::any_of(words.begin(), words.end(), [&token](auto word) { return IsKeyword(token, word); });
}

// The clauses of a query in their order. A clause begins with its word, and ends where the next one begins.
class Outliner {
public:
    explicit Outliner(Tokens tokens) : mTokens(tokens) {}

    SqlOutline Read()
    {
        for (std::size_t place = 0; place < mTokens.size(); ++place) {
            if (IsSign(mTokens[place], '(')) {
                place += mTokens[place].within;
            } else if (mTokens[place].depth == mTokens.front().depth) {
                Take(place);
            }
        }
        EndClause(mTokens.size());
        return mOutline;
    }

private:
    bool IsFollowedBy(std::size_t place, std::string_view word) const
    {
        return place + 1 < mTokens.size() && IsKeyword(mTokens[place + 1], word);
    }

    void Take(std::size_t place)
    {
        const SqlToken& token = mTokens[place];
        if (IsSign(token, ';') && place + 1 < mTokens.size()) {
            mOutline = {};
            mClause = nullptr;
        } else if (IsOneOf(token, {"union", "intersect", "except"})) {
            mOutline = {};
            mOutline.isCompound = true;
            mClause = nullptr;
        } else if (IsOneOf(token, {"select", "from", "where", "having", "limit"})
            || (IsOneOf(token, {"group", "order"}) && IsFollowedBy(place, "by"))) {
            BeginClause(place);
        } else if (mClause != nullptr) {
            mOutline.hasOr = mOutline.hasOr || (mClause == mOutline.where && IsKeyword(token, "or"));
            mOutline.hasOn = mOutline.hasOn || (IsKeyword(*mClause, "from") && IsKeyword(token, "on"));
        }
    }

    void BeginClause(std::size_t place)
    {
        const SqlToken& token = mTokens[place];
        EndClause(place);
        mClause = &token;
        mStart = place + 1;
        if (IsKeyword(token, "where")) {
            mOutline.where = &token;
        } else if (!IsOneOf(token, {"select", "from"})) {
            mOutline.tail = &token;
        }
        mOutline.isGrouped = mOutline.isGrouped || IsKeyword(token, "group");
        mOutline.hasLimitOne = mOutline.hasLimitOne || (IsKeyword(token, "limit") && IsFollowedBy(place, "1"));
    }

    void EndClause(std::size_t place)
    {
        if (mClause != nullptr && IsKeyword(*mClause, "select")) {
            mOutline.columns = mTokens.subspan(mStart, place - mStart);
        } else if (mClause != nullptr && IsKeyword(*mClause, "from")) {
            mOutline.from = mTokens.subspan(mStart, place - mStart);
        }
    }

    Tokens mTokens;
    const SqlToken* mClause = nullptr;
    std::size_t mStart = 0;
    SqlOutline mOutline;
};

// The pieces within the parentheses that open at `place`.
Tokens Within(Tokens tokens, std::size_t place)
{
    return tokens.subspan(place + 1, std::min(tokens[place].within, tokens.size() - place - 1));
}

bool IsAggregate(Tokens tokens, std::size_t place)
{
    if (place + 1 >= tokens.size() || !IsSign(tokens[place + 1], '(')) {
        return false;
    }
    const SqlToken& parenthesis = tokens[place + 1];
    const std::size_t behind = place + parenthesis.within + 3;
    if (behind < tokens.size() && IsKeyword(tokens[behind], "over")) {
        return false; // a window function returns a row for each row
    }
    if (IsOneOf(tokens[place], {"min", "max"})) {
        return !parenthesis.hasComma; // with several arguments they are no aggregates
    }
    return IsOneOf(tokens[place], {"count", "sum", "avg", "total", "group_concat", "string_agg"});
}

// Skips queries in parentheses: their aggregates are not those of the query around them.
bool HasAggregate(Tokens columns)
{
    for (std::size_t place = 0; place < columns.size(); ++place) {
        if (IsSign(columns[place], '(')) {
            const Tokens inner = Within(columns, place);
            place += !inner.empty() && IsKeyword(inner.front(), "select") ? inner.size() : 0;
        } else if (IsAggregate(columns, place)) {
            return true;
        }
    }
    return false;
}

// The query in parentheses that is the only source of a "from" clause; empty if there is another source.
Tokens OnlyQuery(Tokens from)
{
    if (from.empty() || !IsSign(from.front(), '(')) {
        return {};
    }
    const Tokens inner = Within(from, 0);
    const Tokens behind = from.subspan(std::min(from.size(), inner.size() + 2));
    const bool isOnly = std::none_of(behind.begin(), behind.end(),
        [](const auto& token) { return IsSign(token, ',') || IsKeyword(token, "join"); });
    return isOnly ? inner : Tokens();
}

} // namespace

bool IsKeyword(const SqlToken& token, std::string_view word)
{
    return token.kind == Kind::WORD
        && std::equal(token.text.begin(), token.text.end(), word.begin(), word.end(),
            [](char letter, char wanted) { return Lower(letter) == wanted; });
}

bool IsSign(const SqlToken& token, char sign)
{
    return token.kind == Kind::SIGN && token.text.front() == sign;
}

SqlPieces ReadSql(std::string_view sql)
{
    return Reader(sql).Read();
}

SqlOutline OutlineOf(std::span<const SqlToken> tokens)
{
    return Outliner(tokens).Read();
}

bool HasAtMostOneRow(std::span<const SqlToken> tokens)
{
    while (!tokens.empty()) {
        const SqlOutline outline = OutlineOf(tokens);
        if (outline.hasLimitOne || (!outline.isCompound && outline.from.empty())) {
            return true;
        }
        if (outline.isCompound || outline.isGrouped) {
            return false;
        }
        if (HasAggregate(outline.columns)) {
            return true;
        }
        tokens = OnlyQuery(outline.from);
    }
    return false;
}

} // namespace diagnosis::lint
