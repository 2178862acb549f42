#ifndef ARBORIST_TOOLS_BATCH_BUNDLE_LIST_H
#define ARBORIST_TOOLS_BATCH_BUNDLE_LIST_H

#include <optional>
#include <string>
#include <vector>

namespace diagnosis::command {

/// Reads a list of bundles, one a line or, with `endsInNul`, one before each NUL character. Lines may end in CR LF;
/// empty entries are passed over. "-" is standard input. Otherwise answers why the list can't be read.
std::optional<std::string> ReadBundleList(const std::string& path, bool endsInNul, std::vector<std::string>& bundles);

} // namespace diagnosis::command

#endif
