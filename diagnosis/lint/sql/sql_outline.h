#ifndef ARBORIST_DIAGNOSIS_LINT_SQL_SQL_OUTLINE_H
#define ARBORIST_DIAGNOSIS_LINT_SQL_SQL_OUTLINE_H

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace diagnosis::lint {

/// A piece of an SQL text. Blanks and comments are none.
struct SqlToken {
    enum class Kind {
        WORD, ///< a keyword, a plain name or a number
        LITERAL, ///< a text in single quotes
        NAME, ///< a name in double quotes, back quotes or brackets
        SIGN, ///< one other character
    };

    Kind kind = Kind::SIGN;
    /// As the text has it, quotes included.
    std::string_view text;
    /// How many parentheses and "case" are open around it. A parenthesis belongs to what stands around it.
    std::size_t depth = 0;
    /// Of a parenthesis that opens: how many pieces stand within, and whether commas divide them.
    std::size_t within = 0;
    bool hasComma = false;
};

/// Whether a piece is this keyword, whatever its case. `word` is in lower case.
bool IsKeyword(const SqlToken& token, std::string_view word);
/// Whether a piece is this sign.
bool IsSign(const SqlToken& token, char sign);

/// An SQL text as SQLite divides it. Holds views of the text.
struct SqlPieces {
    std::vector<SqlToken> tokens;
    /// Whether the text ends within a comment, so that what is put behind it belongs to the comment.
    bool endsInComment = false;
};

SqlPieces ReadSql(std::string_view sql);

/// What stands at the top level of the last "select" of a statement. A query in parentheses is not looked into.
struct SqlOutline {
    /// Whether several queries are joined by "union", "intersect" or "except".
    bool isCompound = false;
    /// The pieces between the "select" and its "from", and those of the "from" clause.
    std::span<const SqlToken> columns;
    std::span<const SqlToken> from;
    /// The "where"; null where there is none.
    const SqlToken* where = nullptr;
    /// Whether an "or" stands in the condition of the "where".
    bool hasOr = false;
    /// Whether the "from" clause has a join with "on".
    bool hasOn = false;
    /// The first word of the clause that the query ends in and no condition can follow: "group", "having", "order" or
    /// "limit"; null where there is none.
    const SqlToken* tail = nullptr;
    /// Whether it has "group by", and whether it has "limit 1".
    bool isGrouped = false;
    bool hasLimitOne = false;
};

/// Outlines the last statement of some pieces. All of them stand in the same parentheses as the first.
SqlOutline OutlineOf(std::span<const SqlToken> tokens);

/// Whether a query can give no more than one row for its form: it has an aggregate, "limit 1" or no "from", or reads
/// all its rows from one query in parentheses that can't, either.
bool HasAtMostOneRow(std::span<const SqlToken> tokens);

} // namespace diagnosis::lint

#endif
