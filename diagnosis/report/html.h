#ifndef ARBORIST_DIAGNOSIS_REPORT_HTML_H
#define ARBORIST_DIAGNOSIS_REPORT_HTML_H

#include <string>

#include "diagnosis/text/markup.h"

namespace diagnosis {

/// An element with an escaped text. `style` has its classes; empty for none.
inline std::string Html(const std::string& element, const std::string& text, const std::string& style = "")
{
    const std::string attribute = style.empty() ? "" : " class=\"" + style + "\"";
    return "<" + element + attribute + ">" + Markup(text) + "</" + element + ">";
}

/// A paragraph, or nothing for the empty text.
inline std::string Paragraph(const std::string& text)
{
    return text.empty() ? "" : Html("p", text) + "\n";
}

} // namespace diagnosis

#endif
