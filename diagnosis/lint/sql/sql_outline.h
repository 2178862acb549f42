#ifndef ARBORIST_DIAGNOSIS_LINT_SQL_SQL_OUTLINE_H
#define ARBORIST_DIAGNOSIS_LINT_SQL_SQL_OUTLINE_H

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace diagnosis::lint {

/// A piece of an SQL text. Blanks and comments are no pieces.
struct SqlToken {
    enum class Kind {
        WORD, ///< a keyword, a plain name or a number
        LITERAL, ///< a text in single quotes
        NAME, ///< a name in double quotes, back quotes or brackets
        SIGN, ///< one other character
    };

    Kind kind = Kind::SIGN;
    /// As in the text, with quotes.
    std::string_view text;
    /// The number of parentheses and "case" around it. A parenthesis itself has the depth outside of it.
    std::size_t depth = 0;
    /// For an opening parenthesis: the number of pieces inside, and whether commas separate them.
    std::size_t within = 0;
    bool hasComma = false;
};

/// Whether a piece is this keyword, ignoring case. `word` is in lower case.
bool IsKeyword(const SqlToken& token, std::string_view word);
/// Whether a piece is this sign.
bool IsSign(const SqlToken& token, char sign);

/// An SQL text divided like SQLite divides it. Refers to the text, which must outlive it.
struct SqlPieces {
    std::vector<SqlToken> tokens;
    /// True if the text ends within a comment, so that anything appended to it becomes part of the comment.
    bool endsInComment = false;
};

SqlPieces ReadSql(std::string_view sql);

/// The top level of the last "select" of a statement, without the inside of queries in parentheses.
struct SqlOutline {
    /// Whether several queries are joined by "union", "intersect" or "except".
    bool isCompound = false;
    /// The pieces between the "select" and its "from", and those of the "from" clause.
    std::span<const SqlToken> columns;
    std::span<const SqlToken> from;
    /// The word "where"; null if there is none.
    const SqlToken* where = nullptr;
    /// Whether the condition of the "where" has an "or".
    bool hasOr = false;
    /// Whether the "from" clause has a join with "on".
    bool hasOn = false;
    /// The first word of the first clause after which no condition can be added: "group", "having", "order" or "limit";
    /// null if there is none.
    const SqlToken* tail = nullptr;
    /// Whether it has "group by", and whether it has "limit 1".
    bool isGrouped = false;
    bool hasLimitOne = false;
};

/// Outlines the last statement of some pieces, which begin and end at the same depth.
SqlOutline OutlineOf(std::span<const SqlToken> tokens);

/// True if the form of a query limits it to one row: it has an aggregate, "limit 1" or no "from", or its only source is
/// a query in parentheses of such a form.
bool HasAtMostOneRow(std::span<const SqlToken> tokens);

} // namespace diagnosis::lint

#endif
