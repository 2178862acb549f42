#ifndef ARBORIST_DIAGNOSIS_LINT_READING_DEVICE_FILTER_H
#define ARBORIST_DIAGNOSIS_LINT_READING_DEVICE_FILTER_H

#include "diagnosis/lint/base/subject.h"

namespace diagnosis::lint {

/// The attribute whose filter rejects a device, the first in the engine's order; null if the device may pass all of
/// them. What a profile doesn't tell passes.
const char* RejectedBy(const rule_source::Rule& rule, const DeviceProfile& device);

} // namespace diagnosis::lint

#endif
