#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/lint/reading/entry_overlap.h"
#include "tests/diagnosis/lint/rule_findings.h"

namespace {

using diagnosis::lint::DeviceProfile;
using diagnosis::lint::EntryOverlap;
using testing::ElementsAre;
using testing::IsEmpty;

std::string Code(const std::string& name, const std::string& filters)
{
    return "<codeRule name=\"" + name + "\" " + filters + "><detectInfo id=\"C\"/></codeRule>";
}

TEST(FilterChecks, HoldProductsAgainstBlackProductsAndNoOtherFilter)
{
    const std::string scene = "detectScene=\"1\" ";
    EXPECT_THAT(FindingsInRules(Code("r", scene + "production=\"AB\"") + Code("s", scene + "blackProducts=\"X,ABC\""), {"A402"}),
        ElementsAre("A402: the rule \"s\" lists \"ABC\" in \"blackProducts\", of which \"AB\" is a part"));
    EXPECT_THAT(FindingsInRules(Code("r", scene + "platform=\"AB\"") + Code("s", scene + "production=\"X,ABC\""), {"A402"}),
        IsEmpty());
}

TEST(FilterChecks, LeaveABlackListAloneThatLacksAProduct)
{
    const auto found = [](const std::string& filters) { return FindingsInRules(Code("r", filters), {"A403"}); };
    EXPECT_THAT(found("production=\"A,B\" blackProducts=\"B\""), IsEmpty());
    EXPECT_THAT(found("blackProducts=\"B\""), IsEmpty());
    EXPECT_THAT(found("production=\"A,B\" blackProducts=\"C,B,A\""),
        ElementsAre("A403: the rule \"r\" has all its products on its black list, too"));
}

std::vector<std::string> ForDevices(const std::string& filters, const std::vector<DeviceProfile>& devices)
{
    return FindingsInRules(Code("r", filters), {"A406"}, devices);
}

TEST(FilterChecks, TellTheFilterThatTurnsEveryDeviceAway)
{
    const DeviceProfile device{"LAP-A", "x86", "laptop", {1, 2}};
    const auto found = [&device](const std::string& filters) { return ForDevices(filters, {device}); };
    const auto is = [](const std::string& filter) {
        return ElementsAre("A406: no device of the profiles passes \"" + filter + "\" of the rule \"r\"");
    };
    EXPECT_THAT(found("detectScene=\"1\" production=\"LAP-A\" platform=\"x86_64\" deviceType=\"laptop\""), IsEmpty());
    EXPECT_THAT(found("detectScene=\"3\""), is("detectScene"));
    EXPECT_THAT(found("detectScene=\"2\" production=\"LAP-B\""), is("production"));
    EXPECT_THAT(found("detectScene=\"2\" blackProducts=\"LAP-A\""), is("blackProducts"));
    EXPECT_THAT(found("detectScene=\"2\" platform=\"arm\""), is("platform"));
    EXPECT_THAT(found("detectScene=\"2\" deviceType=\"tablet\""), is("deviceType"));
    EXPECT_THAT(found("production=\"LAP-B\""), IsEmpty()) << "a rule without a scene has a finding of its own";
}

TEST(FilterChecks, LetPassWhatAProfileDoesNotTell)
{
    EXPECT_THAT(ForDevices(
                    "detectScene=\"9\" production=\"A\" blackProducts=\"B\" platform=\"C\" deviceType=\"D\"", {DeviceProfile{}}),
        IsEmpty());
}

TEST(FilterChecks, NameNoFilterWhereDevicesFailByDifferentOnes)
{
    const DeviceProfile laptop{"LAP", "x86", "laptop", {}};
    const DeviceProfile tablet{"TAB", "arm", "tablet", {}};
    EXPECT_THAT(ForDevices("detectScene=\"1\" production=\"LAP\" platform=\"arm\"", {laptop, tablet}),
        ElementsAre("A406: no device of the profiles passes the filters of the rule \"r\""));
    EXPECT_THAT(ForDevices("detectScene=\"1\" production=\"LAP\"", {tablet, laptop}), IsEmpty());
}

TEST(EntryOverlap, EndsOnceItHasLookedForLong)
{
    EntryOverlap overlap;
    std::vector<std::string> filters;
    for (int number = 100000; number < 300000; ++number) {
        filters.push_back(std::to_string(number) + std::string(50, 'x'));
    }
    for (int length = 1; length < 50; ++length) {
        filters.push_back(std::string(static_cast<std::size_t>(length), 'y'));
    }
    for (const std::string& filter : filters) {
        overlap.Add(filter);
    }
    overlap.Add("z");
    EXPECT_EQ(overlap.Find("yy").second, "y");
    for (const std::string& filter : filters) {
        overlap.Find(filter);
    }
    EXPECT_EQ(overlap.Find("az").second, "") << "the limit is what keeps a stranger's rule set from taking for ever";
}

} // namespace
