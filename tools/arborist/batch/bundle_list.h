#ifndef ARBORIST_TOOLS_BATCH_BUNDLE_LIST_H
#define ARBORIST_TOOLS_BATCH_BUNDLE_LIST_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace diagnosis::command {

/// Reads a list of bundles, one a line or, with `endsInNul`, one before each NUL character. Lines may end in CR LF;
/// empty entries are passed over. "-" is standard input. Otherwise answers why the list can't be read.
std::optional<std::string> ReadBundleList(const std::string& path, bool endsInNul, std::vector<std::string>& bundles);

/// A part of a list that is worked on by itself: of `count` shards the `number`th, counted from 1.
struct Shard {
    std::size_t number = 1;
    std::size_t count = 1;
};

/// Reads "2/8". Nothing for another form, for a count of 0 and for a number outside 1 to the count.
std::optional<Shard> ParseShard(const std::string& text);

/// Every `count`th bundle of the list, from the `number`th on, so that neighbours of much work are spread. All shards
/// together have each bundle once; those beyond the length of the list have none.
std::vector<std::string> TakeShard(const std::vector<std::string>& bundles, const Shard& shard);

} // namespace diagnosis::command

#endif
