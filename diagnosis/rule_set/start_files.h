#ifndef ARBORIST_DIAGNOSIS_RULE_SET_START_FILES_H
#define ARBORIST_DIAGNOSIS_RULE_SET_START_FILES_H

#include <span>
#include <string_view>

namespace diagnosis::rule_set {

/// A file of the folder start/, which the build puts into the library.
struct StartFile {
    /// Its path below that folder.
    std::string_view path;
    std::string_view content;
};

std::span<const StartFile> StartFiles();

} // namespace diagnosis::rule_set

#endif
