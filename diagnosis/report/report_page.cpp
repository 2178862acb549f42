#include "diagnosis/report/report_page.h"

#include <algorithm>
#include <unordered_set>

#include "diagnosis/analysis/distinct_causes.h"
#include "diagnosis/drawing/drawn_tree.h"
#include "diagnosis/drawing/event_label.h"
#include "diagnosis/drawing/svg_timeline.h"
#include "diagnosis/drawing/svg_tree.h"
#include "diagnosis/report/html.h"
#include "diagnosis/report/page.h"
#include "diagnosis/report/report_causes.h"
#include "diagnosis/results/verdict_text.h"

namespace diagnosis {

namespace {

constexpr char LEGEND[] =
    "<p class=\"legend\">How to read the pictures: the top event stands on the left. A circle is a basic event, a "
    "diamond an undeveloped one; a double frame marks an event that is decided by rules of its own. TRUE: the fault is present. "
    "Thick red lines lead from the members of cut sets to the top.</p>\n";

// For a tree with more events the list shows only those that are not FALSE, up to this many.
constexpr std::size_t MOST_LISTED = 2000;
// Browsers don't render deeper markup.
constexpr std::size_t DEEPEST_LIST = 60;

// Green is for an answer alone.
const char* VerdictClass(const TreeReport& report)
{
    return report.IsFault()                                                ? "fault"
        : report.verdict.word == Evidence::TreeVerdict::Word::NO_FAULT ? "sound"
                                                                         : "undecided";
}

std::string Badge(const TreeReport& report)
{
    const std::string words = VerdictWords(report.verdict);
    if (!report.IsFault()) {
        return Html("span", words, std::string("badge ") + VerdictClass(report));
    }
    const std::size_t causes = DistinctCausesOf(report.tree).size();
    return Html("span", "FAULT, " + Plural(causes, "root cause", "root causes") + words, "badge fault");
}

std::string TopName(const DrawnTree& tree)
{
    return tree.events.empty() ? "" : tree.events.front().event->name;
}

std::string IndexOfTrees(const std::vector<DrawnTree>& trees)
{
    std::string items;
    for (std::size_t i = 0; i < trees.size(); ++i) {
        const TreeReport& report = *trees[i].report;
        items += std::string("<li class=\"") + VerdictClass(report) + "\"><a class=\"id\" href=\"#tree-"
            + std::to_string(i + 1) + "\">" + Markup(ShownId(report.Id())) + "</a> " + Badge(report)
            + Paragraph(TopName(trees[i])) + "</li>\n";
    }
    return "<section>\n<h2>Trees</h2>\n<ul class=\"index\">\n" + items + "</ul>\n" + LEGEND + "</section>\n";
}

std::string WarningsSection(const std::vector<Warning>& warnings)
{
    std::string items;
    for (const Warning& warning : warnings) {
        const std::string code = CodeWord(warning.code) + (warning.id.empty() ? "" : ", " + warning.id);
        items += "<li>" + Markup(PlacedMessage(warning)) + " " + Html("span", "[" + code + "]", "quiet") + "</li>\n";
    }
    return items.empty() ? "" : "<section class=\"warnings\" id=\"warnings\">\n<h2>Warnings</h2>\n"
            "<p>The result may be less than it looks.</p>\n<ul>\n" + items + "</ul>\n</section>\n";
}

std::string OpenSection(const Evidence::TreeVerdict& verdict)
{
    std::string items;
    for (const Evidence::OpenCheck& open : verdict.open) {
        items += "<li>" + Markup(OpenText(open)) + "</li>\n";
    }
    return items.empty() ? "" : "<h3>What is open</h3>\n<ul class=\"open\">\n" + items + "</ul>\n";
}

std::string EventItem(const DrawnTree& tree, std::size_t place)
{
    const Evidence::FoldedEvent& event = *tree.events[place].event;
    const DrawnEvent& drawn = tree.events[place];
    std::string text = Html("span", Evidence::StateText(event.status), "word " + std::string(StatusClass(tree, place)));
    text += Html(drawn.isOnCausePath ? "b" : "span", ShownId(event.id), "id") + " " + Markup(event.name) + " ";
    const std::string role = drawn.isRootCause ? "root cause, " : drawn.isInCutSet ? "in a cut set, " : "";
    return text + Html("span", "(" + role + KindWords(event) + ")", "quiet");
}

bool IsListed(const DrawnTree& tree, std::size_t place)
{
    return tree.events.size() <= MOST_LISTED || tree.events[place].event->status != Evidence::EventState::ABSENT;
}

// The verdicts of the rules of an event; for an event in several places only the first time.
std::string Verdicts(const RecordedTree& tree, const RecordedEvent& event, std::unordered_set<std::size_t>& told)
{
    const Evidence::Event* evidence = tree.EvidenceOf(event);
    const bool isNew = evidence != nullptr && told.insert(event.evidence).second;
    return isNew ? RuleVerdicts(*evidence) : "";
}

std::string EventList(const DrawnTree& tree)
{
    std::unordered_set<std::size_t> told;
    std::string text = "<ul class=\"tree\">\n";
    std::size_t open = 0; // nested lists that are open
    std::size_t listed = 0;
    for (std::size_t place = 0; place < tree.events.size() && listed < MOST_LISTED; ++place) {
        if (!IsListed(tree, place)) {
            continue;
        }
        // An event whose parent is left out is nested as deep as the open lists allow.
        const std::size_t depth = std::min({tree.events[place].event->depth, DEEPEST_LIST, listed == 0 ? 0 : open + 1});
        for (; open > depth; --open) {
            text += "</li></ul>";
        }
        text += listed == 0 ? "<li>" : depth > open ? "<ul><li>" : "</li>\n<li>";
        open = depth;
        text += EventItem(tree, place) + Verdicts(tree.report->tree, *tree.events[place].event, told);
        ++listed;
    }
    for (; open > 0; --open) {
        text += "</li></ul>";
    }
    text += (listed > 0 ? "</li>" : "") + std::string("</ul>\n");
    const std::size_t hidden = tree.events.size() - listed;
    return hidden == 0 ? text : text + Paragraph(Plural(hidden, "event is", "events are")
        + " left out here; \"arborist detect --tree\" shows them all.");
}

// A part of the page that scrolls by itself. It opens at the mark, which is beside the top event.
std::string Picture(const SvgPicture& picture)
{
    if (picture.svg.empty()) {
        return Paragraph("Too large for a picture; \"arborist graph --format svg\" draws it.");
    }
    return "<div class=\"scroll\" tabindex=\"0\" role=\"group\" aria-label=\"Picture of the tree\">\n"
        "<span class=\"start\" style=\"top: " + std::to_string(picture.topEventHeight) + "px\"></span>\n"
        + picture.svg + "</div>\n";
}

std::string TreeSection(const DrawnTree& tree, std::size_t number)
{
    const TreeReport& report = *tree.report;
    std::string text = "<section id=\"tree-" + std::to_string(number) + "\">\n<h2>"
        + Html("span", ShownId(report.Id()), "id") + " " + Badge(report) + "</h2>\n" + Paragraph(TopName(tree))
        + Html("p", "Version " + ShownId(report.result->mVersion), "quiet") + OpenSection(report.verdict)
        + CauseCards(report);
    text += "<h3>The tree</h3>\n" + Picture(SvgTree(tree));
    return text + (report.IsFault() ? "<details open>" : "<details>")
        + Html("summary", "All events of the tree and their rules") + "\n" + EventList(tree)
        + "</details>\n</section>\n";
}

std::string Facts(const DetectionReport& report)
{
    const DeviceDetails& device = report.subject.device;
    return "<dl class=\"facts\">\n" + Fact("As of", report.moment + (report.subject.tz.empty() ? "" : " ("
            + report.subject.tz + ")")) + Fact("Device", device.GetDeviceType()) + Fact("Product", device.GetProduct())
        + Fact("Platform", device.GetPlatform()) + Fact("Processor", device.GetCpuName())
        + Fact("Memory", device.GetRamSize()) + Fact("Resolution", device.GetResolution())
        + Fact("Battery", device.GetBatteryCapacity()) + Fact("Rules", report.subject.treeTag)
        + Fact("Scene", std::to_string(report.subject.detectScene)) + "</dl>\n";
}

std::string Verdict(const DetectionReport& report)
{
    if (report.failure) {
        return "Not diagnosed";
    }
    const auto count = [&report](auto isMeant) { return std::count_if(report.trees.begin(), report.trees.end(), isMeant); };
    const auto faults = count([](const TreeReport& tree) { return tree.IsFault(); });
    const std::string trees = Plural(report.trees.size(), "tree", "trees");
    const std::string found =
        faults == 0 ? "No fault found in " + trees : "Faults in " + std::to_string(faults) + " of " + trees;
    const auto undecided = count([](const TreeReport& tree) { return tree.IsUndecided(); });
    return undecided == 0 ? found : found + ", " + std::to_string(undecided) + " undecided";
}

std::string FailureSection(const Failure& failure)
{
    return "<section class=\"failure\">\n<h2>Not diagnosed</h2>\n" + Paragraph(failure.message)
        + Html("p", std::string("[") + CodeWord(failure.code) + "]", "quiet") + "</section>\n";
}

// The sweep's own warnings: those about the bundle are told above.
std::string SweepSection(const SweepReport& sweep)
{
    std::string text = "<section id=\"sweep\">\n<h2>Over time</h2>\n";
    if (sweep.failure) {
        return text + Paragraph(sweep.failure->message) + "</section>\n";
    }
    text += Html("p", "A bar: the fault or root cause is there as of that moment. A dashed frame: it can't be told. A thin "
        "line: it is not there. Above: how many rows the event log has.", "legend") + "\n";
    for (const Warning& warning : sweep.warnings) {
        text += warning.code == WarningCode::NOT_SWEPT ? Paragraph(warning.message) : "";
    }
    return text + "<div class=\"scroll\" tabindex=\"0\" role=\"group\" aria-label=\"Timelines\">\n" + SvgTimeline(sweep)
        + "</div>\n</section>\n";
}

} // namespace

std::string ReportPage(const DetectionReport& report, const SweepReport* sweep)
{
    std::string page = PageStart(Verdict(report) + ": " + report.bundle, sweep == nullptr ? "" : TIMELINE_STYLE);
    page += "<header>\n" + Html("p", "Fault tree diagnosis of " + report.bundle, "quiet")
        + Html("h1", Verdict(report)) + (report.failure ? "" : Facts(report)) + "</header>\n<main>\n";
    page += report.failure ? FailureSection(*report.failure) : "";
    page += WarningsSection(report.warnings);
    if (!report.failure) {
        const std::vector<DrawnTree> trees = DrawTrees(report, true, "");
        page += IndexOfTrees(trees);
        page += sweep == nullptr ? "" : SweepSection(*sweep);
        for (std::size_t i = 0; i < trees.size(); ++i) {
            page += TreeSection(trees[i], i + 1);
        }
    }
    return page + "</main>\n" + PageEnd();
}

} // namespace diagnosis
