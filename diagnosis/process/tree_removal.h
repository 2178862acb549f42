#ifndef ARBORIST_DIAGNOSIS_PROCESS_TREE_REMOVAL_H
#define ARBORIST_DIAGNOSIS_PROCESS_TREE_REMOVAL_H

namespace diagnosis {

/// Removes the folder at `path` with all that is in it; links are removed and not followed. What can't be removed
/// stays, in silence. Makes only calls that a signal handler may make.
void RemoveTree(const char* path);

} // namespace diagnosis

#endif
