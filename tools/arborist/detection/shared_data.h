#ifndef ARBORIST_TOOLS_DETECTION_SHARED_DATA_H
#define ARBORIST_TOOLS_DETECTION_SHARED_DATA_H

#include <string>

namespace command {

/// Whether the rule file at `path` has thresholds that depend on the device under the tag. Nobody is told of them
/// before a rule asks for one.
bool HasThresholds(const std::string& path, const std::string& treeTag);

} // namespace command

#endif
