#include "arborist/evaluation/rule_check.h"

#include <gtest/gtest.h>

#include "tests/support/case_name.h"

namespace {

using Evidence::Check;
using Evidence::Reason;
using Evidence::Verdict;

Evidence::Rule RuleOf(Reason reason, const std::vector<Reason>& notes = {})
{
    Evidence::Rule rule;
    rule.reason = reason;
    rule.notes = notes;
    return rule;
}

TEST(RuleCheckTest, TheWorstOfReasonAndNotesCounts)
{
    EXPECT_EQ(CheckOfRule(RuleOf(Reason::CONDITION_MET)), Check::DECIDED);
    EXPECT_EQ(CheckOfRule(RuleOf(Reason::CONDITION_MET, {Reason::NODE_UNREADABLE})), Check::DATA_MISSING);
    EXPECT_EQ(CheckOfRule(RuleOf(Reason::NODE_UNREADABLE, {Reason::BAD_NUMBER})), Check::RULE_UNUSABLE);
}

TEST(RuleCheckTest, TheReasonToldIsTheOneThatGaveTheWord)
{
    Evidence::Rule rule = RuleOf(Reason::CONDITION_MET, {Reason::NODE_UNREADABLE, Reason::BAD_NUMBER});
    rule.check = CheckOfRule(rule);
    EXPECT_EQ(ReasonOfCheck(rule), Reason::BAD_NUMBER);
}

Check CheckOfFiltered(Reason reason, const std::string& deviceValue, const std::string& ruleText)
{
    Evidence::Rule rule = RuleOf(reason);
    rule.filter = {deviceValue, ruleText};
    return CheckOfRule(rule);
}

TEST(RuleCheckTest, AFilterIsAnAnswerWhereTheDeviceIsKnown)
{
    for (const Reason reason : {Reason::FILTERED_BLACK_PRODUCT, Reason::FILTERED_PRODUCT, Reason::FILTERED_PLATFORM,
                                Reason::FILTERED_DEVICE_TYPE}) {
        EXPECT_EQ(CheckOfFiltered(reason, "A", "B"), Check::NOT_APPLICABLE) << Evidence::ReasonText(reason);
        EXPECT_EQ(CheckOfFiltered(reason, "", "B"), Check::DATA_MISSING) << Evidence::ReasonText(reason);
    }
    EXPECT_EQ(CheckOfFiltered(Reason::FILTERED_SCENE, "1", "2"), Check::NOT_SELECTED);
    EXPECT_EQ(CheckOfFiltered(Reason::FILTERED_SCENE, "1", ""), Check::RULE_UNUSABLE);
}

Evidence::Window WindowOf(std::size_t item, Reason reason, const std::vector<Reason>& notes = {})
{
    Evidence::Window window;
    window.item = item;
    window.reason = reason;
    window.hit = reason == Reason::WINDOW_REACHED;
    window.notes = notes;
    return window;
}

Check CheckOfWindows(const std::vector<Evidence::Window>& windows)
{
    Evidence::Rule rule = RuleOf(windows.back().reason);
    rule.part = Evidence::Alarm{windows};
    rule.verdict = windows.back().hit ? Verdict::FIRED : Verdict::NOT_FIRED;
    return CheckOfRule(rule);
}

TEST(RuleCheckTest, WindowsThatWereCountedAreAnswers)
{
    EXPECT_EQ(CheckOfWindows({WindowOf(0, Reason::WINDOW_SHORT)}), Check::DECIDED);
    EXPECT_EQ(CheckOfWindows({WindowOf(0, Reason::WINDOW_REACHED)}), Check::DECIDED);
    EXPECT_EQ(CheckOfWindows({WindowOf(0, Reason::LOG_UNAVAILABLE)}), Check::DATA_MISSING);
}

TEST(RuleCheckTest, AWindowThatIsAbsentCountsWhereTheItemHasNoOther)
{
    EXPECT_EQ(CheckOfWindows({WindowOf(0, Reason::WINDOW_SHORT), WindowOf(0, Reason::WINDOW_ABSENT)}), Check::DECIDED);
    EXPECT_EQ(CheckOfWindows({WindowOf(0, Reason::WINDOW_SHORT), WindowOf(1, Reason::WINDOW_ABSENT)}),
              Check::RULE_UNUSABLE);
}

TEST(RuleCheckTest, AnEmptyWindowCountsBesideOthers)
{
    EXPECT_EQ(CheckOfWindows({WindowOf(0, Reason::WINDOW_EMPTY), WindowOf(0, Reason::WINDOW_SHORT)}),
              Check::RULE_UNUSABLE);
}

TEST(RuleCheckTest, ADoubtAboutAWindowCountsUnlessAnotherReachedItsThreshold)
{
    const auto doubtful = WindowOf(0, Reason::WINDOW_SHORT, {Reason::NEGATIVE_WEIGHT});
    EXPECT_EQ(CheckOfWindows({doubtful, WindowOf(0, Reason::WINDOW_SHORT)}), Check::DATA_MISSING);
    EXPECT_EQ(CheckOfWindows({doubtful, WindowOf(0, Reason::WINDOW_REACHED)}), Check::DECIDED);
    EXPECT_EQ(CheckOfWindows({WindowOf(0, Reason::WINDOW_REACHED, {Reason::REPAIR_UNREADABLE})}), Check::DATA_MISSING);
}

Check CheckOfDamaged(Reason reason, Evidence::Measure measure)
{
    Evidence::Rule rule = RuleOf(reason, {Reason::LOG_DAMAGED});
    Evidence::Window window = WindowOf(0, reason);
    window.count.measure = measure;
    rule.part = Evidence::Alarm{{window}};
    rule.verdict = window.hit ? Verdict::FIRED : Verdict::NOT_FIRED;
    return CheckOfRule(rule);
}

TEST(RuleCheckTest, MissingRowsLeaveAShortWindowOpenAndAReachedOneOfWeights)
{
    using Evidence::Measure;
    EXPECT_EQ(CheckOfDamaged(Reason::WINDOW_SHORT, Measure::ROWS), Check::DATA_MISSING);
    EXPECT_EQ(CheckOfDamaged(Reason::WINDOW_REACHED, Measure::ROWS), Check::DECIDED);
    EXPECT_EQ(CheckOfDamaged(Reason::WINDOW_REACHED, Measure::DAILY_ROWS), Check::DECIDED);
    EXPECT_EQ(CheckOfDamaged(Reason::WINDOW_REACHED, Measure::WEIGHTS), Check::DATA_MISSING);
    EXPECT_EQ(CheckOfDamaged(Reason::WINDOW_REACHED, Measure::DAILY_WEIGHTS), Check::DATA_MISSING);
}

TEST(RuleCheckTest, EachStatementCounts)
{
    Evidence::Rule rule = RuleOf(Reason::HITS_REACHED);
    Evidence::Command command;
    command.statements.resize(2);
    command.statements[0].reason = Reason::STATEMENT_FAILED;
    command.statements[0].error = "no such table: a";
    command.statements[1].reason = Reason::CONDITION_MET;
    rule.part = command;
    rule.check = CheckOfRule(rule);
    EXPECT_EQ(rule.check, Check::DATA_MISSING);
    EXPECT_EQ(DetailOfCheck(rule), "no such table: a");
}

TEST(RuleCheckTest, TheDetailOfALogProblemIsItsFileAndMessage)
{
    for (const Reason reason : {Reason::LOG_DAMAGED, Reason::NO_VALUE}) {
        Evidence::Rule rule = RuleOf(Reason::WINDOW_SHORT, {reason});
        rule.part = Evidence::Alarm{{WindowOf(0, Reason::WINDOW_SHORT)}};
        rule.logProblem = "log.db: malformed";
        rule.check = CheckOfRule(rule);
        EXPECT_EQ(DetailOfCheck(rule), "log.db: malformed") << Evidence::ReasonText(reason);
    }
}

TEST(RuleCheckTest, TheDetailOfARepairThatCanNotBeReadIsTheRepair)
{
    Evidence::Rule alarm;
    Evidence::Window window = WindowOf(0, Reason::WINDOW_REACHED, {Reason::REPAIR_UNREADABLE});
    window.start.emplace().unreadableRepair = "it's";
    Evidence::Window readable = WindowOf(0, Reason::WINDOW_SHORT);
    readable.start.emplace();
    alarm.part = Evidence::Alarm{{readable, window}};
    alarm.verdict = Verdict::FIRED;
    alarm.check = CheckOfRule(alarm);
    EXPECT_EQ(DetailOfCheck(alarm), "it's");
    Evidence::Rule command = RuleOf(Reason::CONDITION_MET, {Reason::REPAIR_UNREADABLE});
    Evidence::Command part;
    part.start.emplace().unreadableRepair = "R";
    command.part = part;
    command.check = CheckOfRule(command);
    EXPECT_EQ(DetailOfCheck(command), "R");
}

TEST(RuleCheckTest, TheNameThatLeadsNowhereIsTheDetail)
{
    Evidence::Rule rule = RuleOf(Reason::NO_SUCH_DATABASE);
    rule.part = Evidence::Command{};
    rule.badName = "Copies";
    rule.check = CheckOfRule(rule);
    EXPECT_EQ(DetailOfCheck(rule), "Copies");
}

TEST(RuleCheckTest, TheDetailOfANodeThatCanNotBeReadIsItsPath)
{
    Evidence::Rule rule = RuleOf(Reason::NODE_UNREADABLE);
    Evidence::Node node;
    node.files = {{"a", "/sys/a", true, "1"}, {"b", "/sys/b", false, ""}};
    rule.part = node;
    rule.check = CheckOfRule(rule);
    EXPECT_EQ(DetailOfCheck(rule), "/sys/b");
    node.files.pop_back();
    rule.part = node;
    EXPECT_EQ(DetailOfCheck(rule), "") << "no file is unreadable";
}

TEST(RuleCheckTest, TheDetailOfAStatementIsItsDatabaseUnlessItFailed)
{
    Evidence::Rule rule = RuleOf(Reason::ROW_COUNT);
    Evidence::Command command;
    command.statements.resize(2);
    command.statements[0].reason = Reason::CONDITION_MET;
    command.statements[0].database = "one.db";
    command.statements[1].reason = Reason::ROW_COUNT;
    command.statements[1].database = "two.db";
    rule.part = command;
    rule.check = CheckOfRule(rule);
    EXPECT_EQ(DetailOfCheck(rule), "two.db");
    command.statements.clear();
    rule.part = command;
    EXPECT_EQ(DetailOfCheck(rule), "") << "no statement has the reason";
}

TEST(RuleCheckTest, AStatementThatFailedWithoutAMessageIsToldByItsDatabase)
{
    Evidence::Rule rule = RuleOf(Reason::STATEMENT_FAILED);
    Evidence::Command command;
    command.statements.resize(1);
    command.statements[0].reason = Reason::STATEMENT_FAILED;
    command.statements[0].database = "one.db";
    rule.part = command;
    rule.check = CheckOfRule(rule);
    EXPECT_EQ(DetailOfCheck(rule), "one.db");
}

TEST(RuleCheckTest, WithoutTheStartOrWindowThatTellsItADetailIsEmpty)
{
    Evidence::Rule command = RuleOf(Reason::CONDITION_MET, {Reason::REPAIR_UNREADABLE});
    command.part = Evidence::Command{};
    command.check = CheckOfRule(command);
    EXPECT_EQ(DetailOfCheck(command), "");
    Evidence::Rule alarm;
    Evidence::Window window = WindowOf(0, Reason::WINDOW_REACHED, {Reason::REPAIR_UNREADABLE});
    window.start.emplace();
    alarm.part = Evidence::Alarm{{window}};
    alarm.verdict = Verdict::FIRED;
    alarm.check = CheckOfRule(alarm);
    EXPECT_EQ(DetailOfCheck(alarm), "");
}

TEST(RuleCheckTest, AnAlarmRuleWithoutWindowsHasAReasonOfItsOwn)
{
    Evidence::Rule rule = RuleOf(Reason::NO_ITEMS);
    rule.part = Evidence::Alarm{};
    rule.check = CheckOfRule(rule);
    EXPECT_EQ(rule.check, Evidence::CheckOf(Reason::NO_ITEMS));
    EXPECT_EQ(ReasonOfCheck(rule), Reason::NO_ITEMS);
}

struct GroupCase {
    const char* name;
    /// Check and whether it fired, of each rule that was asked.
    std::vector<std::pair<Check, bool>> rules;
    Check expected;
};
void PrintTo(const GroupCase& groupCase, std::ostream* out) { *out << groupCase.name; }
class Groups : public testing::TestWithParam<GroupCase> {};

TEST_P(Groups, RestOnTheRuleThatEndedThem)
{
    Evidence::Alternative group;
    group.inGroup = true;
    for (const auto& [check, fired] : GetParam().rules) {
        Evidence::Rule& rule = group.rules.emplace_back();
        rule.check = check;
        rule.verdict = fired ? Verdict::FIRED : Verdict::NOT_FIRED;
    }
    if (!GetParam().rules.back().second) {
        group.rules.emplace_back().reason = Reason::GROUP_ENDED;
    }
    EXPECT_EQ(CheckOfAlternative(group), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, Groups, testing::Values(
    GroupCase{"AllFired", {{Check::DECIDED, true}, {Check::DECIDED, true}}, Check::DECIDED},
    GroupCase{"AllFiredOneByDefault", {{Check::RULE_UNUSABLE, true}, {Check::DECIDED, true}}, Check::RULE_UNUSABLE},
    GroupCase{"EndedByAnAnswer", {{Check::DECIDED, false}}, Check::DECIDED},
    GroupCase{"EndedByAnAnswerBehindADefault", {{Check::RULE_UNUSABLE, true}, {Check::DECIDED, false}}, Check::DECIDED},
    GroupCase{"EndedByAnOpenRule", {{Check::DECIDED, true}, {Check::DATA_MISSING, false}}, Check::DATA_MISSING},
    GroupCase{"EndedByAFilter", {{Check::NOT_APPLICABLE, false}}, Check::NOT_APPLICABLE},
    GroupCase{"EndedByAFilterBehindAnAnswer", {{Check::DECIDED, true}, {Check::NOT_SELECTED, false}}, Check::DECIDED},
    GroupCase{"EndedByAFilterBehindADefault", {{Check::RULE_UNUSABLE, true}, {Check::NOT_APPLICABLE, false}},
              Check::NOT_APPLICABLE}), CaseName());

} // namespace
