#include "tools/arborist/render/detection_text.h"

#include "diagnosis/results/verdict_text.h"
#include "diagnosis/text/printable.h"
#include "tools/arborist/render/explanation_words.h"

namespace diagnosis::command {

namespace {

std::string Line(const std::string& label, const std::string& value)
{
    static constexpr std::size_t LABEL_WIDTH = 14;
    return value.empty() ? "" : "       " + label + std::string(LABEL_WIDTH - label.size(), ' ') + value + "\n";
}

std::string RepairText(const FaultTreeResult::RepairInfo& repair)
{
    std::string text = Shown(repair.mId);
    const std::string operation = repair.GetOperation();
    if (!operation.empty()) {
        text += ", operation " + Printable(operation);
    }
    return repair.mExtra.empty() ? text : text + ", extra " + Printable(repair.mExtra);
}

std::string RootCauseText(std::size_t number, const FaultTreeResult::RootCauseResult& cause)
{
    std::string text = "    " + std::to_string(number) + ". " + Shown(cause.mNode->mId);
    if (!cause.mNode->mName.empty()) {
        text += "  " + Printable(cause.mNode->mName);
    }
    text += "\n" + Line("description", Printable(cause.mFaultDescription));
    text += Line("suggestions", Joined(cause.mSuggestions, ", "));
    for (const FaultTreeResult::RepairInfo& repair : cause.mRepairInfos) {
        text += Line("repair", RepairText(repair));
    }
    return text + Line("user defined", Printable(cause.mNode->mUserDefined));
}

const char* Mark(const Evidence::FoldedEvent& event)
{
    if (event.type == Evidence::EventType::UNDEVELOPED) {
        return " (undeveloped)";
    }
    if (event.type == Evidence::EventType::BASIC) {
        return "";
    }
    return event.gate == Evidence::GateType::OR ? " OR" : event.gate == Evidence::GateType::AND ? " AND" : " (no gate)";
}

std::string EventsText(const std::vector<RecordedEvent>& events, Colour colour)
{
    static constexpr std::size_t STATUS_WIDTH = 8;
    std::string text;
    for (const RecordedEvent& event : events) {
        text += "    " + ColouredStatus(event.status, STATUS_WIDTH, colour) + std::string(2 * event.depth, ' ')
            + Shown(event.id) + Mark(event);
        text += event.name.empty() ? "\n" : "  " + Printable(event.name) + "\n";
    }
    return text;
}

std::string TreeText(const TreeReport& report, bool withEvents, Colour colour)
{
    const FaultTreeResult& result = *report.result;
    const std::size_t causes = result.mRootCauseResults.size();
    const std::string fault = colour.Red("FAULT") + ", " + std::to_string(causes)
        + (causes == 1 ? " root cause" : " root causes");
    std::string text = "  " + colour.Bold(Shown(result.mTreeId)) + " (version " + Shown(result.mVersion) + "): "
        + (result.mIsFault ? fault : "") + ColouredVerdict(report.verdict, colour) + "\n";
    std::size_t number = 0;
    for (const auto& cause : result.mRootCauseResults) {
        text += RootCauseText(++number, *cause);
    }
    for (const Evidence::OpenCheck& open : report.verdict.open) {
        text += "    " + colour.Yellow("open") + ": " + OpenText(open) + "\n";
    }
    return text + (withEvents ? EventsText(report.tree.events, colour) : "");
}

} // namespace

std::string DetectionText(const DetectionReport& report, Colour colour)
{
    std::string text = Shown(report.bundle) + "\n";
    if (report.failure) {
        return text + "  " + colour.Red("NOT DIAGNOSED") + "\n";
    }
    for (const TreeReport& tree : report.trees) {
        text += TreeText(tree, report.withTrees, colour);
    }
    return text + "  " + TreesText(report.trees) + "\n";
}

} // namespace diagnosis::command
