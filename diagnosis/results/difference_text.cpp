#include "diagnosis/results/difference_text.h"

#include "diagnosis/text/printable.h"

namespace diagnosis {

namespace {

std::string EntryText(const std::string& start, const cases::Difference::Entry& entry)
{
    return start + Shown(entry.text) + (entry.note.empty() ? "" : "  (" + Printable(entry.note) + ")") + "\n";
}

} // namespace

std::string DifferenceText(const cases::Difference& difference, const std::string& indent)
{
    std::string text = indent + Printable(difference.subject) + "\n";
    for (const auto& entry : difference.missing) {
        text += EntryText(indent + "  - ", entry);
    }
    for (const auto& entry : difference.unexpected) {
        text += EntryText(indent + "  + ", entry);
    }
    return text;
}

} // namespace diagnosis
