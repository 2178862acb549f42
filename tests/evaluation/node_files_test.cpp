#include <filesystem>

#include <gmock/gmock.h>

#include "arborist/frame/settings.h"
#include "tests/evaluation/node_rule_fixture.h"

namespace {

using testing::ElementsAre;
using Evidence::Reason;

using NodeFilesTest = NodeRuleFixture;

TEST_F(NodeFilesTest, FilesAreReadAnewAtEachCall)
{
    NodeFile("a", "5");
    const auto param = AddParam("1", "a", "int");
    Conditions({SingleTest("gt", "5")});
    EXPECT_FALSE(Ask());
    mDir.Write("a", "6");
    EXPECT_TRUE(Ask());
    EXPECT_EQ(param->value, "6");
}

TEST_F(NodeFilesTest, MissingFileGivesTheEmptyValue)
{
    Node("a", "none");
    const auto param = AddParam("1", "a", "int");
    param->value = "7";
    Conditions({SingleTest("ne", "1")});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(param->value, "");
    EXPECT_EQ(mEngine.GetReason(), Reason::NODE_UNREADABLE);
}

TEST_F(NodeFilesTest, MissingFileCountsAsZeroInTheFormula)
{
    Node("a", "none");
    ExpectThatAIsZeroInAFormula();
}

TEST_F(NodeFilesTest, NodePathsLieBelowTheDeviceRoot)
{
    mDir.Write("root/sys/value", "5");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("root"));
    Node("a", "/sys/value");
    AddParam("1", "a", "int");
    Conditions({SingleTest("eq", "5")});
    EXPECT_TRUE(Ask());
}

TEST_F(NodeFilesTest, LinkOfACapturedDeviceIsFollowedWithinTheDevice)
{
    mDir.Write("root/devices/value", "5");
    mDir.Write("devices/value", "6");
    mDir.MakeDir("root/sys");
    std::filesystem::create_symlink("/devices/value", mDir.Path("root/sys/value"));
    std::filesystem::create_symlink("../../devices/value", mDir.Path("root/sys/relative"));
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("root"));
    Node("a", "/sys/value");
    Node("b", "/sys/relative");
    AddParam("1", "a", "int");
    AddParam("2", "b", "int");
    Conditions({MultipleTest({Item("1", "eq", "5"), Item("2", "eq", "5")})});
    EXPECT_TRUE(Ask());
}

TEST_F(NodeFilesTest, DirectoryIsUnreadable)
{
    mDir.MakeDir("folder");
    Node("a", "folder");
    AddParam("1", "a", "int");
    Conditions({SingleTest("eq", "0")});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NODE_UNREADABLE);
}

TEST_F(NodeFilesTest, FilesOfADetectionBeyond256MebibytesCountAsUnreadable)
{
    constexpr std::size_t LARGEST = 32 * 1024 * 1024;
    std::filesystem::resize_file(mDir.Write("large", "5\n"), LARGEST);
    mDir.Write("small", "5\n");
    AddParam("1", "small", "int");
    Conditions({SingleTest("eq", "5")});
    for (std::size_t bytes = 0; bytes < NodeRuleEngine::MOST_BYTES; bytes += LARGEST) {
        Node("large", "large"); // no parameter keeps it
    }
    Node("small", "small");
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NODE_UNREADABLE);
    const char* const line =
        "FUNc:NodeRuleEngine::SetParamValue: the node files have 268435456 bytes or more, no other is read.";
    EXPECT_THAT(mLog.Lines(), ElementsAre(line));

    mRule = std::make_shared<NodeRule>();
    Node("small", "small");
    AddParam("1", "small", "int");
    Conditions({SingleTest("eq", "5")});
    EXPECT_FALSE(Ask());
    mEngine.StartDetection();
    EXPECT_TRUE(Ask());
    EXPECT_THAT(mLog.Lines(), ElementsAre(line));
}

TEST_F(NodeFilesTest, EveryFileIsReadAlsoBehindOneThatCanNotBe)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    Node("gone", "gone");
    Node("none", "none");
    NodeFile("mode", "on");
    AddParam("1", "gone", "string");
    AddParam("2", "none", "string");
    AddParam("3", "mode", "string");
    Conditions({SingleTest("eq", "off")});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NODE_UNREADABLE);
    Conditions({SingleTest("eq", "on")});
    EXPECT_TRUE(Ask());
    mEngine.SetRecord(nullptr);
}

} // namespace
