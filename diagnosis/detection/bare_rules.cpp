#include "diagnosis/detection/bare_rules.h"

#include <cstdint>
#include <fstream>
#include <limits>

#include "diagnosis/scratch/scratch.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

namespace {

// A scene that no rule names, and roots inside the folder: only the rules are read, nothing else of this machine.
std::string BundleText(const std::string& rules, const std::string& treeTag)
{
    JsonWriter json;
    json.BeginObject().Number("detectScene", std::numeric_limits<std::int32_t>::min());
    json.Text("treeTag", treeTag).Text("ruleFileDir", rules);
    json.Key("settings").BeginObject().Text("ProgramDataDir", "programdata").Text("DeviceRootDir", "device");
    return json.EndObject().EndObject().Line();
}

} // namespace

DetectionReport ReadBareRules(const BundlePath& rules, const std::string& treeTag)
{
    Scratch scratch;
    if (const auto failure = scratch.Make()) {
        DetectionReport report;
        report.bundle = rules.given;
        report.failure = failure;
        return report;
    }
    std::ofstream(scratch.Path("bundle.json")) << BundleText(rules.absolute, treeTag);
    DetectionOptions options;
    options.withTrees = true;
    options.checksRuleSet = false;
    DetectionReport report = RunDetection({rules.given, scratch.Path()}, options);
    report.warnings.clear(); // about missing data of a device; there is no device
    return report;
}

} // namespace diagnosis
