#include "diagnosis/detection/stop_switch.h"

#include "arborist/frame/arborist.h"

namespace diagnosis {

void StopSwitch::Stop()
{
    // Held during the request, so that the engine can't end meanwhile.
    const std::lock_guard guard(mLock);
    if (mEngine != nullptr) {
        mEngine->RequestStop();
    }
}

void StopSwitch::Reach(Arborist* engine)
{
    const std::lock_guard guard(mLock);
    mEngine = engine;
}

StopSwitch::Running::Running(StopSwitch* target, Arborist& engine) : mSwitch(target)
{
    if (mSwitch != nullptr) {
        mSwitch->Reach(&engine);
    }
}

StopSwitch::Running::~Running()
{
    if (mSwitch != nullptr) {
        mSwitch->Reach(nullptr);
    }
}

} // namespace diagnosis
