#ifndef ARBORIST_TOOLS_BATCH_BUNDLE_LIST_H
#define ARBORIST_TOOLS_BATCH_BUNDLE_LIST_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace diagnosis::command {

/// Reads a list of bundles from a file, or from standard input for "-": one bundle a line or, with `endsInNul`, one
/// before each NUL character. Lines may end in CR LF; skips empty entries. Returns the reason if the list can't be
/// read.
std::optional<std::string> ReadBundleList(const std::string& path, bool endsInNul, std::vector<std::string>& bundles);

/// The `number`th of `count` parts of a list, counted from 1, to run by itself.
struct Shard {
    std::size_t number = 1;
    std::size_t count = 1;
};

/// Parses "2/8". Nothing for another form, for a count of 0 and for a number outside 1 to the count.
std::optional<Shard> ParseShard(const std::string& text);

/// Every `count`th bundle of the list, from the `number`th on, which spreads expensive neighbours over the shards. Each
/// bundle is in exactly one shard; shards beyond the length of the list are empty.
std::vector<std::string> TakeShard(const std::vector<std::string>& bundles, const Shard& shard);

} // namespace diagnosis::command

#endif
