#include "diagnosis/results_report/repair_effect.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

namespace diagnosis {
namespace {

constexpr std::int64_t DAY = 86400;

// The causes 1 and 2 of the trees 10 and 20 are mended by "fix", cause 2 also by "swap".
std::vector<RepairAim> TwoAims()
{
    return {{"fix", {1, 2}, {10, 20}}, {"swap", {2}, {20}}};
}

constexpr std::size_t FIX = 0;
constexpr std::size_t SWAP = 1;

// A device, written as its history: "+3" is a bundle of the third day with the fault, "-3" one that excludes it, "?3" one
// that can't tell, "r3" a repair.
void AddDevice(RepairEffects& effects, const std::string& history)
{
    std::vector<RepairDone> repairs;
    std::vector<DeviceVisit> visits;
    std::istringstream words(history);
    for (std::string word; words >> word;) {
        const std::int64_t moment = std::stoll(word.substr(1)) * DAY;
        if (word[0] == 'r') {
            repairs.push_back({FIX, moment});
        } else {
            visits.push_back({moment, {}, {}});
            visits.back().causes = word[0] == '+' ? std::vector<std::int64_t>{1} : std::vector<std::int64_t>{};
            visits.back().complete = word[0] == '-' ? std::vector<std::int64_t>{10, 20} : std::vector<std::int64_t>{20};
        }
    }
    effects.BeginDevice(repairs);
    for (const DeviceVisit& visit : visits) {
        effects.Add(visit);
    }
}

std::string Numbers(const RepairEffect& effect)
{
    std::ostringstream text;
    text << "repaired " << effect.repaired.again << " again " << effect.repaired.gone << " gone, "
         << effect.faultNotSeenBefore << " not before " << effect.notSeenAfter << " not after " << effect.notToldAfter
         << " not told; others " << effect.others.again << " again " << effect.others.gone << " gone "
         << effect.othersNotFollowed << " not followed";
    return text.str();
}

std::string EffectOn(const std::string& history)
{
    RepairEffects effects(TwoAims(), 30 * DAY);
    AddDevice(effects, history);
    return Numbers(effects.Finish()[FIX]);
}

struct HistoryCase {
    const char* name;
    const char* history;
    const char* expected;
};
void PrintTo(const HistoryCase& historyCase, std::ostream* out) { *out << historyCase.name; }
class RepairEffectOfOneDevice : public testing::TestWithParam<HistoryCase> {};

TEST_P(RepairEffectOfOneDevice, IsInOneNumber)
{
    EXPECT_EQ(EffectOn(GetParam().history), GetParam().expected);
}

constexpr char AGAIN[] =
    "repaired 1 again 0 gone, 0 not before 0 not after 0 not told; others 0 again 0 gone 0 not followed";
constexpr char GONE[] =
    "repaired 0 again 1 gone, 0 not before 0 not after 0 not told; others 0 again 0 gone 0 not followed";
constexpr char NOT_BEFORE[] =
    "repaired 0 again 0 gone, 1 not before 0 not after 0 not told; others 0 again 0 gone 0 not followed";
constexpr char NOT_AFTER[] =
    "repaired 0 again 0 gone, 0 not before 1 not after 0 not told; others 0 again 0 gone 0 not followed";
constexpr char NOT_TOLD[] =
    "repaired 0 again 0 gone, 0 not before 0 not after 1 not told; others 0 again 0 gone 0 not followed";
constexpr char OTHER_AGAIN[] =
    "repaired 0 again 0 gone, 0 not before 0 not after 0 not told; others 1 again 0 gone 0 not followed";
constexpr char OTHER_GONE[] =
    "repaired 0 again 0 gone, 0 not before 0 not after 0 not told; others 0 again 1 gone 0 not followed";
constexpr char OTHER_NOT[] =
    "repaired 0 again 0 gone, 0 not before 0 not after 0 not told; others 0 again 0 gone 1 not followed";
constexpr char NOBODY[] =
    "repaired 0 again 0 gone, 0 not before 0 not after 0 not told; others 0 again 0 gone 0 not followed";

INSTANTIATE_TEST_SUITE_P(Table, RepairEffectOfOneDevice, testing::Values(
    HistoryCase{"ShowsTheFaultAgain", "+1 r2 +5", AGAIN},
    HistoryCase{"IsMended", "+1 r2 -5", GONE},
    HistoryCase{"ShowsItAgainAfterAnAnswerWithoutIt", "+1 r2 -5 +32", AGAIN},
    HistoryCase{"ShowsItAgainOnTheLastDay", "+1 r2 +32", AGAIN},
    HistoryCase{"ShowsItTooLate", "+1 r2 +33", NOT_AFTER},
    HistoryCase{"IsMendedAndShowsItTooLate", "+1 r2 -5 +33", GONE},
    HistoryCase{"IsNotSeenAfter", "+1 r2", NOT_AFTER},
    HistoryCase{"IsNotSeenBefore", "r2 -5", NOT_BEFORE},
    HistoryCase{"IsSoundBefore", "+1 -2 r3 -5", NOT_BEFORE},
    HistoryCase{"CannotBeToldBeforeSinceItHadTheFault", "+1 ?2 r3 -5", GONE},
    HistoryCase{"CannotBeToldAfter", "+1 r2 ?5", NOT_TOLD},
    HistoryCase{"CannotBeToldAtFirst", "+1 r2 ?5 -6", GONE},
    HistoryCase{"IsSeenInTheSecondOfTheRepair", "+2 r2 -3", GONE},
    HistoryCase{"IsSeenOnlyInTheSecondOfTheRepair", "-2 r2 +3", NOT_BEFORE},
    HistoryCase{"CountsFromTheFirstRepairWithAnAnswer", "+1 r2 +3 r4 -5", AGAIN},
    HistoryCase{"CountsFromTheSecondRepairIfTheFirstIsNotFollowed", "+1 r2 +50 r51 -52", GONE},
    HistoryCase{"IsFollowedFromTheLastRepairWithoutAnAnswerBetween", "+1 r2 r20 +45", AGAIN},
    HistoryCase{"KeepsTheFirstReasonWhyItIsNotFollowed", "r1 +2 r3 ?4", NOT_BEFORE},
    HistoryCase{"IsRepairedAgainAfterAnAnswer", "+1 r2 -3 r4 +5", AGAIN},
    HistoryCase{"HasItsRepairsInAnyOrder", "+1 r20 r2 -3", GONE},
    HistoryCase{"WithoutRepairShowsItAgain", "+1 +5", OTHER_AGAIN},
    HistoryCase{"WithoutRepairIsSoundLater", "+1 -5", OTHER_GONE},
    HistoryCase{"WithoutRepairCountsFromTheFirstBundleThatIsFollowed", "+1 +40 -41", OTHER_GONE},
    HistoryCase{"WithoutRepairAndTwoBundlesOfOneSecond", "+1 -1", OTHER_NOT},
    HistoryCase{"WithoutRepairIsNotSeenAgain", "+1", OTHER_NOT},
    HistoryCase{"WithoutRepairCannotBeTold", "+1 ?2", OTHER_NOT},
    HistoryCase{"WithoutRepairAndFault", "-1 -2", NOBODY}),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST(RepairEffectsTest, AFaultCountsForEachRepairThatIsMeantToMendIt)
{
    RepairEffects effects(TwoAims(), 30 * DAY);
    effects.BeginDevice({{SWAP, 2 * DAY}});
    effects.Add({1 * DAY, {2}, {10}});
    effects.Add({3 * DAY, {}, {10, 20}});
    EXPECT_EQ(Numbers(effects.Finish()[FIX]), OTHER_GONE);
    EXPECT_EQ(Numbers(effects.Finish()[SWAP]), GONE);
}

TEST(RepairEffectsTest, ARepairIsToldByTheTreesOfItsOwnCausesAlone)
{
    RepairEffects effects(TwoAims(), 30 * DAY);
    effects.BeginDevice({{SWAP, 2 * DAY}});
    effects.Add({1 * DAY, {2}, {}});
    effects.Add({3 * DAY, {}, {20}});
    EXPECT_EQ(effects.Finish()[SWAP].repaired.gone, 1U);
}

TEST(RepairEffectsTest, ACauseThatNoRepairMendsIsLeftAlone)
{
    RepairEffects effects(TwoAims(), 30 * DAY);
    effects.BeginDevice({});
    effects.Add({1 * DAY, {77}, {10, 20}});
    EXPECT_EQ(Numbers(effects.Finish()[FIX]), NOBODY);
}

TEST(RepairEffectsTest, DevicesAddUpAndDoNotMix)
{
    RepairEffects effects(TwoAims(), 30 * DAY);
    for (const char* history : {"+1 r2 +5", "+1 r2 -5", "+1 r2", "r2", "+1 r2 ?3", "+1", "+1 -2", "+1 +2", "-1"}) {
        AddDevice(effects, history);
    }
    const RepairEffect& effect = effects.Finish()[FIX];
    EXPECT_EQ(Numbers(effect),
        "repaired 1 again 1 gone, 1 not before 1 not after 1 not told; others 1 again 1 gone 1 not followed");
    EXPECT_EQ(effect.Devices(), 5U);
    EXPECT_EQ(effect.repaired.All(), 2U);
}

// The rule again, told from the whole history at hand.
std::string PlainOutcome(const std::vector<std::pair<std::int64_t, char>>& history, std::int64_t within)
{
    const bool isRepaired = std::any_of(history.begin(), history.end(), [](const auto& item) { return item.second == 'r'; });
    std::string first;
    for (std::size_t i = 0; i < history.size(); ++i) {
        const auto [moment, kind] = history[i];
        if (kind != (isRepaired ? 'r' : '+')) {
            continue;
        }
        char before = ' ';
        for (const auto& [when, what] : history) {
            before = when <= moment && (what == '+' || what == '-') ? what : before;
        }
        std::string reason = isRepaired && before != '+' ? "not before" : "not after";
        std::string answer;
        for (const auto& [when, what] : history) {
            if (reason == "not before" || when <= moment || when > moment + within || what == 'r') {
                continue;
            }
            answer = what == '+' ? "again" : what == '-' && answer.empty() ? "gone" : answer;
            reason = "not told";
        }
        if (!answer.empty()) {
            return answer;
        }
        first = first.empty() ? reason : first;
    }
    return first;
}

std::string OutcomeIn(const RepairEffect& effect)
{
    const bool isOther = effect.Devices() == 0;
    const FollowedDevices& followed = isOther ? effect.others : effect.repaired;
    return followed.again + followed.gone == 1 ? (followed.again == 1 ? "again" : "gone")
        : effect.faultNotSeenBefore == 1     ? "not before"
        : effect.notSeenAfter == 1           ? "not after"
        : effect.notToldAfter == 1           ? "not told"
        : effect.othersNotFollowed == 1      ? "not followed"
                                             : "";
}

// Repairs are at least as far apart as devices are followed, so that none counts as one with another.
TEST(RepairEffectsTest, EqualThePlainWayOnRandomHistories)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int round = 0; round < 5000; ++round) {
        std::vector<std::pair<std::int64_t, char>> history;
        std::string words;
        bool mayRepair = random() % 3 != 0;
        std::int64_t lastRepair = -1000;
        for (std::int64_t day = 1; day < 120; day += 1 + static_cast<std::int64_t>(random() % 25)) {
            const bool isRepair = mayRepair && day - lastRepair > 30 && random() % 3 == 0;
            const char kind = isRepair ? 'r' : "+-?"[random() % 3];
            lastRepair = isRepair ? day : lastRepair;
            history.emplace_back(day, kind);
            words += std::string(1, kind) + std::to_string(day) + " ";
        }
        RepairEffects effects(TwoAims(), 30 * DAY);
        AddDevice(effects, words);
        const std::string expected = PlainOutcome(history, 30);
        const bool isRepaired = lastRepair > 0;
        const bool isOpen = expected == "not after" || expected == "not told";
        EXPECT_EQ(OutcomeIn(effects.Finish()[FIX]), isOpen && !isRepaired ? "not followed" : expected) << words;
    }
}

} // namespace
} // namespace diagnosis
