#ifndef ARBORIST_DIAGNOSIS_LINT_READING_DEVICE_FILTER_H
#define ARBORIST_DIAGNOSIS_LINT_READING_DEVICE_FILTER_H

#include "diagnosis/lint/base/subject.h"

namespace diagnosis::lint {

/// The first attribute, in the engine's order, whose filter rejects a device; null if the device may pass all of them.
/// An attribute that is missing in the profile passes.
const char* RejectedBy(const rule_source::Rule& rule, const DeviceProfile& device);

} // namespace diagnosis::lint

#endif
