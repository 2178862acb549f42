#ifndef ARBORIST_TOOLS_RENDER_HTML_H
#define ARBORIST_TOOLS_RENDER_HTML_H

#include <string>

#include "tools/arborist/text/markup.h"

namespace command {

/// An element around a text, which is escaped. `style` names its classes; empty for none.
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

} // namespace command

#endif
