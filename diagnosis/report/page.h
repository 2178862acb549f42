#ifndef ARBORIST_DIAGNOSIS_REPORT_PAGE_H
#define ARBORIST_DIAGNOSIS_REPORT_PAGE_H

#include <cstdint>
#include <string>

namespace diagnosis {

/// The start of a page up to and with "<body>": the style sheet of reports with `moreStyle` behind it, and a policy that
/// forbids to load or run anything.
std::string PageStart(const std::string& title, const std::string& moreStyle);

/// Who made the page, and its end.
std::string PageEnd();

/// A term and its value in a list of the class "facts"; nothing for an empty value.
std::string Fact(const std::string& label, const std::string& value);

/// "1 tree", "2 trees".
std::string Plural(std::uint64_t count, const std::string& one, const std::string& more);

} // namespace diagnosis

#endif
