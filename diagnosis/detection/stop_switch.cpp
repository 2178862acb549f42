#include "diagnosis/detection/stop_switch.h"

#include "arborist/frame/arborist.h"

namespace diagnosis {

void StopSwitch::Stop()
{
    // Held during the request, so that the engine can't end meanwhile.
    const std::lock_guard guard(mLock);
    mIsAsked = mCalls > 0;
    if (mEngine != nullptr) {
        mEngine->RequestStop();
    }
}

bool StopSwitch::IsAsked() const
{
    const std::lock_guard guard(mLock);
    return mIsAsked;
}

void StopSwitch::AskAgain()
{
    if (IsAsked()) {
        Stop();
    }
}

StopSwitch::Call::Call(StopSwitch* target) : mSwitch(target)
{
    if (mSwitch != nullptr) {
        const std::lock_guard guard(mSwitch->mLock);
        ++mSwitch->mCalls;
    }
}

StopSwitch::Call::~Call()
{
    if (mSwitch != nullptr) {
        const std::lock_guard guard(mSwitch->mLock);
        mSwitch->mIsAsked = --mSwitch->mCalls > 0 && mSwitch->mIsAsked;
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
