#include <string>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/command_rules.h"
#include "diagnosis/lint/sql/sql_outline.h"

namespace diagnosis::lint {

namespace {

using rule_source::CommandRule;

void AddAboutSql(const CommandRule& rule, const std::string& what, const char* help, Report& report)
{
    report.Add(rule.sqlElement, "the query of the rule " + Quoted(rule.name) + " " + what,
        {.help = help, .isAboutText = true});
}

/// Calls `visit(rule, pieces)` for each query that gets a time limit.
template <typename Visit>
void ForEachLimitedQuery(const Subject& subject, Visit visit)
{
    ForEachKept(subject.rules.rules.commandRules, [&visit](const CommandRule& rule) {
        if (IsLimited(rule) && rule.sqlElement.HasText()) {
            visit(rule, ReadSql(rule.sql));
        }
    });
}

/// Calls `visit(rule, outline)` for each query that gets a time limit, where the limit goes into the query.
template <typename Visit>
void ForEachLimitedOutline(const Subject& subject, Visit visit)
{
    ForEachLimitedQuery(subject, [&visit](const CommandRule& rule, const SqlPieces& pieces) {
        if (!pieces.tokens.empty() && !pieces.endsInComment && !IsSign(pieces.tokens.back(), ';')) {
            visit(rule, OutlineOf(pieces.tokens));
        }
    });
}

// The engine searches for these five lower-case letters only.
bool HasWhereLetters(const CommandRule& rule)
{
    return rule.sql.find("where") != std::string_view::npos;
}

void CheckOr(const Subject& subject, Report& report)
{
    ForEachLimitedOutline(subject, [&report](const CommandRule& rule, const SqlOutline& outline) {
        if (outline.hasOr && outline.tail == nullptr && HasWhereLetters(rule)) {
            AddAboutSql(rule, "has an \"or\" that is not in parentheses", "put parentheses around the condition",
                report);
        }
    });
}

std::string ClauseOf(const SqlToken& word)
{
    return IsKeyword(word, "group") || IsKeyword(word, "order") ? Quoted(std::string(word.text) + " by")
                                                                : Quoted(word.text);
}

void CheckTail(const Subject& subject, Report& report)
{
    ForEachLimitedOutline(subject, [&report](const CommandRule& rule, const SqlOutline& outline) {
        if (outline.tail != nullptr) {
            AddAboutSql(rule, "ends in " + ClauseOf(*outline.tail) + ", where no condition can follow",
                "put that part into a query in parentheses: select ... from (select ...)", report);
        }
    });
}

// Removes a ";" that only blanks and other semicolons follow.
FixOf WithoutSemicolon(std::string_view sql, const SqlToken& semicolon)
{
    const auto place = static_cast<std::size_t>(semicolon.text.data() - sql.data());
    const bool isLast = sql.find_first_not_of(" \t\r\n;", place) == std::string_view::npos;
    return isLast ? FixOf::Text(std::string(sql.substr(0, place)), false) : FixOf();
}

void CheckSemicolon(const Subject& subject, Report& report)
{
    ForEachLimitedQuery(subject, [&report](const CommandRule& rule, const SqlPieces& pieces) {
        for (const SqlToken& token : pieces.tokens) {
            if (token.depth == 0 && IsSign(token, ';')) {
                report.Add(rule.sqlElement, "the query of the rule " + Quoted(rule.name) + " has a \";\" before its end",
                    {.help = "leave the \";\" out", .fix = WithoutSemicolon(rule.sql, token), .isAboutText = true});
                return;
            }
        }
    });
}

void CheckComment(const Subject& subject, Report& report)
{
    ForEachLimitedQuery(subject, [&report](const CommandRule& rule, const SqlPieces& pieces) {
        if (pieces.endsInComment) {
            AddAboutSql(rule, "ends in a comment", "leave the comment out, or end its line", report);
        }
    });
}

void CheckCapitals(const Subject& subject, Report& report)
{
    ForEachLimitedOutline(subject, [&report](const CommandRule& rule, const SqlOutline& outline) {
        if (outline.where != nullptr && !HasWhereLetters(rule)) {
            AddAboutSql(rule, "has " + Quoted(outline.where->text) + ", which is not taken for a condition",
                "write \"where\" in lower case", report);
        }
    });
}

void CheckLetters(const Subject& subject, Report& report)
{
    ForEachLimitedOutline(subject, [&report](const CommandRule& rule, const SqlOutline& outline) {
        // After the "on" of a join an added condition continues that of the join.
        const bool canGoOn = outline.where != nullptr || (outline.hasOn && !outline.from.empty());
        if (!canGoOn && outline.tail == nullptr && HasWhereLetters(rule)) {
            AddAboutSql(rule, "has the letters \"where\", but no condition at its end",
                "end the query with a condition: where 1", report);
        }
    });
}

void CheckCompound(const Subject& subject, Report& report)
{
    ForEachLimitedOutline(subject, [&report](const CommandRule& rule, const SqlOutline& outline) {
        if (outline.isCompound) {
            AddAboutSql(rule, "joins several queries, and only the last one is limited",
                "put them into a query in parentheses that gives \"occurrence_time\"", report);
        }
    });
}

void CheckRows(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.commandRules, [&report](const CommandRule& rule) {
        const SqlPieces pieces = ReadSql(rule.sql);
        if (!OutlineOf(pieces.tokens).columns.empty() && !HasAtMostOneRow(pieces.tokens)) {
            AddAboutSql(rule, "may give any number of rows",
                "aggregate, \"select max(...)\", or read from a query in parentheses with \"limit 1\"", report);
        }
    });
}

constexpr Check CHECKS[] = {
    {"A601", Severity::ERROR, CheckClass::STATIC, "\"or\" in the condition that the limit joins",
        "A query whose condition has an \"or\" outside parentheses. The time limit is put behind it with "
        "\"and\".",
        "the limit applies only to the part after the last \"or\"; in the other parts rows of any age count",
        CheckOr},
    {"A602", Severity::ERROR, CheckClass::STATIC, "query ends in a clause behind the condition",
        "A query that ends in \"group by\", \"order by\", \"having\" or \"limit\". The time limit is put behind it.",
        "the limit becomes a part of that clause, and rows of any age are judged; with \"limit\" the query fails, and "
        "the rule is false",
        CheckTail},
    {"A603", Severity::ERROR, CheckClass::STATIC, "query with a semicolon",
        "A \";\" in a query. The time limit is put behind it.",
        "the limit is a statement of its own, which fails; the row that came before it is judged, without a limit",
        CheckSemicolon},
    {"A604", Severity::ERROR, CheckClass::STATIC, "query ends in a comment",
        "A query that ends in a comment, \"--\" or one that is not closed. The time limit is put behind it.",
        "the limit is part of the comment, and rows of any age are judged", CheckComment},
    {"A605", Severity::ERROR, CheckClass::STATIC, "\"where\" in capitals",
        "A condition whose \"where\" is not in lower case, in a query without those letters elsewhere.",
        "the query gets a second \"where\" and fails, and the rule is false", CheckCapitals},
    {"A606", Severity::ERROR, CheckClass::STATIC, "letters \"where\" without a condition",
        "A query with the letters \"where\" only in a name, a text or a query in parentheses.",
        "the limit is put behind it with \"and\", the query fails, and the rule is false", CheckLetters},
    {"A607", Severity::WARNING, CheckClass::STATIC, "several queries joined",
        "Queries joined by \"union\", \"intersect\" or \"except\". The time limit is put behind the last one.",
        "the limit applies only to the last query; in the others rows of any age count", CheckCompound},
    {"A610", Severity::WARNING, CheckClass::STATIC, "query may give several rows",
        "A query without an aggregate and without \"limit 1\", or with groups.",
        "with any other number of rows than one the rule is false", CheckRows},
};

} // namespace

std::span<const Check> SqlChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
