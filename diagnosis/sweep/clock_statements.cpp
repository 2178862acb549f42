#include "diagnosis/sweep/clock_statements.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "diagnosis/lint/sql/derived_tables.h"
#include "diagnosis/lint/sql/sql_outline.h"

namespace diagnosis {

namespace {

using lint::SqlToken;
using Tokens = std::vector<SqlToken>;

constexpr const char* CLOCK_WORDS[] = {"current_time", "current_date", "current_timestamp", "random", "randomblob",
    "changes", "total_changes", "last_insert_rowid"};
constexpr const char* DATE_FUNCTIONS[] = {
    "date", "time", "datetime", "julianday", "unixepoch", "strftime", "timediff"};
// Words after which a name is an operand, and no alias of what is before it.
constexpr const char* BEFORE_OPERANDS[] = {"select", "distinct", "all", "where", "and", "or", "not", "by", "on", "having",
    "between", "when", "then", "else", "case", "in", "like", "is", "limit", "offset", "glob", "exists", "using"};

template <typename Words>
bool IsOneOf(const SqlToken& token, const Words& words)
{
    return std::any_of(
        std::begin(words), std::end(words), [&](const char* word) { return lint::IsKeyword(token, word); });
}

// The name in a piece, in lower case and without quotes; empty for a sign.
std::string NameOf(const SqlToken& token)
{
    if (token.kind == SqlToken::Kind::SIGN) {
        return {};
    }
    const bool isQuoted = token.kind != SqlToken::Kind::WORD && token.text.size() >= 2;
    return lint::LowerName(isQuoted ? token.text.substr(1, token.text.size() - 2) : token.text);
}

// A date function reads the clock unless it converts a number of seconds: a text may be "now", also one of a column.
bool IsOfClock(const Tokens& tokens, std::size_t place)
{
    if (IsOneOf(tokens[place], CLOCK_WORDS)) {
        return true;
    }
    const bool isCall = place + 1 < tokens.size() && lint::IsSign(tokens[place + 1], '(');
    if (!isCall || !IsOneOf(tokens[place], DATE_FUNCTIONS)) {
        return false;
    }
    const auto first = tokens.begin() + static_cast<std::ptrdiff_t>(place) + 2;
    const auto end = first + static_cast<std::ptrdiff_t>(std::min(tokens[place + 1].within, tokens.size() - place - 2));
    return std::none_of(first, end, [](const SqlToken& token) {
        return token.kind == SqlToken::Kind::LITERAL && NameOf(token) == "unixepoch";
    });
}

// True if the piece is an alias that a statement gives to what is before it, and no operand.
bool IsNewName(const Tokens& tokens, std::size_t place)
{
    if (place == 0) {
        return false;
    }
    const SqlToken& before = tokens[place - 1];
    return before.kind == SqlToken::Kind::SIGN ? lint::IsSign(before, ')') : !IsOneOf(before, BEFORE_OPERANDS);
}

} // namespace

const char* ClockUseOf(std::string_view sql, bool readsFixedTable)
{
    const lint::SqlPieces pieces = lint::ReadSql(sql);
    const Tokens& tokens = pieces.tokens;
    bool namesTime = false;
    bool hasNewTime = false;
    bool hasStar = false;
    for (std::size_t place = 0; place < tokens.size(); ++place) {
        if (IsOfClock(tokens, place)) {
            return "reads_clock";
        }
        const bool isTime = NameOf(tokens[place]) == "occurrence_time";
        namesTime = namesTime || isTime;
        // After "with", a list of names may precede what they name.
        hasNewTime = hasNewTime || (isTime && (IsNewName(tokens, place) || lint::IsKeyword(tokens.front(), "with")));
        const bool isCount = place >= 2 && lint::IsSign(tokens[place - 1], '(') && lint::IsKeyword(tokens[place - 2], "count");
        hasStar = hasStar || (lint::IsSign(tokens[place], '*') && !isCount);
    }
    if (readsFixedTable && (namesTime || hasStar)) {
        return "fixed_table";
    }
    return hasNewTime ? "own_time" : nullptr;
}

} // namespace diagnosis
