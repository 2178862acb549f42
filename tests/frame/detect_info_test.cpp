#include "arborist/frame/detect_info.h"

#include <string>

#include <gtest/gtest.h>

namespace {

std::string TextOf(const DeviceDetails& details)
{
    return details.GetDeviceType() + " " + details.GetProduct() + " " + details.GetPlatform() + " " +
        details.GetCpuName() + " " + details.GetRamSize() + " " + details.GetResolution() + " " +
        details.GetBatteryCapacity();
}

TEST(DeviceDetailsTest, ConstructorTakesTypeProductPlatformProcessorMemoryResolutionAndBattery)
{
    EXPECT_EQ(TextOf(DeviceDetails("type", "product", "platform", "cpu", "ram", "resolution", "battery")),
        "type product platform cpu ram resolution battery");
}

TEST(DeviceDetailsTest, SettersReplaceTheirOwnText)
{
    DeviceDetails details("1", "2", "3", "4", "5", "6", "7");
    details.SetBatteryCapacity("battery");
    details.SetResolution("resolution");
    details.SetRamSize("ram");
    details.SetCpuName("cpu");
    details.SetPlatform("platform");
    details.SetProduct("product");
    details.SetDeviceType("type");
    EXPECT_EQ(TextOf(details), "type product platform cpu ram resolution battery");
}

TEST(DeviceDetailsTest, NothingIsKnownByDefault)
{
    EXPECT_EQ(TextOf(DeviceDetails()), "      ");
}

TEST(DetectInfoTest, StartsEmptyWithoutDeviceAndRunner)
{
    const DetectInfo info;
    EXPECT_EQ(info.mDetectScene, 0);
    EXPECT_EQ(info.mTreeTag + info.mRuleFileDir + info.mReservedText + info.mLogLocation + info.mRuleFilePrefix, "");
    EXPECT_EQ(info.mDeviceDetails, nullptr);
    EXPECT_EQ(info.mCodeRuleRunner, nullptr);
}

} // namespace
