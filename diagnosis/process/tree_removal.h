#ifndef ARBORIST_DIAGNOSIS_PROCESS_TREE_REMOVAL_H
#define ARBORIST_DIAGNOSIS_PROCESS_TREE_REMOVAL_H

namespace diagnosis {

/// Removes the folder at `path` with its content; removes links without following them. Entries that can't be removed
/// stay, without an error. Async-signal-safe.
void RemoveTree(const char* path);

} // namespace diagnosis

#endif
