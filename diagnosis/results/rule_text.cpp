#include "diagnosis/results/rule_text.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

#include "diagnosis/text/printable.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

using Evidence::Reason;

constexpr std::size_t LONGEST_VALUE = 60;
constexpr std::size_t LONGEST_SQL = 400;

std::string Cut(const std::string& text, std::size_t longest)
{
    if (text.size() <= longest) {
        return Printable(text);
    }
    std::size_t length = 0;
    while (length < longest) { // whole characters
        length += std::max<std::size_t>(1, Utf8Length(std::string_view(text).substr(length)));
    }
    return Printable(std::string_view(text).substr(0, length)) + "... (" + std::to_string(text.size()) + " bytes)";
}

// Drops the line end at the end of node files.
std::string Quoted(const std::string& text)
{
    const auto end = text.find_last_not_of(" \t\r\n");
    return "\"" + Cut(end == std::string::npos ? text : text.substr(0, end + 1), LONGEST_VALUE) + "\"";
}

// Leaves numbers and words unquoted and quotes everything else.
std::string Value(const std::string& text)
{
    static constexpr std::string_view PLAIN =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._:/%+-";
    const std::string quoted = Quoted(text);
    const std::string_view inside = std::string_view(quoted).substr(1, quoted.size() - 2);
    const bool isPlain = !inside.empty() && inside.find_first_not_of(PLAIN) == std::string_view::npos;
    return isPlain ? std::string(inside) : quoted;
}

// Keeps the line end of a value that is compared as text, where it matters.
std::string ComparedValue(const std::string& value, const std::string& type)
{
    const bool hasBlankEnd = !value.empty() && std::string_view(" \t\r\n").find(value.back()) != std::string_view::npos;
    return type == "string" && hasBlankEnd ? "\"" + Cut(value, LONGEST_VALUE) + "\"" : Value(value);
}

// The sign for a comparison word; an unknown word is unchanged.
std::string Sign(const std::string& word)
{
    static constexpr std::pair<std::string_view, const char*> SIGNS[] = {
        {"gt", ">"}, {"lt", "<"}, {"ge", ">="}, {"le", "<="}, {"eq", "="}, {"ne", "!="}};
    for (const auto& [known, sign] : SIGNS) {
        if (word == known) {
            return sign;
        }
    }
    return Printable(word);
}

// " (one, other)", without empty ones.
std::string InParentheses(const std::string& one, const std::string& other = "")
{
    const std::string both = one + (one.empty() || other.empty() ? "" : ", ") + other;
    return both.empty() ? "" : " (" + both + ")";
}

std::string Number(std::uint64_t number, const std::string& one, const std::string& several)
{
    return std::to_string(number) + " " + (number == 1 ? one : several);
}

std::string MomentText(const Evidence::Moment& moment)
{
    return moment.local.empty() ? std::to_string(moment.seconds) : moment.local;
}

std::string StartText(const Evidence::Start& start)
{
    std::string text = "since " + MomentText(start.start) + " (";
    switch (start.floor) {
    case Evidence::Floor::PERIOD:
        text += "period of " + Number(static_cast<std::uint64_t>(std::max(0, start.periodDays)), "day", "days");
        break;
    case Evidence::Floor::REPAIR:
        text += "repair " + Printable(start.repairId);
        break;
    default:
        text += std::string("last ") + Evidence::FloorText(start.floor);
    }
    return text + ")";
}

std::string IdsText(const Evidence::Window& window)
{
    const std::string first = std::to_string(window.firstId);
    return window.firstId == window.lastId ? "id " + first : "ids " + first + "-" + std::to_string(window.lastId);
}

// The threshold in words.
std::string WantedText(const Evidence::Window& window)
{
    using Evidence::Measure;
    const std::string number = std::to_string(window.threshold);
    const std::string rows = window.threshold == 1 ? " row" : " rows";
    const Measure measure = window.count.measure;
    if (measure == Measure::NONE) {
        return number;
    }
    const bool isWeighed = measure == Measure::WEIGHTS || measure == Measure::DAILY_WEIGHTS;
    const bool isDaily = measure == Measure::DAILY_ROWS || measure == Measure::DAILY_WEIGHTS;
    return number + (isWeighed ? " by weight" : rows) + (isDaily ? " on one day" : "");
}

std::string CountText(const Evidence::Window& window)
{
    const Evidence::WindowCount& count = window.count;
    std::string text = Number(count.rowsFound, "row", "rows");
    if (count.rowsBeforeStart.value_or(0) > 0) {
        text += ", " + std::to_string(*count.rowsBeforeStart) + " more cut off by the "
            + Evidence::FloorText(window.start->floor);
    }
    if (count.rowsOfOtherVersion > 0) {
        text += ", " + std::to_string(count.rowsOfOtherVersion) + " of another version";
    }
    if (count.rowsFailedTest > 0) {
        text += ", " + std::to_string(count.rowsFailedTest) + " failed the test";
    }
    text += "; reached " + std::to_string(count.reached);
    if (count.reachedById != 0 && window.firstId != window.lastId) {
        text += " by id " + std::to_string(count.reachedById);
    }
    text += " of " + WantedText(window);
    if (window.Missing() != 0) {
        text += ", " + std::to_string(window.Missing()) + " missing";
    }
    return text + (count.lastIdDecides && window.firstId != window.lastId ? "; the last id alone decides" : "");
}

std::string CoverText(const Evidence::WindowCount& count)
{
    if (!count.coveredDays) {
        return "";
    }
    const auto days = static_cast<std::uint64_t>(*count.coveredDays);
    return ", of which the log covers " + (days == 0 ? "less than a day" : Number(days, "day", "days"));
}

std::string WindowText(const Evidence::Window& window)
{
    const std::string head = IdsText(window) + (window.kind.empty() ? "" : ", " + window.kind);
    if (!window.start) {
        return head + ": " + Evidence::ReasonText(window.reason);
    }
    return head + " " + StartText(*window.start) + (window.versionFilter ? ", this version only" : "")
        + CoverText(window.count) + ": "
        + (window.reason == Reason::WINDOW_SHORT || window.hit
                ? CountText(window)
                : std::string(Evidence::ReasonText(window.reason)));
}

std::string TestText(const Evidence::Test& test)
{
    return "  test " + Cut(test.key, LONGEST_VALUE) + " " + Sign(test.logic) + " "
        + ComparedValue(test.value, test.type)
        + InParentheses(Printable(test.type)) + ": " + std::to_string(test.rowsPassed) + " of "
        + Number(test.rowsTested, "row passes", "rows pass")
        + (test.rowsPassedByLastId ? ", " + std::to_string(*test.rowsPassedByLastId) + " of the last id" : "");
}

// "static", or the place in the common part that the threshold comes from.
std::string SourceText(const Evidence::Comparison& comparison)
{
    return Printable(comparison.source)
        + (comparison.sourceId.empty() ? "" : " " + Cut(comparison.sourceId, LONGEST_VALUE));
}

std::string ComparedText(const Evidence::Comparison& comparison)
{
    const std::string& name = comparison.key.empty() ? comparison.paramId : comparison.key;
    return Cut(name, LONGEST_VALUE) + " " + ComparedValue(comparison.observed, comparison.type) + " "
        + Sign(comparison.logic) + " " + ComparedValue(comparison.configured, comparison.type);
}

std::string ComparisonText(const Evidence::Comparison& comparison)
{
    return ComparedText(comparison) + InParentheses(Printable(comparison.type), SourceText(comparison))
        + (comparison.holds ? ": holds" : ": fails");
}

std::string ColumnText(const Evidence::Column& column)
{
    const std::string text = Cut(column.key, LONGEST_VALUE) + " = " + Value(column.value);
    return column.raw == column.value ? text : text + ", scaled from " + Value(column.raw);
}

std::string IntervalText(const Evidence::Interval& interval)
{
    if (interval.startKey.empty()) {
        return "values are scaled between two columns, and the rule names no two";
    }
    const std::string columns = Cut(interval.startKey, LONGEST_VALUE) + " " + std::to_string(interval.start) + " to "
        + Cut(interval.endKey, LONGEST_VALUE) + " " + std::to_string(interval.end);
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

void AppendStatement(const Evidence::Statement& statement, std::vector<std::string>& lines)
{
    const std::string outcome = !statement.opened    ? "database can't be opened"
        : !statement.error.empty()                   ? "failed: " + Cut(statement.error, LONGEST_SQL)
                                                 : Number(statement.rows, "row", "rows");
    if (!statement.sql.empty()) {
        const std::string file = fs::path(statement.database).filename().string();
        lines.push_back((file.empty() ? "derived database" : Printable(file)) + ": " + outcome);
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

std::string FilterText(const Evidence::Rule& rule)
{
    const bool isScene = rule.reason == Reason::FILTERED_SCENE;
    const std::string found = isScene ? "the detection's scene is " + Printable(rule.filter->deviceValue)
                                      : "the device has " + Quoted(rule.filter->deviceValue);
    if (isScene && rule.filter->ruleText.empty()) {
        return found + ", the rule names none";
    }
    const bool isExcluded = rule.reason == Reason::FILTERED_BLACK_PRODUCT;
    return found + (isExcluded ? ", the rule excludes " : ", the rule asks for ") + Quoted(rule.filter->ruleText);
}

std::string NodeText(const Evidence::NodeFile& node)
{
    return Cut(node.param, LONGEST_VALUE) + (node.readable ? " = " + Value(node.value) : " can't be read")
        + " from " + Printable(node.path);
}

std::string FormulaText(const Evidence::Formula& formula)
{
    const std::string grouping = formula.grouping.empty() ? formula.expression : formula.grouping;
    return Cut(formula.resultKey, LONGEST_VALUE) + " = " + Cut(grouping, LONGEST_SQL) + " = "
        + (formula.result.empty() ? "ill-formed" : Printable(formula.result));
}

std::string Joined(const std::vector<std::string>& ids)
{
    std::string text;
    for (const std::string& id : ids) {
        text += (text.empty() ? "" : ", ") + Printable(id);
    }
    return text.empty() ? "none" : text;
}

void AppendCode(const Evidence::Code& code, std::vector<std::string>& lines)
{
    lines.push_back("the host answers for " + Value(code.detectCode) + ": "
        + (*code.answer ? "present" : "not present"));
    lines.push_back("  descriptions " + Joined(code.faultDescriptionIds) + "; suggestions "
        + Joined(code.suggestionIds) + "; repairs " + Joined(code.repairIds)
        + (code.userDefinedInfo.empty() ? "" : "; info " + Quoted(code.userDefinedInfo)));
}

// The window that reached its threshold, or the one that came closest to it.
const Evidence::Window* ClosestWindow(const Evidence::Alarm& alarm)
{
    const Evidence::Window* closest = nullptr;
    for (const Evidence::Window& window : alarm.windows) {
        if (window.hit) {
            return &window;
        }
        if (window.start && (closest == nullptr || window.Missing() < closest->Missing())) {
            closest = &window;
        }
    }
    return closest;
}

// If a condition was met, the true comparisons at the end of the list; otherwise the last one, which failed.
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

std::string BadNameText(const Evidence::Rule& rule)
{
    return "the rule names " + Quoted(*rule.badName);
}

std::string FoldersText(const std::vector<std::string>& folders)
{
    std::string text;
    for (const std::string& folder : folders) {
        text += (text.empty() ? "" : ", ") + Cut(folder, LONGEST_VALUE);
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
    default:
        return "nothing could be copied of what matches below " + folders;
    }
}

std::string HitsText(const Evidence::Hits& hits)
{
    return "hits in " + std::to_string(hits.hits) + " of " + Number(hits.databases, "database", "databases")
        + InParentheses(Cut(hits.name, LONGEST_VALUE)) + ", " + std::to_string(hits.needed) + " needed"
        + (hits.Missing() == 0 ? "" : ", " + std::to_string(hits.Missing()) + " missing")
        + (hits.missingCopies ? "; " + MissingCopiesText(*hits.missingCopies) : "");
}

// Appends the lines of the part of each family.
struct AppendPart {
    void operator()(const std::monostate&) const {}

    void operator()(const Evidence::Alarm& alarm) const
    {
        const bool hasWindow = ClosestWindow(alarm) != nullptr;
        for (const Evidence::Window& window : alarm.windows) {
            if (hasWindow && window.reason == Reason::WINDOW_ABSENT) {
                continue; // most items have one window of the three
            }
            lines.push_back(WindowText(window));
            for (const Evidence::Test& test : window.tests) {
                lines.push_back(TestText(test));
            }
        }
    }

    void operator()(const Evidence::Command& command) const
    {
        if (command.start) {
            lines.push_back(StartText(*command.start));
        }
        for (const Evidence::Statement& statement : command.statements) {
            AppendStatement(statement, lines);
        }
        if (command.hits) {
            lines.push_back(HitsText(*command.hits));
        }
    }

    void operator()(const Evidence::Node& node) const
    {
        for (const Evidence::NodeFile& file : node.files) {
            lines.push_back(NodeText(file));
        }
        if (node.formula) {
            lines.push_back(FormulaText(*node.formula));
        }
        for (const Evidence::Comparison& comparison : node.comparisons) {
            lines.push_back(ComparisonText(comparison));
        }
    }

    void operator()(const Evidence::Code& code) const
    {
        if (code.answer) {
            AppendCode(code, lines);
        }
    }

    std::vector<std::string>& lines;
};

// The most significant fact of a part.
struct PartSummary {
    std::string operator()(const std::monostate&) const { return ""; }

    std::string operator()(const Evidence::Alarm& alarm) const
    {
        const Evidence::Window* const window = ClosestWindow(alarm);
        return window == nullptr ? "" : WindowText(*window);
    }

    std::string operator()(const Evidence::Command& command) const
    {
        if (command.hits) {
            return HitsText(*command.hits);
        }
        for (const Evidence::Statement& statement : command.statements) {
            if (!statement.comparisons.empty()) {
                return Deciding(statement.comparisons);
            }
        }
        return "";
    }

    std::string operator()(const Evidence::Node& node) const { return Deciding(node.comparisons); }

    std::string operator()(const Evidence::Code& code) const
    {
        return code.answer ? "the host answers " + std::string(*code.answer ? "present" : "not present") : "";
    }
};

} // namespace

std::vector<std::string> RuleLines(const Evidence::Rule& rule)
{
    std::vector<std::string> lines;
    if (rule.filter) {
        lines.push_back(FilterText(rule));
    }
    if (rule.badName) {
        lines.push_back(BadNameText(rule));
    }
    std::visit(AppendPart{lines}, rule.part);
    return lines;
}

std::string RuleSummary(const Evidence::Rule& rule)
{
    if (rule.filter) {
        return FilterText(rule);
    }
    return rule.badName ? BadNameText(rule) : std::visit(PartSummary(), rule.part);
}

} // namespace diagnosis
