#include "diagnosis/drawing/mermaid.h"

#include <cstring>

#include "diagnosis/drawing/event_label.h"

namespace diagnosis {

namespace {


constexpr char STYLES[] = "  classDef fault fill:#fde3df,stroke:#a5170c,color:#1b1d22\n"
                          "  classDef sound fill:#f1f3f5,stroke:#5c6270,color:#1b1d22\n"
                          "  classDef unknown fill:#fff3cd,stroke:#7a5b00,color:#1b1d22,stroke-dasharray:5 3\n"
                          "  classDef path stroke-width:4px\n";

// Writes every character that is special in Mermaid, or in the HTML that it generates, as its number.
std::string Quoted(const std::vector<std::string>& lines)
{
    static constexpr char PLAIN[] = " ,.:_-()/";
    std::string quoted = "\"";
    for (const std::string& line : lines) {
        quoted += quoted.size() == 1 ? "" : "<br/>";
        for (const char letter : line) {
            const auto byte = static_cast<unsigned char>(letter);
            const bool isWord = byte >= 0x80 || (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z')
                || (byte >= 'a' && byte <= 'z');
            const bool isPlain = isWord || std::strchr(PLAIN, letter) != nullptr;
            quoted += isPlain ? std::string(1, letter) : "#" + std::to_string(byte) + ";";
        }
    }
    return quoted + "\"";
}

std::string Shape(const Evidence::FoldedEvent& event, const std::string& label)
{
    switch (event.type) {
    case Evidence::EventType::BASIC:
        return "([" + label + "])";
    case Evidence::EventType::UNDEVELOPED:
        return "{" + label + "}";
    case Evidence::EventType::INTERMEDIATE:
        break;
    }
    return event.observable ? "[[" + label + "]]" : "[" + label + "]";
}

const char* ClassOf(Evidence::EventState status)
{
    return Evidence::IsInError(status) ? "fault" : status == Evidence::EventState::UNKNOWN ? "unknown" : "sound";
}

std::string EventText(const DrawnTree& tree, std::size_t place, const std::string& prefix)
{
    const DrawnEvent& drawn = tree.events[place];
    const auto isBold = [&tree](std::size_t of) { return tree.hasStatuses && tree.events[of].isOnCausePath; };
    const std::string name = prefix + "e" + std::to_string(place);
    std::string text = "    " + name + Shape(*drawn.event, Quoted(EventLabel(tree, place))) + "\n";
    if (tree.hasStatuses) {
        text += "    class " + name + " " + ClassOf(drawn.event->status) + "\n";
        text += isBold(place) ? "    class " + name + " path\n" : "";
    }
    if (drawn.event->gate == Evidence::GateType::NONE) {
        return text;
    }
    const std::string gate = prefix + "g" + std::to_string(place);
    const bool isAnd = drawn.event->gate == Evidence::GateType::AND;
    text += "    " + gate + (isAnd ? "[/\"AND\"\\]\n" : "{{\"OR\"}}\n");
    text += "    " + name + (isBold(place) ? " === " : " --- ") + gate + "\n";
    for (const std::size_t child : drawn.children) {
        text += "    " + gate + (isBold(child) ? " === " : " --- ") + prefix + "e" + std::to_string(child) + "\n";
    }
    return text;
}

} // namespace

std::string Mermaid(const std::vector<DrawnTree>& trees)
{
    std::string text = "flowchart TD\n";
    bool hasStatuses = false;
    for (std::size_t i = 0; i < trees.size(); ++i) {
        const std::string prefix = "t" + std::to_string(i);
        text += "  subgraph " + prefix + "[" + Quoted({TitleOf(trees[i])}) + "]\n";
        for (std::size_t place = 0; place < trees[i].events.size(); ++place) {
            text += EventText(trees[i], place, prefix);
        }
        text += "  end\n";
        hasStatuses = hasStatuses || trees[i].hasStatuses;
    }
    return hasStatuses ? text + STYLES : text;
}

} // namespace diagnosis
