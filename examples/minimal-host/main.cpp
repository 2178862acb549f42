// The smallest host: diagnoses a device with the rule set in a folder and prints the verdict of each tree, with the ids of
// its root causes.
//
//     minimal_host RULE_FOLDER TREE_TAG

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "arborist/arborist.h"

namespace {

// The library's own logger prints every line to standard output; a host puts the log where it wants it.
class WarningsOnly : public FT::ILogger {
public:
    void Print(unsigned int level, const std::string& format, va_list args) override
    {
        if (level >= FT::LEVEL_WARN) {
            std::vfprintf(stderr, (format + "\n").c_str(), args);
        }
    }
};

// Keeps the verdict of each tree. A tree without a root cause may be "no_fault", "not_applicable" or, if data is missing
// or the detection was stopped, "undecided": the result alone doesn't tell these apart.
class Verdicts : public DetectionObserver {
public:
    void OnTreeFinished(Evidence::TreeResult tree) override
    {
        words.push_back(Evidence::TreeVerdictText(tree.verdict.word));
    }

    std::vector<std::string> words; // in the order of the results
};

void Diagnose(const std::string& ruleFolder, const std::string& treeTag)
{
    auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = 1; // only rules that name this scene are run
    info->mTreeTag = treeTag;
    info->mRuleFileDir = ruleFolder;
    info->mDeviceDetails = std::make_shared<DeviceDetails>("laptop", "LT-14", "x86", "quad-2.4", "8", "1920x1080", "5000");

    const auto verdicts = std::make_shared<Verdicts>();

    Arborist engine(info);
    engine.SetObserver(verdicts);
    const auto trees = engine.StartDetection();
    if (trees.empty()) {
        std::cout << "no tree\n"; // nothing was diagnosed: the log says why
    }
    for (std::size_t place = 0; place < trees.size(); ++place) {
        std::cout << trees[place]->mTreeId << ": " << verdicts->words[place] << "\n";
        for (const auto& cause : trees[place]->mRootCauseResults) {
            std::cout << "  " << cause->mNode->mId << ", described by " << cause->mFaultDescription << "\n";
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: minimal_host RULE_FOLDER TREE_TAG\n";
        return 2;
    }
    FT::Log::GetInstance().SetUserLogger(std::make_unique<WarningsOnly>());
    // Derived data and repair records lie below this folder, the event log too.
    SetFaultTreeProperty(Settings::PROGRAM_DATA_DIR, "arborist-data");
    Diagnose(argv[1], argv[2]);
    return 0;
}
