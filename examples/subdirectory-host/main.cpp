// Asks about one detection code, without a detection: what would a test of it stand for?
//
//     subdirectory_host RULE_FOLDER TREE_TAG CODE

#include <cstdarg>
#include <iostream>
#include <memory>
#include <string>

#include "arborist/arborist.h"

namespace {

class Silence : public FT::ILogger {
public:
    void Print(unsigned int, const std::string&, va_list) override {}
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "usage: subdirectory_host RULE_FOLDER TREE_TAG CODE\n";
        return 2;
    }
    FT::Log::GetInstance().SetUserLogger(std::make_unique<Silence>());
    auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = 1;
    info->mTreeTag = argv[2];
    info->mRuleFileDir = argv[1];
    info->mDeviceDetails = std::make_shared<DeviceDetails>();
    Arborist engine(info);
    std::cout << argv[3] << ": " << (engine.IsRunRule(argv[3]) ? "would run" : "would not run") << ", stands for "
              << engine.GetCodeRuleFaultDescId(argv[3]) << ", mended by " << engine.GetCodeRuleRepairId(argv[3]) << "\n";
    return 0;
}
