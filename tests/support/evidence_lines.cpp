#include "tests/support/evidence_lines.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace {

using Lines = std::vector<std::string>;

template <typename... Pieces>
std::string Line(const Pieces&... pieces)
{
    std::ostringstream line;
    (line << ... << pieces);
    return line.str();
}

void Append(const Evidence::Window& window, Lines& lines)
{
    if (window.start) {
        lines.push_back(EvidenceLine(*window.start));
    }
    for (const Evidence::Test& test : window.tests) {
        lines.push_back(Line("test ", test.key, ' ', test.type, ' ', test.logic, " '", test.value, "' passed ",
            test.rowsPassed, " of ", test.rowsTested,
            test.rowsPassedByLastId ? Line(" last id ", *test.rowsPassedByLastId) : ""));
    }
    const Evidence::WindowCount& count = window.count;
    const std::string measure = Evidence::MeasureText(count.measure);
    lines.push_back(Line("window item ", window.item, " ids ", window.firstId, '-', window.lastId, ' ', window.kind,
        " days ", window.periodDays, " threshold ", window.threshold, " since ",
        window.start ? window.start->start.seconds : 0, window.versionFilter ? " by version" : "", " rows ",
        count.rowsFound, " other version ", count.rowsOfOtherVersion, " failed ", count.rowsFailedTest,
        count.coveredDays ? Line(" covered ", *count.coveredDays) : "", " reached ",
        count.reached, measure.empty() ? "" : " ", measure, " by ", count.lastIdDecides ? "last id " : "",
        count.reachedById, count.rowsBeforeStart ? Line(" before start ", *count.rowsBeforeStart) : "", window.hit ? " hit" : " miss",
        WhyText(window.reason)));
}

void Append(const std::vector<Evidence::Comparison>& comparisons, Lines& lines)
{
    for (const Evidence::Comparison& comparison : comparisons) {
        lines.push_back(EvidenceLine(comparison));
    }
}

void Append(const Evidence::Statement& statement, Lines& lines)
{
    lines.push_back(Line("query ", statement.database, statement.opened ? "" : " not opened", " rows ", statement.rows,
        ": ", statement.sql, statement.error.empty() ? "" : " failed: ", statement.error));
    if (const auto& interval = statement.interval) {
        lines.push_back(Line("interval ", interval->startKey, '=', interval->start, " to ", interval->endKey, '=',
            interval->end, " days ", interval->days, interval->usable ? "" : " unusable"));
    }
    for (const Evidence::Column& column : statement.columns) {
        lines.push_back(Line("parameter ", column.id, ' ', column.key, ' ', column.type, " '", column.raw, "' -> '",
            column.value, '\''));
    }
    Append(statement.comparisons, lines);
}

// Appends the part of each family.
struct AppendPart {
    void operator()(const std::monostate&) const {}

    void operator()(const Evidence::Alarm& alarm) const
    {
        for (const Evidence::Window& window : alarm.windows) {
            Append(window, lines);
        }
    }

    void operator()(const Evidence::Command& command) const
    {
        if (command.start) {
            lines.push_back(EvidenceLine(*command.start));
        }
        for (const Evidence::Statement& statement : command.statements) {
            Append(statement, lines);
        }
        if (const auto& hits = command.hits) {
            lines.push_back(
                Line("hits ", hits->hits, " of ", hits->databases, ' ', hits->name, " needed ", hits->needed));
            if (const auto& missing = hits->missingCopies) {
                std::string folders;
                for (const std::string& folder : missing->folders) {
                    folders += (folders.empty() ? " " : ", ") + folder;
                }
                lines.push_back(
                    Line("missing ", Evidence::NoCopyText(missing->cause), " '", missing->pattern, '\'', folders));
            }
        }
    }

    void operator()(const Evidence::Node& node) const
    {
        for (const Evidence::NodeFile& file : node.files) {
            lines.push_back(Line(
                "node ", file.param, ' ', file.path, file.readable ? " = '" : " unreadable '", file.value, '\''));
        }
        if (const auto& formula = node.formula) {
            lines.push_back(Line("formula ", formula->resultKey, " = ", formula->expression, " as ", formula->grouping,
                " -> ", formula->result));
        }
        Append(node.comparisons, lines);
    }

    void operator()(const Evidence::Code& code) const
    {
        if (code.answer) {
            lines.push_back(Line("code ", code.detectCode, " faults ", TextOf(code.faultDescriptionIds),
                " suggestions ", TextOf(code.suggestionIds), " repairs ", TextOf(code.repairIds), " info '",
                code.userDefinedInfo, *code.answer ? "' yes" : "' no"));
        }
    }

    Lines& lines;
};

} // namespace

std::vector<std::string> EvidenceLines(const Evidence::Rule& rule)
{
    Lines lines;
    if (const auto& filter = rule.filter) {
        lines.push_back(Line("filter ", rule.name, " '", filter->deviceValue, "' in '", filter->ruleText, '\'',
            WhyText(rule.reason)));
    }
    if (rule.badName) {
        lines.push_back(Line("name '", *rule.badName, '\'', WhyText(rule.reason)));
    }
    std::visit(AppendPart{lines}, rule.part);
    for (const Evidence::Reason note : rule.notes) {
        lines.push_back(Line("note", WhyText(note)));
    }
    return lines;
}

std::vector<std::string> EvidenceLines(const Evidence::Rule& rule, const std::string& word)
{
    return LinesOfWord(EvidenceLines(rule), word);
}

std::string EvidenceLine(const Evidence::Start& start)
{
    return Line("start ", start.start.seconds, " of period ", start.period.seconds, " reset ", start.reset.seconds,
        " update ", start.update.seconds, " repair ", start.repair.seconds, " by ", Evidence::FloorText(start.floor),
        " days ", start.periodDays, " flag '", start.beginFlag, "' repair id '", start.repairId, '\'');
}

std::string EvidenceLine(const Evidence::Comparison& seen)
{
    return Line("compare ", seen.paramId, ' ', seen.key, ' ', seen.type, " '", seen.observed, "' ", seen.logic, " '",
        seen.configured, '\'', seen.source.empty() ? "" : " from ", seen.source, seen.sourceId.empty() ? "" : " ",
        seen.sourceId, seen.holds ? " holds" : " fails");
}

std::vector<std::string> LinesOfWord(const std::vector<std::string>& lines, const std::string& word)
{
    Lines found;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
        [&word](const std::string& line) { return line.rfind(word + ' ', 0) == 0; });
    return found;
}

std::string TextOf(const std::vector<std::string>& texts, const char* separator)
{
    std::string joined;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        joined += (i == 0 ? "" : separator) + texts[i];
    }
    return joined;
}

std::string WhyText(Evidence::Reason reason)
{
    return reason == Evidence::Reason::NONE ? "" : Line(" [", Evidence::ReasonText(reason), "]");
}
