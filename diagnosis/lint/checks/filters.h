#ifndef ARBORIST_DIAGNOSIS_LINT_CHECKS_FILTERS_H
#define ARBORIST_DIAGNOSIS_LINT_CHECKS_FILTERS_H

#include <string_view>
#include <vector>

namespace diagnosis::lint {

/// The entries of a filter of a rule ("LAP-A,LAP-B"), divided by commas, semicolons, bars and white space. The engine
/// knows no entries: it looks for the device's text anywhere in the filter.
std::vector<std::string_view> EntriesOf(std::string_view filter);

/// Whether some scene passes both filters: a number whose digits stand in both texts.
bool HaveCommonScene(std::string_view one, std::string_view other);
/// Whether a text that one of two filters names passes both. An empty filter lets all pass.
bool HaveCommonEntry(std::string_view one, std::string_view other);
/// Whether a filter has entries, and the engine finds each of them in `list`.
bool HasAllEntries(std::string_view filter, std::string_view list);

} // namespace diagnosis::lint

#endif
