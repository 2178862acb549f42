#include "tools/arborist/detection/bare_rules.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>

#include <stdlib.h>

#include "tools/arborist/render/json_writer.h"

namespace command {

namespace fs = std::filesystem;

namespace {

/// A private folder, removed at the end.
class PrivateFolder {
public:
    PrivateFolder()
    {
        std::error_code error;
        std::string pattern = (fs::temp_directory_path(error) / "arborist-XXXXXX").string();
        mPath = mkdtemp(pattern.data()) == nullptr ? "" : pattern;
    }
    ~PrivateFolder()
    {
        std::error_code ignored;
        if (!mPath.empty()) {
            fs::remove_all(mPath, ignored);
        }
    }
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    const std::string& Path() const { return mPath; }

private:
    std::string mPath;
};

// A scene that no rule names, and roots inside the folder: nothing of this machine is read beside the rules.
std::string BundleText(const std::string& rules, const std::string& treeTag)
{
    JsonWriter json;
    json.BeginObject().Key("detectScene").Number(std::numeric_limits<std::int32_t>::min());
    json.Text("treeTag", treeTag).Text("ruleFileDir", rules);
    json.Key("settings").BeginObject().Text("ProgramDataDir", "programdata").Text("DeviceRootDir", "device");
    return json.EndObject().EndObject().Line();
}

} // namespace

DetectionReport ReadBareRules(const BundlePath& rules, const std::string& treeTag)
{
    const PrivateFolder folder;
    if (folder.Path().empty()) {
        DetectionReport report;
        report.bundle = rules.given;
        report.failure = Failure{"no_scratch", std::string("no private folder can be made: ") + std::strerror(errno),
            ExitStatus::INTERNAL};
        return report;
    }
    std::ofstream(folder.Path() + "/bundle.json") << BundleText(rules.absolute, treeTag);
    DetectionOptions options;
    options.withTrees = true;
    DetectionReport report = RunDetection({rules.given, folder.Path()}, options);
    report.warnings.clear(); // of a device that there is none of
    return report;
}

} // namespace command
