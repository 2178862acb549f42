#include "diagnosis/cases/difference_text.h"

#include "diagnosis/text/printable.h"

namespace diagnosis::cases {

namespace {

std::string EntryText(const std::string& start, const Difference::Entry& entry)
{
    return start + Shown(entry.text) + (entry.note.empty() ? "" : "  (" + Printable(entry.note) + ")") + "\n";
}

} // namespace

std::string DifferenceText(const Difference& difference, const std::string& indent)
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

} // namespace diagnosis::cases
