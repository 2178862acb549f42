// A host that records repairs: diagnoses the device, takes the user's word that a repair was carried out, and diagnoses
// again. What was logged before the repair doesn't count any more.
//
//     repair_host REPAIR     in a folder with rules/, device/ and programdata/, like a prepared examples/laptop

#include <cstdarg>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "arborist/arborist.h"

namespace {

/// A host that keeps no log.
class Silence : public FT::ILogger {
public:
    void Print(unsigned int, const std::string&, va_list) override {}
};

std::shared_ptr<DetectInfo> DescribeDevice()
{
    auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = 1;
    info->mTreeTag = "Laptop";
    info->mRuleFileDir = "rules";
    info->mDeviceDetails = std::make_shared<DeviceDetails>("laptop", "LT-14", "x86", "quad-2.4", "8", "1920x1080", "5000");
    return info;
}

/// Prints the causes that a repair is listed for.
void PrintCausesMendedBy(const std::string& repair)
{
    // A new engine for each detection keeps nothing of the one before.
    Arborist engine(DescribeDevice());
    for (const auto& result : engine.StartDetection()) {
        for (const auto& cause : result->mRootCauseResults) {
            for (const FaultTreeResult::RepairInfo& info : cause->mRepairInfos) {
                if (info.mId == repair) {
                    std::cout << "  " << result->mTreeId << ": " << cause->mNode->mName << "\n";
                }
            }
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: repair_host REPAIR\n";
        return 2;
    }
    FT::Log::GetInstance().SetUserLogger(std::make_unique<Silence>());
    SetFaultTreeProperty(Settings::PROGRAM_DATA_DIR, "programdata");
    SetFaultTreeProperty(Settings::DEVICE_ROOT_DIR, "device");
    SetFaultTreeProperty(Settings::APP_DATABASE_DIR, "databases");
    SetFaultTreeProperty(Settings::VERSION_NAME, "4.1");
    SetFaultTreeProperty(Settings::CURRENT_TIME, "1716199200");

    std::cout << "before " << argv[1] << ":\n";
    PrintCausesMendedBy(argv[1]);
    // Recorded under the current time of the settings; a host that diagnoses the present sets none.
    UpdateRepairDb(argv[1]);
    std::cout << "after it:\n";
    PrintCausesMendedBy(argv[1]);
    return 0;
}
