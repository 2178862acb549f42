#ifndef ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_OVERLAY_H
#define ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_OVERLAY_H

#include <map>
#include <optional>
#include <string>

#include "diagnosis/problem.h"
#include "diagnosis/scratch/scratch.h"
#include "diagnosis/text/path_names.h"

namespace diagnosis {

/// The root of the fixed paths if the setting is empty: the data of this machine.
inline constexpr char MACHINE_DATA[] = "/var/lib/arborist";

/// The fixed paths below that root, in addition to REPAIR_RECORDS.
inline constexpr char EVENT_LOG[] = "Comms/Lumbra/workDir/0/log.db";
inline constexpr char DERIVED_DATABASE[] = "Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db";

/// Lays over a bundle's data, in `scratch`, what a run would write: the root of the event log and of the library's own
/// databases, and the folder of the copies. `settings` then point there, and `names` tells what the paths stand for.
///
/// The event log is a link where reading it leaves no trace, and a copy otherwise; the library's databases are copies.
/// `folder` is the bundle's, from which relative settings are meant.
std::optional<Failure> LayOverlay(const std::string& folder, Scratch& scratch,
    std::map<std::string, std::string>& settings, PathNames& names);

} // namespace diagnosis

#endif
