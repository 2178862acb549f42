#include "tools/arborist/batch/bundle_list.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace diagnosis::command {

namespace {

void ReadEntries(std::istream& stream, char end, std::vector<std::string>& bundles)
{
    for (std::string bundle; std::getline(stream, bundle, end);) {
        if (end == '\n' && !bundle.empty() && bundle.back() == '\r') {
            bundle.pop_back();
        }
        if (!bundle.empty()) {
            bundles.push_back(bundle);
        }
    }
}

} // namespace

std::optional<std::string> ReadBundleList(const std::string& path, bool endsInNul, std::vector<std::string>& bundles)
{
    const char end = endsInNul ? '\0' : '\n';
    if (path == "-") {
        ReadEntries(std::cin, end, bundles);
        return std::ferror(stdin) != 0 ? std::optional<std::string>("standard input can't be read") : std::nullopt;
    }
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        return path + ": can't be read: is a folder";
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return path + ": can't be read: " + std::strerror(errno);
    }
    ReadEntries(file, end, bundles);
    return file.bad() ? std::optional(path + ": can't be read to its end") : std::nullopt;
}

std::optional<Shard> ParseShard(const std::string& text)
{
    Shard shard;
    const char* const end = text.data() + text.size();
    const auto number = std::from_chars(text.data(), end, shard.number);
    if (number.ec != std::errc() || number.ptr == end || *number.ptr != '/') {
        return std::nullopt;
    }
    const auto count = std::from_chars(number.ptr + 1, end, shard.count);
    const bool isWhole = count.ec == std::errc() && count.ptr == end;
    return isWhole && shard.number >= 1 && shard.number <= shard.count ? std::optional(shard) : std::nullopt;
}

std::vector<std::string> TakeShard(const std::vector<std::string>& bundles, const Shard& shard)
{
    std::vector<std::string> taken;
    for (std::size_t i = shard.number - 1; i < bundles.size(); i += shard.count) {
        taken.push_back(bundles[i]);
        if (shard.count > bundles.size()) {
            break; // a step of this size could overflow
        }
    }
    return taken;
}

} // namespace diagnosis::command
