#ifndef ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_OVERLAY_H
#define ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_OVERLAY_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"
#include "diagnosis/scratch/scratch.h"
#include "diagnosis/text/path_names.h"

namespace diagnosis {

/// The root of the fixed paths if the setting is empty, the data of this machine, and whether an overlay can link to files.
#ifdef _WIN32
inline constexpr char MACHINE_DATA[] = "C:/ProgramData";
inline constexpr bool MAKES_LINKS = false; // the compiler's standard library can't
#else
inline constexpr char MACHINE_DATA[] = "/var/lib/arborist";
inline constexpr bool MAKES_LINKS = true;
#endif

/// The fixed paths below that root, in addition to REPAIR_RECORDS.
inline constexpr char EVENT_LOG[] = "Comms/Lumbra/workDir/0/log.db";
inline constexpr char DERIVED_DATABASE[] = "Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db";

/// The folders that each overlay has, below its root: those worth keeping in a ReusedScratch. "databases" is that of the
/// copies.
std::vector<std::string> FoldersOfOverlay();

/// Creates in `scratch` everything of a bundle's data that a run would write: the root of the event log and of the
/// library's own databases, and the folder of the copies. Points `settings` there and adds the paths of the bundle to
/// `names`.
///
/// The event log is a link if links can be made and reading it changes no file, otherwise a copy; the library's databases
/// are copies.
/// Relative settings are relative to `folder`, the bundle's.
std::optional<Failure> LayOverlay(const std::string& folder, Scratch& scratch,
    std::map<std::string, std::string>& settings, PathNames& names);

/// Puts the library's own databases of an overlay back to the state of the bundle's, and empties the folder of the copies:
/// what a detection has left must not reach the next one. `root` is the bundle's own root of data.
std::optional<Failure> LayDatabasesAnew(const std::string& folder, Scratch& scratch, const std::string& root);

} // namespace diagnosis

#endif
