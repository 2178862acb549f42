#ifndef ARBORIST_TOOLS_SCRATCH_TREE_REMOVAL_H
#define ARBORIST_TOOLS_SCRATCH_TREE_REMOVAL_H

namespace command {

/// Removes the folder at `path` with all that is in it; links are removed and not followed. What can't be removed
/// stays, in silence. Makes only calls that a signal handler may make.
void RemoveTree(const char* path);

} // namespace command

#endif
