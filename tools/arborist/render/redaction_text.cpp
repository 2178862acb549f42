#include "tools/arborist/render/redaction_text.h"

#include "diagnosis/text/printable.h"

namespace diagnosis::command {

namespace {

std::string Line(const std::string& label, const std::string& text)
{
    std::string padded = label;
    padded.resize(11, ' ');
    return "  " + padded + Printable(text) + "\n";
}

std::string Counted(std::uint64_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// "in 3 rows of event 1001", "in 3 rows of 2 events".
std::string Place(const RedactedRows& where)
{
    const std::string rows = "in " + Counted(where.rows, "row") + " of ";
    const std::string events = where.events.size() == 1 ? "event " + std::to_string(*where.events.begin())
                                                        : Counted(where.events.size(), "event");
    return rows + (where.events.empty() ? "" : events) + (where.events.empty() || !where.hasOtherEvents ? "" : " and ")
        + (where.hasOtherEvents ? "events without a number" : "");
}

std::string Replaced(const RedactionReport& report)
{
    std::string text;
    for (const std::string& key : report.bundleKeys) {
        text += Line("replaced", "bundle.json: " + key);
    }
    for (const std::string& path : report.nodeFiles) {
        text += Line("replaced", "node file " + path);
    }
    for (const RedactedMember& member : report.members) {
        text += Line("replaced", "member " + member.name + " " + Place(member.where));
    }
    if (report.wholeTexts.rows != 0) {
        text += Line("replaced", "extra as a whole, as it is no JSON object that can be read in one way only, "
            + Place(report.wholeTexts));
    }
    return text.empty() ? Line("replaced", "nothing") : text;
}

std::string RulesText(const RedactionReport& report)
{
    std::string text;
    for (const AffectedRule& rule : report.rules) {
        std::string reads;
        for (const std::string& what : rule.reads) {
            reads += (reads.empty() ? "" : ", ") + what;
        }
        text += Line("rule", rule.rule + " may answer differently: it reads " + reads);
    }
    return text.empty() ? Line("rules", "none reads what was replaced: verdicts stay") : text;
}

} // namespace

std::string RedactionText(const RedactionReport& report)
{
    std::string text = Replaced(report);
    for (const std::string& what : report.leftOut) {
        text += Line("left out", what);
    }
    for (const std::string& what : report.notThere) {
        text += Line("not there", what);
    }
    for (const std::string& folder : report.keptFolders) {
        text += Line("kept", "the files below " + folder);
    }
    return text + RulesText(report);
}

} // namespace diagnosis::command
