#ifndef ARBORIST_TOOLS_COMMANDS_EACH_BUNDLE_H
#define ARBORIST_TOOLS_COMMANDS_EACH_BUNDLE_H

#include <functional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/detection/detection.h"
#include "diagnosis/exit_status.h"

namespace diagnosis::command {

/// The bundles of a command line or list.
std::vector<BundlePath> BundlePaths(const std::vector<std::string>& given);

/// Calls `run` for each bundle in turn and returns the most serious of its answers. Ends after a bundle in which a SIGINT
/// came. `run` gets `detection` with what bundles that follow one another share.
ExitStatus RunEach(const std::vector<std::string>& given, DetectionOptions detection,
    const std::function<ExitStatus(const BundlePath& bundle, const DetectionOptions& detection)>& run);

} // namespace diagnosis::command

#endif
