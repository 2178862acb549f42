#include "arborist/deduction/root_cause.h"

#include <utility>

void RootCause::AddEvent(std::shared_ptr<Event> event)
{
    mLeaf.push_back(std::move(event));
}

void RootCause::AddPath(std::string id)
{
    mPaths.push_back(std::move(id));
}

void RootCause::SetLeaf(std::vector<std::shared_ptr<Event>> leaf)
{
    mLeaf = std::move(leaf);
}

void RootCause::SetPaths(std::vector<std::string> paths)
{
    mPaths = std::move(paths);
}
