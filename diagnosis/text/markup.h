#ifndef ARBORIST_DIAGNOSIS_TEXT_MARKUP_H
#define ARBORIST_DIAGNOSIS_TEXT_MARKUP_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace diagnosis {

/// Escapes a text for XML and HTML, in content and in quoted attributes alike. Whatever bytes it has, they form no
/// markup and the document stays well-formed: characters that Printable escapes are escaped here, too.
std::string Markup(std::string_view text);

/// The printable text in lines of at most `width` characters, broken at blanks if possible. A text that doesn't fit in
/// `mostLines` ends in an ellipsis. The empty text has no lines.
std::vector<std::string> Wrapped(std::string_view text, std::size_t width, std::size_t mostLines);

/// The printable text in one line of at most `width` characters, the last of which is an ellipsis if more would follow.
std::string Shortened(std::string_view text, std::size_t width);

} // namespace diagnosis

#endif
