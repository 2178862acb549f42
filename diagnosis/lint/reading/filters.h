#ifndef ARBORIST_DIAGNOSIS_LINT_READING_FILTERS_H
#define ARBORIST_DIAGNOSIS_LINT_READING_FILTERS_H

#include <string_view>
#include <vector>

namespace diagnosis::lint {

/// The entries of a filter of a rule ("LAP-A,LAP-B"), separated by commas, semicolons, bars and white space. The engine
/// doesn't separate them: it searches the whole filter for the device's text.
std::vector<std::string_view> EntriesOf(std::string_view filter);

/// True if some scene passes both filters: a number whose digits are in both texts.
bool HaveCommonScene(std::string_view one, std::string_view other);
/// True if an entry of one of two filters passes both. An empty filter accepts all.
bool HaveCommonEntry(std::string_view one, std::string_view other);
/// True if a filter has entries and the engine finds each of them in `list`.
bool HasAllEntries(std::string_view filter, std::string_view list);

} // namespace diagnosis::lint

#endif
