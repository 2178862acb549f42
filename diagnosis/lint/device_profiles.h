#ifndef ARBORIST_DIAGNOSIS_LINT_DEVICE_PROFILES_H
#define ARBORIST_DIAGNOSIS_LINT_DEVICE_PROFILES_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/lint/base/subject.h"

namespace diagnosis::lint {

/// Reads a file of device profiles: one object or a list of them, each with "Product", "Platform", "DeviceType" and a
/// list "scenes"; or a bundle.json, whose device and scene are one profile. Nothing, with the reason in `problem`, for a
/// file of another form.
std::optional<std::vector<DeviceProfile>> ReadDeviceProfiles(const std::string& path, std::string& problem);

} // namespace diagnosis::lint

#endif
