#ifndef ARBORIST_DIAGNOSIS_TEXT_PRINTABLE_H
#define ARBORIST_DIAGNOSIS_TEXT_PRINTABLE_H

#include <string>
#include <string_view>
#include <vector>

namespace diagnosis {

/// The text for one line of a terminal, with control characters and bytes that are no UTF-8 as "\xNN". Texts of foreign
/// rule sets and bundles must neither break a line nor control the terminal.
std::string Printable(std::string_view text);

/// The same, with "(empty)" for a text without visible characters.
std::string Shown(std::string_view text);

/// The texts, each passed through Shown, with `separator` between them.
std::string Joined(const std::vector<std::string>& texts, const char* separator);

/// Length in bytes of the UTF-8 character at the front of `text`; 0 if there is none.
std::size_t Utf8Length(std::string_view text);

} // namespace diagnosis

#endif
