#include "tools/arborist/commands/each_bundle.h"

#include <memory>
#include <optional>

#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/process/interruption.h"
#include "diagnosis/scratch/scratch.h"

namespace diagnosis::command {

std::vector<BundlePath> BundlePaths(const std::vector<std::string>& given)
{
    std::vector<BundlePath> bundles;
    for (const std::string& bundle : given) {
        bundles.push_back(MakeBundlePath(bundle));
    }
    return bundles;
}

ExitStatus RunEach(const std::vector<std::string>& given, DetectionOptions detection,
    const std::function<ExitStatus(const BundlePath& bundle, const DetectionOptions& detection)>& run)
{
    const std::vector<BundlePath> bundles = BundlePaths(given);
    detection.stopsOnSignal = true;
    std::optional<ReusedScratch> reused;
    if (bundles.size() > 1) {
        detection.ruleSets = std::make_shared<RuleSetMemory>();
        reused.emplace(FoldersOfOverlay());
    }
    ExitStatus status = ExitStatus::SUCCESS;
    for (const BundlePath& bundle : bundles) {
        if (WasStoppedBySignal()) {
            break;
        }
        status = MoreSerious(status, run(bundle, detection));
    }
    return status;
}

} // namespace diagnosis::command
