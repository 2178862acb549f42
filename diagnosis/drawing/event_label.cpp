#include "diagnosis/drawing/event_label.h"

#include "diagnosis/text/markup.h"
#include "diagnosis/text/printable.h"

namespace diagnosis {

namespace {

constexpr std::size_t WIDTH = 26;
constexpr std::size_t MOST_LINES = 4;

} // namespace

std::string ShownId(const std::string& id)
{
    return id.empty() ? "(empty)" : Printable(id);
}

std::vector<std::string> EventLabel(const DrawnTree& tree, std::size_t place)
{
    const DrawnEvent& drawn = tree.events[place];
    std::vector<std::string> lines = Wrapped(ShownId(drawn.event->id), WIDTH, MOST_LINES);
    for (const std::string& line : Wrapped(drawn.event->name, WIDTH, MOST_LINES)) {
        lines.push_back(line);
    }
    if (tree.hasStatuses) {
        lines.push_back(StatusWords(tree, place));
    }
    if (const std::string open = OpenWords(tree, place); !open.empty()) {
        lines.push_back(open);
    }
    return lines;
}

std::string StatusWords(const DrawnTree& tree, std::size_t place)
{
    const DrawnEvent& drawn = tree.events[place];
    const char* role = drawn.isRootCause ? ", ROOT CAUSE" : drawn.isInCutSet ? ", in its cut set" : "";
    return Evidence::StateText(drawn.event->status) + std::string(role);
}

std::string OpenWords(const DrawnTree& tree, std::size_t place)
{
    const Evidence::Check check = tree.events[place].event->check;
    return tree.hasStatuses && Evidence::IsOpen(check) ? std::string("open: ") + Evidence::CheckText(check) : "";
}

std::string TitleOf(const DrawnTree& tree)
{
    return ShownId(tree.report->Id()) + (tree.verdict.empty() ? "" : ": " + tree.verdict);
}

const char* StatusClass(const DrawnTree& tree, std::size_t place)
{
    const Evidence::EventState status = tree.events[place].event->status;
    if (!tree.hasStatuses) {
        return "";
    }
    return Evidence::IsInError(status) ? "true" : status == Evidence::EventState::UNKNOWN ? "unknown" : "false";
}

std::string KindWords(const Evidence::FoldedEvent& event)
{
    if (event.type != Evidence::EventType::INTERMEDIATE) {
        return event.type == Evidence::EventType::BASIC ? "basic" : "undeveloped";
    }
    const std::string gate = event.gate == Evidence::GateType::OR ? "OR gate"
        : event.gate == Evidence::GateType::AND                   ? "AND gate"
                                                                : "no gate";
    return gate + (event.observable ? ", decided by its own rules" : "");
}

} // namespace diagnosis
