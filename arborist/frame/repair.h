#ifndef ARBORIST_FRAME_REPAIR_H
#define ARBORIST_FRAME_REPAIR_H

#include <string>

#include "arborist/arborist_export.h"

/// Records that the repair with this id was carried out now. Later detections don't count events from before the repair
/// for the faults that the rule set mends with it. The id isn't checked: each text is recorded. A failure is only logged
/// and leaves the previous date. Any thread may call this function, also during a detection.
ARBORIST_EXPORT void UpdateRepairDb(const std::string& repairId);

#endif
