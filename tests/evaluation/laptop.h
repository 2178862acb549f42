#ifndef ARBORIST_TESTS_EVALUATION_LAPTOP_H
#define ARBORIST_TESTS_EVALUATION_LAPTOP_H

#include <memory>

#include "arborist/frame/detect_info.h"

/// A device whose type, product and platform are known.
inline const DeviceDetails LAPTOP("Notebook", "AB", "x86", "", "", "", "");

inline std::shared_ptr<DetectInfo> InfoOf(const DeviceDetails& details, int scene)
{
    auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = scene;
    info->mDeviceDetails = std::make_shared<DeviceDetails>(details);
    return info;
}

#endif
