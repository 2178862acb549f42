#ifndef ARBORIST_DIAGNOSIS_TEXT_PRINTABLE_H
#define ARBORIST_DIAGNOSIS_TEXT_PRINTABLE_H

#include <string>
#include <string_view>
#include <vector>

namespace diagnosis {

/// The text for one line of a terminal: control characters and bytes that are no UTF-8 as "\xNN". Rule sets and
/// bundles come from strangers; their texts must neither break a line nor steer the terminal.
std::string Printable(std::string_view text);

/// The same, with "(empty)" where there is nothing to see.
std::string Shown(std::string_view text);

/// Texts as Shown gives them, with `separator` between.
std::string Joined(const std::vector<std::string>& texts, const char* separator);

/// Length in bytes of the UTF-8 character that `text` begins with; 0 when it begins with none (or is empty).
std::size_t Utf8Length(std::string_view text);

} // namespace diagnosis

#endif
