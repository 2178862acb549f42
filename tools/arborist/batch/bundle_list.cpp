#include "tools/arborist/batch/bundle_list.h"

#include <cerrno>
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

} // namespace diagnosis::command
