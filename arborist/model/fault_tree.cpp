#include "arborist/model/fault_tree.h"

#include <utility>

#include "arborist/model/event.h"

FaultTree::FaultTree(std::string id, std::string version, std::string type)
    : mId(std::move(id)), mVersion(std::move(version)), mType(std::move(type))
{
}

void FaultTree::SetId(std::string id)
{
    mId = std::move(id);
}

void FaultTree::SetVersion(std::string version)
{
    mVersion = std::move(version);
}

void FaultTree::SetType(std::string type)
{
    mType = std::move(type);
}

void FaultTree::SetIntermediateEvent(std::shared_ptr<IntermediateEvent> event)
{
    mIntermediateEvent = std::move(event);
}

void FaultTree::Check()
{
    if (mIntermediateEvent != nullptr) {
        mIntermediateEvent->Check();
    }
}

void FaultTree::Reset()
{
    if (mIntermediateEvent != nullptr) {
        mIntermediateEvent->Reset();
    }
}
