#include "tools/arborist/render/log_text.h"

#include <algorithm>

#include "diagnosis/bundle/moment.h"
#include "diagnosis/text/printable.h"

namespace diagnosis::command {

namespace {

std::string Time(std::int64_t seconds)
{
    return FormatMoment(seconds).value_or(std::to_string(seconds));
}

std::string Padded(const std::string& text, std::size_t width)
{
    return text + std::string(width > text.size() ? width - text.size() : 0, ' ');
}

std::string Rows(std::uint64_t rows)
{
    return std::to_string(rows) + (rows == 1 ? " row" : " rows");
}

std::string Keys(const UnseenRows& unseen)
{
    std::string text;
    for (const std::string& key : unseen.keys) {
        text += (text.empty() ? "_ID " : ", ") + Printable(key);
    }
    return text + (unseen.rows > unseen.keys.size() ? ", ..." : "");
}

} // namespace

std::string SpanText(const LoggedSpan& span)
{
    return span.first && span.last ? Time(*span.first) + " to " + Time(*span.last) : "no time";
}

std::string LogText(const std::string& log, const LogInspection& inspection)
{
    std::string text = Printable(log) + ": " + Rows(inspection.rows) + ", " + SpanText(inspection.span) + "\n";
    std::size_t width = 0;
    std::size_t rowsWidth = 0;
    for (const LoggedId& id : inspection.ids) {
        width = std::max(width, std::to_string(id.id).size());
        rowsWidth = std::max(rowsWidth, Rows(id.rows).size());
    }
    for (const LoggedId& id : inspection.ids) {
        text += "  event " + Padded(std::to_string(id.id), width) + "  " + Padded(Rows(id.rows), rowsWidth) + "  "
            + SpanText(id.span) + "\n";
    }
    for (const LoggedVersion& version : inspection.versions) {
        text += "  version \"" + Printable(version.name) + "\"  " + Rows(version.rows) + "\n";
    }
    for (const UnseenRows& unseen : inspection.unseen) {
        text += "  not seen by " + std::string(unseen.reader) + ": " + Rows(unseen.rows) + ", " + unseen.text + " ("
            + Keys(unseen) + ")\n";
    }
    return text;
}

} // namespace diagnosis::command
