#include "diagnosis/results_report/fleet_page.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "diagnosis/drawing/event_label.h"
#include "diagnosis/drawing/svg_chart.h"
#include "diagnosis/drawing/svg_parts.h"
#include "diagnosis/report/page.h"
#include "diagnosis/results/verdict_text.h"
#include "diagnosis/results_report/figure_table.h"
#include "diagnosis/results_report/fleet_repairs.h"

namespace diagnosis {

namespace {

constexpr char VERDICT_KEY[] =
    "<p class=\"legend\"><span class=\"key fault\"></span>fault<span class=\"key undecided\"></span>undecided"
    "<span class=\"key sound\"></span>no fault<span class=\"key none\"></span>not applicable, or not there"
    "<span class=\"key plain\"></span>not diagnosed</p>\n";

std::string Percent(std::uint64_t part, std::uint64_t whole)
{
    return whole == 0 ? "-" : SvgTenths(static_cast<double>(part) / static_cast<double>(whole) * 100) + " %";
}

FigureCell PercentCell(std::uint64_t part, std::uint64_t whole)
{
    return FigureCell::Number(Percent(part, whole));
}

std::string Seconds(std::int64_t microseconds)
{
    const std::string digits = std::to_string(microseconds / 1000 % 1000 + 1000);
    return std::to_string(microseconds / 1000000) + "." + digits.substr(1) + " s";
}

std::uint64_t Diagnosed(const BundleStates& bundles)
{
    return bundles.All() - bundles.failed;
}

std::string Section(const std::string& id, const std::string& heading, const std::string& content)
{
    return "<section id=\"" + id + "\">\n" + Html("h2", heading) + "\n" + content + "</section>\n";
}

std::string Picture(const std::string& description, const std::string& svg)
{
    return "<div class=\"scroll\" tabindex=\"0\" role=\"group\" aria-label=\"" + description + "\">\n" + svg + "</div>\n";
}

std::string CauseName(const CommonCause& cause)
{
    return ShownId(cause.tree) + ": " + ShownId(cause.event);
}

std::string Headline(const Fleet& fleet)
{
    const std::string bundles = Plural(fleet.bundles.All(), "bundle", "bundles");
    if (Diagnosed(fleet.bundles) == 0) {
        return fleet.bundles.All() == 0 ? "No results" : "None of " + bundles + " diagnosed";
    }
    std::string text = fleet.bundles.fault == 0
        ? "No fault found in " + Plural(Diagnosed(fleet.bundles), "bundle", "bundles")
        : "Faults in " + std::to_string(fleet.bundles.fault) + " of " + bundles;
    text += fleet.bundles.undecided == 0 ? "" : ", " + std::to_string(fleet.bundles.undecided) + " undecided";
    return text + (fleet.bundles.failed == 0 ? "" : ", " + std::to_string(fleet.bundles.failed) + " not diagnosed");
}

std::string Facts(const Fleet& fleet)
{
    return "<dl class=\"facts\">\n" + Fact("Bundles", std::to_string(fleet.bundles.All())) + Fact("From", fleet.from)
        + Fact("Until", fleet.until) + Fact("Devices", std::to_string(fleet.repairs.devices)) + "</dl>\n";
}

// Bundles that failed before their rule set was read are of no other rule set for that.
bool AreOfSeveral(const std::vector<FleetRun>& runs)
{
    std::set<std::string> engines;
    std::size_t known = 0;
    for (const FleetRun& run : runs) {
        engines.insert(run.engine);
        known += run.ruleSet.empty() ? 0 : 1;
    }
    return engines.size() > 1 || known > 1;
}

std::string RunsSection(const Fleet& fleet)
{
    FigureTable table({"Engine", "Rule set", "Bundles"});
    for (const FleetRun& run : fleet.runs) {
        const FigureCell ruleSet = run.ruleSet.empty() ? FigureCell("not known") : FigureCell::Id(run.ruleSet);
        table.Row({run.engine, ruleSet, run.bundles});
    }
    std::string text = !AreOfSeveral(fleet.runs) ? ""
        : Paragraph("These results are of several engines or rule sets. A bundle that several of them diagnosed counts once "
                    "for each.");
    text += fleet.runsLeftOut == 0 ? "" : Paragraph("And " + std::to_string(fleet.runsLeftOut) + " more.");
    return Section("runs", "Engines and rule sets", text + table.Markup());
}

std::vector<ChartPart> StateParts(const BundleStates& states)
{
    return {{"fault", "fault", states.fault}, {"undecided", "undecided", states.undecided},
        {"sound", "no fault", states.noFault}, {"none", "not applicable", states.notApplicable},
        {"plain", "not diagnosed", states.failed}};
}

std::string VerdictChart(const Fleet& fleet)
{
    std::vector<ChartBar> bars = {
        {"All bundles", StateParts(fleet.bundles), Plural(fleet.bundles.All(), "bundle", "bundles")}};
    for (const TreeVerdicts& tree : fleet.trees) {
        bars.push_back({ShownId(tree.tree),
            {{"fault", "fault", tree.fault}, {"undecided", "undecided", tree.undecided}, {"sound", "no fault", tree.noFault},
                {"none", "not applicable or not there", tree.notApplicable + tree.absent}},
            Percent(tree.fault, tree.All()) + " fault, " + Percent(tree.undecided, tree.All()) + " undecided"});
    }
    return Picture("Picture of the verdicts", SvgBars("Verdicts of all bundles and of each tree.", bars));
}

std::string VerdictSection(const Fleet& fleet)
{
    const BundleStates& all = fleet.bundles;
    FigureTable table({"", "Fault", "Undecided", "No fault", "Not applicable", "Not there", "Not diagnosed", "Bundles"});
    table.Row({"All bundles", all.fault, all.undecided, all.noFault, all.notApplicable, std::uint64_t{0}, all.failed, all.All()});
    for (const TreeVerdicts& tree : fleet.trees) {
        table.Row({FigureCell::Id(ShownId(tree.tree)), tree.fault, tree.undecided, tree.noFault, tree.notApplicable,
            tree.absent, all.failed, tree.All() + all.failed});
    }
    const std::string rest = fleet.treesLeftOut == 0 ? ""
        : Paragraph(Plural(fleet.treesLeftOut, "more tree is", "more trees are") + " left out: the others have more faults.");
    return Section("verdicts", "Verdicts", VERDICT_KEY + VerdictChart(fleet) + table.Markup()
        + Html("p", "A bundle counts with the most serious verdict of its trees.", "legend") + rest);
}

std::string CauseChart(const Fleet& fleet)
{
    std::vector<ChartBar> bars;
    for (const CommonCause& cause : fleet.causes.causes) {
        bars.push_back({CauseName(cause), {{"fault", "", cause.bundles}}, Plural(cause.bundles, "bundle", "bundles") + ", "
            + Percent(cause.bundles, Diagnosed(fleet.bundles)) + (cause.name.empty() ? "" : ", " + cause.name)});
    }
    return Picture("Picture of the root causes", SvgBars("The commonest root causes.", bars));
}

std::string TogetherChart(const CommonCauses& causes)
{
    if (causes.together.size() < 2) {
        return "";
    }
    ChartMatrix matrix{{}, causes.together};
    for (std::size_t rank = 0; rank < causes.together.size(); ++rank) {
        matrix.labels.push_back(CauseName(causes.causes[rank]));
    }
    const std::string bound = causes.different <= CommonCauses::MOST_TOGETHER ? ""
        : " Only the " + std::to_string(CommonCauses::MOST_TOGETHER) + " commonest of " + std::to_string(causes.different)
            + " are compared.";
    return "<h3>What occurs together</h3>\n"
        + Html("p", "How many bundles have both root causes; the darker, the larger the part of the bundles with the one at "
            "the left. That two occur together says nothing of one causing the other." + bound, "legend")
        + Picture("Picture of what occurs together", SvgMatrix("How many bundles have both of two root causes.", matrix));
}

std::string CauseSection(const Fleet& fleet)
{
    const CommonCauses& causes = fleet.causes;
    if (causes.causes.empty()) {
        return Section("causes", "Root causes", Paragraph("No bundle has a root cause."));
    }
    const std::size_t left = causes.different - std::min<std::size_t>(causes.different, causes.causes.size());
    return Section("causes", "Root causes",
        Html("p", "In how many bundles each was found, whatever its cut sets, and which part of the diagnosed ones that is.",
            "legend") + CauseChart(fleet)
            + (left == 0 ? "" : Paragraph(Plural(left, "rarer root cause is", "rarer root causes are") + " left out."))
            + TogetherChart(causes));
}

std::string ReasonTable(const OpenChecks& open)
{
    FigureTable table({"Check", "Reason", "Open checks", "Share", "Bundles"});
    for (const OpenByReason& reason : open.byReason) {
        table.Row({FigureCell::Id(reason.check), FigureCell::Id(reason.reason), reason.checks,
            PercentCell(reason.checks, open.checks), reason.bundles});
    }
    return "<h3>By reason</h3>\n" + table.Markup();
}

// Without the comma before the words that follow it in a sentence.
std::string SourceText(const OpenBySource& source)
{
    std::string text = MissingText(source.reason, source.detail);
    while (text.ends_with(',') || text.ends_with(' ')) {
        text.pop_back();
    }
    return text;
}

std::string SourceTable(const OpenChecks& open)
{
    FigureTable table({"What is missing", "Undecided trees", "Open checks", "Share", "Bundles"});
    for (const OpenBySource& source : open.bySource) {
        table.Row({SourceText(source), source.undecidedTrees, source.checks,
            PercentCell(source.checks, open.checks), source.bundles});
    }
    std::string text = "<h3>What to mend in rules or capture first</h3>\n"
        + Html("p", "In how many undecided trees of bundles a check lacks it. A tree may lack several things.", "legend")
        + table.Markup();
    return text + (open.sourcesInRest == 0 ? "" : Paragraph(Plural(open.sourcesInRest, "more source", "more sources") + " with "
        + Plural(open.checksInRest, "open check", "open checks") + " left out."));
}

std::string OpenSection(const OpenChecks& open)
{
    return Section("open", "Open checks", open.checks == 0 ? Paragraph("No check is open.")
        : Paragraph(Plural(open.checks, "check is open.", "checks are open.")) + ReasonTable(open) + SourceTable(open));
}

std::string FailureSection(const Fleet& fleet)
{
    if (fleet.failures.empty()) {
        return "";
    }
    FigureTable table({"Code", "Bundles", "Share of all", "Running again may help", "Example"});
    for (const CommonFailure& failure : fleet.failures) {
        table.Row({FigureCell::Id(failure.code), failure.bundles, PercentCell(failure.bundles, fleet.bundles.All()),
            failure.retry ? "yes" : "no", failure.example});
    }
    return Section("failures", "Not diagnosed", table.Markup());
}

std::string TimeSection(const RunTimes& times)
{
    FigureTable table({"Slowest bundles", "As of", "Run time"});
    for (const SlowBundle& bundle : times.slowest) {
        table.Row({bundle.bundle, FigureCell::Moment(bundle.moment), FigureCell::Number(Seconds(bundle.microseconds))});
    }
    return Section("times", "Run times", "<dl class=\"facts\">\n" + Fact("All bundles", Seconds(times.sum))
        + Fact("Half took at most", Seconds(times.median)) + Fact("95 of 100 took at most", Seconds(times.most95))
        + "</dl>\n" + table.Markup());
}

std::string CauseLines(const Fleet& fleet)
{
    std::vector<std::string> mondays;
    std::vector<ChartLine> lines;
    for (std::size_t rank = 0; rank < std::min(fleet.causes.causes.size(), FleetTrend::MOST_LINES); ++rank) {
        lines.push_back({"line" + std::to_string(rank + 1), CauseName(fleet.causes.causes[rank]), {}});
    }
    for (const FleetWeek& week : fleet.trend.weeks) {
        mondays.push_back(week.monday);
        const std::uint64_t diagnosed = Diagnosed(week.bundles);
        for (std::size_t rank = 0; rank < lines.size(); ++rank) {
            lines[rank].shares.push_back(diagnosed == 0 ? -1
                : static_cast<double>(week.causes[rank]) / static_cast<double>(diagnosed));
        }
    }
    return lines.empty() ? "" : "<h3>Commonest root causes</h3>\n"
            + Html("p", "In which part of the bundles that were diagnosed in a week.", "legend")
            + Picture("Picture of root causes by week", SvgLines("Shares of the commonest root causes by week.", mondays, lines));
}

std::string OutsideOfTrend(const FleetTrend& trend)
{
    const std::uint64_t outside = trend.before + trend.after;
    std::string text = outside == 0 ? "" : Paragraph(Plural(outside, "bundle is", "bundles are") + " outside of these "
        + std::to_string(FleetTrend::MOST) + " weeks, which have the most bundles: " + std::to_string(trend.before)
        + " before, " + std::to_string(trend.after) + " after.");
    return text + (trend.undated == 0 ? "" : Paragraph(Plural(trend.undated, "bundle has", "bundles have") + " no moment."));
}

std::string TrendSection(const Fleet& fleet)
{
    std::vector<ChartBar> columns;
    for (const FleetWeek& week : fleet.trend.weeks) {
        columns.push_back({week.monday, StateParts(week.bundles), ""});
    }
    const std::string pictures = columns.empty() ? ""
        : Html("p", "Bundles by the week of their moment, named by its Monday.", "legend") + VERDICT_KEY
            + Picture("Picture of bundles by week", SvgColumns("Bundles by week and verdict.", columns)) + CauseLines(fleet);
    const std::string text = pictures + OutsideOfTrend(fleet.trend);
    return Section("trend", "Trend by week", text.empty() ? Paragraph("There is no bundle.") : text);
}

} // namespace

std::string FleetPage(const Fleet& fleet)
{
    return PageStart(Headline(fleet), std::string(CHART_STYLE) + FIGURE_STYLE) + "<header>\n"
        + Html("p", "Results of fault tree diagnosis", "quiet") + Html("h1", Headline(fleet)) + Facts(fleet)
        + "</header>\n<main>\n" + RunsSection(fleet) + VerdictSection(fleet) + CauseSection(fleet) + OpenSection(fleet.open)
        + FailureSection(fleet) + TimeSection(fleet.times) + TrendSection(fleet) + RepairSection(fleet.repairs)
        + "</main>\n" + PageEnd();
}

} // namespace diagnosis
