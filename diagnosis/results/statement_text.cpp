#include "diagnosis/results/statement_text.h"

#include <filesystem>
#include <iterator>

#include "diagnosis/results/value_text.h"
#include "diagnosis/text/printable.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

using namespace value_text;

// "static", or the place in the common part that the threshold comes from.
std::string SourceText(const Evidence::Comparison& comparison)
{
    return Printable(comparison.source)
        + (comparison.sourceId.empty() ? "" : " " + Cut(comparison.sourceId));
}

std::string ComparedText(const Evidence::Comparison& comparison)
{
    const std::string& name = comparison.key.empty() ? comparison.paramId : comparison.key;
    return Cut(name) + " " + ComparedValue(comparison.observed, comparison.type) + " "
        + Sign(comparison.logic) + " " + ComparedValue(comparison.configured, comparison.type);
}

std::string ColumnText(const Evidence::Column& column)
{
    const std::string text = Cut(column.key) + " = " + Value(column.value);
    return column.raw == column.value ? text : text + ", scaled from " + Value(column.raw);
}

std::string IntervalText(const Evidence::Interval& interval)
{
    if (interval.startKey.empty()) {
        return "values are scaled between two columns, and the rule names no two";
    }
    const std::string columns = Cut(interval.startKey) + " " + std::to_string(interval.start) + " to "
        + Cut(interval.endKey) + " " + std::to_string(interval.end);
    return interval.usable ? "scaled from " + Number(interval.days + 1, "day", "days") + " to 30: " + columns
                           : "no interval to scale by: " + columns;
}

// The statement on one line: rule files break and indent their statements.
std::string SqlText(const std::string& sql)
{
    std::string line;
    for (const char letter : sql) {
        const bool isBlank = letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
        if (!isBlank) {
            line += letter;
        } else if (!line.empty() && line.back() != ' ') {
            line += ' ';
        }
    }
    return Cut(line, LONGEST_SQL);
}

std::string FoldersText(const std::vector<std::string>& folders)
{
    std::string text;
    for (const std::string& folder : folders) {
        text += (text.empty() ? "" : ", ") + Cut(folder);
    }
    return text;
}

// The sentence for copies that are not there.
std::string MissingCopiesText(const Evidence::MissingCopies& missing)
{
    using Evidence::NoCopy;
    const std::string folders = FoldersText(missing.folders);
    switch (missing.cause) {
    case NoCopy::FOLDER_MISSING:
        return folders.empty() ? "the rule set names no folder to search"
                               : "no folder to search is there (" + folders + ")";
    case NoCopy::FOLDER_EMPTY:
        return "no file lies below " + folders;
    case NoCopy::NO_MATCH:
        return "no file below " + folders + " matches the pattern " + Quoted(missing.pattern);
    case NoCopy::SETTING_EMPTY:
        return "the setting AppDatabaseDir is empty";
    case NoCopy::NOT_IN_ARCHIVE:
        return "no file in the archives below " + folders + " matches the pattern " + Quoted(missing.pattern);
    default:
        return "nothing could be copied of what matches below " + folders;
    }
}

} // namespace

std::string ComparisonText(const Evidence::Comparison& comparison)
{
    return ComparedText(comparison) + InParentheses(Printable(comparison.type), SourceText(comparison))
        + (comparison.holds ? ": holds" : ": fails");
}

std::string Deciding(const std::vector<Evidence::Comparison>& comparisons)
{
    if (comparisons.empty()) {
        return "";
    }
    auto first = comparisons.end() - 1;
    while (first->holds && first != comparisons.begin() && std::prev(first)->holds) {
        --first;
    }
    std::string text;
    for (auto comparison = first; comparison != comparisons.end(); ++comparison) {
        text += (text.empty() ? "" : " and ") + ComparedText(*comparison)
            + (comparison->sourceId.empty() ? "" : InParentheses(SourceText(*comparison)));
    }
    return text + (first->holds ? ": holds" : ": fails");
}

void AppendStatement(
    const Evidence::Statement& statement, Evidence::Reason reasonOfRule, std::vector<std::string>& lines)
{
    // The text of NONE is empty, too.
    const std::string reason = statement.reason == reasonOfRule ? "" : Evidence::ReasonText(statement.reason);
    const std::string outcome = !statement.opened    ? "database can't be opened"
        : !statement.error.empty()                   ? "failed: " + Cut(statement.error, LONGEST_SQL)
                                                 : Number(statement.rows, "row", "rows");
    if (!statement.sql.empty()) {
        const std::string file = fs::path(statement.database).filename().generic_string();
        lines.push_back((file.empty() ? "derived database" : Printable(file)) + ": " + outcome + InParentheses(reason));
        lines.push_back("  " + SqlText(statement.sql));
    }
    if (statement.interval) {
        lines.push_back("  " + IntervalText(*statement.interval));
    }
    for (const Evidence::Column& column : statement.columns) {
        lines.push_back("  " + ColumnText(column));
    }
    for (const Evidence::Comparison& comparison : statement.comparisons) {
        lines.push_back("  " + ComparisonText(comparison));
    }
}

std::string HitsText(const Evidence::Hits& hits)
{
    return "hits in " + std::to_string(hits.hits) + " of " + Number(hits.databases, "database", "databases")
        + InParentheses(Cut(hits.name)) + ", " + std::to_string(hits.needed) + " needed"
        + (hits.Missing() == 0 ? "" : ", " + std::to_string(hits.Missing()) + " missing")
        + (hits.missingCopies ? "; " + MissingCopiesText(*hits.missingCopies) : "");
}

} // namespace diagnosis
