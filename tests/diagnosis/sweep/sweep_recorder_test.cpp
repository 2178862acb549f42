#include "diagnosis/sweep/sweep_recorder.h"

#include <gmock/gmock.h>

namespace diagnosis {
namespace {

using Evidence::TreeVerdict;
using testing::ElementsAre;

using enum SweptState;

Evidence::TreeResult Result(TreeVerdict::Word word, const std::vector<std::string>& possible = {}, bool areTruncated = false)
{
    Evidence::TreeResult result{"T", word == TreeVerdict::Word::FAULT, {}};
    result.verdict.word = word;
    result.verdict.arePossibleCausesTruncated = areTruncated;
    for (const std::string& id : possible) {
        result.verdict.possibleCauses.push_back({id, {"T/" + id}});
    }
    return result;
}

std::vector<Evidence::RootCause> Causes(const std::vector<std::string>& ids)
{
    std::vector<Evidence::RootCause> causes;
    for (const std::string& id : ids) {
        causes.push_back({id, {"T/" + id}, {}});
    }
    return causes;
}

std::vector<SweptState> StatesOf(const Timeline& timeline)
{
    std::vector<SweptState> states;
    for (const SweptInterval& interval : timeline.GetIntervals()) {
        states.push_back(interval.state);
    }
    return states;
}

// An event with one alternative of these rules.
Evidence::Event Asked(const std::vector<Evidence::Rule>& rules)
{
    Evidence::Event event;
    event.id = "E";
    event.alternatives.push_back({rules.size() > 1, rules});
    return event;
}

Evidence::Rule Rule(const std::string& name, Evidence::Verdict verdict, Evidence::Check check = Evidence::Check::DECIDED)
{
    Evidence::Rule rule;
    rule.name = name;
    rule.verdict = verdict;
    rule.check = check;
    rule.SetFamily(Evidence::Family::ALARM);
    return rule;
}

TEST(SweepRecorderTest, ACauseHasAHistoryFromBeforeItWasFirstFound)
{
    SweepRecorder recorder;
    recorder.OnTreeJudged(0, 0, Result(TreeVerdict::Word::NO_FAULT), {});
    recorder.OnTreeJudged(10, 0, Result(TreeVerdict::Word::UNDECIDED, {"A"}), {});
    recorder.OnTreeJudged(20, 0, Result(TreeVerdict::Word::FAULT), Causes({"A"}));
    recorder.OnTreeJudged(30, 0, Result(TreeVerdict::Word::UNDECIDED, {"B"}, true), {});
    recorder.Close(40);
    const std::vector<SweptTree> trees = recorder.TakeTrees();
    ASSERT_EQ(trees.size(), 1U);
    EXPECT_THAT(StatesOf(trees[0].timeline), ElementsAre(FALSE, NOT_JUDGED, TRUE, NOT_JUDGED));
    ASSERT_EQ(trees[0].causes.size(), 1U); // B was never found
    EXPECT_THAT(trees[0].causes[0].timeline.GetIntervals(), ElementsAre(SweptInterval{0, 9, FALSE, ""},
        SweptInterval{10, 19, NOT_JUDGED, ""}, SweptInterval{20, 29, TRUE, ""}, SweptInterval{30, 40, NOT_JUDGED, ""}));
}

TEST(SweepRecorderTest, ARuleIsTrueFalseOrNotJudgedWithTheReason)
{
    SweepRecorder recorder;
    Evidence::Rule open = Rule("r", Evidence::Verdict::NOT_FIRED, Evidence::Check::DATA_MISSING);
    open.reason = Evidence::Reason::WINDOW_SHORT;
    open.Note(Evidence::Reason::ROWS_UNSEEN);
    recorder.OnEventDecided(0, Asked({open}));
    recorder.OnEventDecided(10, Asked({Rule("r", Evidence::Verdict::NOT_FIRED)}));
    recorder.OnEventDecided(20, Asked({Rule("r", Evidence::Verdict::FIRED)}));
    Evidence::Rule skipped = Rule("r", Evidence::Verdict::SKIPPED, Evidence::Check::NONE);
    skipped.reason = Evidence::Reason::GROUP_ENDED;
    recorder.OnEventDecided(30, Asked({skipped}));
    recorder.Close(40);
    const std::vector<SweptRule> rules = recorder.TakeRules();
    ASSERT_EQ(rules.size(), 1U);
    EXPECT_EQ(rules[0].source, SweptSource::LOG);
    EXPECT_THAT(rules[0].timeline.GetIntervals(), ElementsAre(SweptInterval{0, 9, NOT_JUDGED, "rows_unseen"},
        SweptInterval{10, 19, FALSE, ""}, SweptInterval{20, 29, TRUE, ""}, SweptInterval{30, 40, NOT_JUDGED, "group_ended"}));
}

Evidence::Start StartAt(Evidence::Floor floor, std::int64_t repair = 5)
{
    Evidence::Start start;
    start.floor = floor;
    start.repair.seconds = repair;
    return start;
}

TEST(SweepRecorderTest, ARuleWhoseWindowBeganAtARepairRestsOnItsDateFromThenOn)
{
    Evidence::Rule alarm = Rule("r", Evidence::Verdict::NOT_FIRED);
    auto& windows = std::get<Evidence::Alarm>(alarm.part).windows;
    windows.resize(2);
    SweepRecorder recorder;
    for (const auto floor : {Evidence::Floor::PERIOD, Evidence::Floor::REPAIR, Evidence::Floor::RESET}) {
        windows[1].start = StartAt(floor);
        recorder.OnEventDecided(static_cast<std::int64_t>(floor), Asked({alarm}));
    }
    Evidence::Rule command = Rule("c", Evidence::Verdict::NOT_FIRED);
    command.SetFamily(Evidence::Family::COMMAND);
    std::get<Evidence::Command>(command.part).start = StartAt(Evidence::Floor::REPAIR);
    Evidence::Rule updated = Rule("u", Evidence::Verdict::NOT_FIRED);
    std::get<Evidence::Alarm>(updated.part).windows.emplace_back().start = StartAt(Evidence::Floor::UPDATE);
    Evidence::Rule early = Rule("e", Evidence::Verdict::NOT_FIRED);
    std::get<Evidence::Alarm>(early.part).windows.emplace_back().start = StartAt(Evidence::Floor::REPAIR, 0);
    recorder.OnEventDecided(10, Asked({command, updated, early}));
    std::vector<std::string> texts;
    for (const SweptRule& rule : recorder.TakeRules()) {
        texts.push_back(rule.GetGrounds().Text());
    }
    EXPECT_THAT(texts, ElementsAre("log, repair date", "tables, repair date", "log", "log"));
}

TEST(SweepRecorderTest, TreesAndCausesRestOnWhatTheRulesOfTheirEventsDo)
{
    const auto decide = [](SweepRecorder& recorder, const std::string& id, Evidence::Family family) {
        Evidence::Rule rule = Rule("r", Evidence::Verdict::FIRED);
        rule.SetFamily(family);
        Evidence::Event event = Asked({rule});
        event.id = id;
        recorder.OnEventDecided(0, event);
    };
    SweepRecorder recorder;
    decide(recorder, "A", Evidence::Family::ALARM);
    decide(recorder, "G", Evidence::Family::NODE);
    decide(recorder, "B", Evidence::Family::COMMAND);
    recorder.OnTreeJudged(0, 0, Result(TreeVerdict::Word::FAULT), {{"A", {"T/G/A"}, {"A", "G", "T"}}, {"X", {"T/X"}, {"X", "T"}}});
    recorder.OnTreeJudged(0, 1, Result(TreeVerdict::Word::NO_FAULT), {});
    recorder.Close(9);
    recorder.TellGrounds({{"T", "G", "A", "B"}, {"T", "B"}});
    const std::vector<SweptTree> trees = recorder.TakeTrees();
    EXPECT_EQ(trees[0].grounds.Text(), "log, tables, captured");
    EXPECT_EQ(trees[0].causes[0].grounds.Text(), "log, captured");
    EXPECT_EQ(trees[0].causes[1].grounds.Text(), "-");
    EXPECT_EQ(trees[1].grounds.Text(), "tables");
}

TEST(SweepRecorderTest, TreesOfOneIdAreToldApart)
{
    SweepRecorder recorder;
    recorder.OnTreeJudged(0, 0, Result(TreeVerdict::Word::NO_FAULT), {});
    Evidence::TreeResult other = Result(TreeVerdict::Word::NO_FAULT);
    other.id = "U";
    recorder.OnTreeJudged(0, 1, other, {});
    recorder.OnTreeJudged(0, 2, Result(TreeVerdict::Word::FAULT), {});
    const std::vector<SweptTree> trees = recorder.TakeTrees();
    EXPECT_EQ(trees[2].number, 3U);
    EXPECT_THAT(NamesOf(trees), ElementsAre("T (1 of 2)", "U", "T (2 of 2)"));
}

TEST(SweepRecorderTest, TheWordOfARuleIsThatOfItsExplanation)
{
    using Evidence::Check;
    using Evidence::Reason;
    const auto wordOf = [](Check check, const std::vector<std::pair<std::size_t, Reason>>& windows, Reason note) {
        Evidence::Rule rule = Rule("r", Evidence::Verdict::NOT_FIRED, check);
        rule.reason = windows.back().second;
        for (const auto& [item, reason] : windows) {
            Evidence::Window& window = std::get<Evidence::Alarm>(rule.part).windows.emplace_back();
            window.item = item;
            window.reason = reason;
        }
        rule.Note(note);
        SweepRecorder recorder;
        recorder.OnEventDecided(0, Asked({rule}));
        recorder.Close(9);
        return recorder.TakeRules()[0].timeline.GetIntervals()[0].word;
    };
    const auto absent = Reason::WINDOW_ABSENT;
    const auto met = Reason::WINDOW_SHORT;
    EXPECT_EQ(wordOf(Check::DATA_MISSING, {{0, absent}, {0, met}}, Reason::LOG_DAMAGED), "log_damaged");
    EXPECT_EQ(wordOf(Check::RULE_UNUSABLE, {{0, absent}, {0, met}}, Reason::BAD_NUMBER), "bad_number");
    EXPECT_EQ(wordOf(Check::RULE_UNUSABLE, {{0, absent}, {1, met}}, Reason::LOG_DAMAGED), "window_absent");
}

TEST(SweepRecorderTest, ARuleThatIsNotSweptTakesThoseBehindItInItsGroupAndItsTreesAlong)
{
    SweepRecorder recorder;
    SweepPlan plan;
    plan.unswept = {{"E", "b", "reads_clock"}};
    plan.unsweptTrees = {1};
    recorder.OnPlan(plan);
    recorder.OnEventDecided(0, Asked({Rule("a", Evidence::Verdict::FIRED), Rule("b", Evidence::Verdict::FIRED),
        Rule("c", Evidence::Verdict::FIRED)}));
    recorder.OnTreeJudged(0, 0, Result(TreeVerdict::Word::FAULT), Causes({"A"}));
    recorder.OnTreeJudged(0, 1, Result(TreeVerdict::Word::FAULT), Causes({"A"}));
    recorder.Close(9);
    const std::vector<SweptRule> rules = recorder.TakeRules();
    ASSERT_EQ(rules.size(), 3U);
    EXPECT_THAT(rules[0].timeline.GetIntervals(), ElementsAre(SweptInterval{0, 9, TRUE, ""}));
    EXPECT_THAT(rules[1].timeline.GetIntervals(), ElementsAre(SweptInterval{0, 9, NOT_JUDGED, "reads_clock"}));
    EXPECT_THAT(rules[2].timeline.GetIntervals(), ElementsAre(SweptInterval{0, 9, NOT_JUDGED, "not_swept"}));
    const std::vector<SweptTree> trees = recorder.TakeTrees();
    EXPECT_THAT(StatesOf(trees[0].timeline), ElementsAre(TRUE));
    EXPECT_THAT(trees[1].timeline.GetIntervals(), ElementsAre(SweptInterval{0, 9, NOT_JUDGED, "not_swept"}));
    EXPECT_TRUE(trees[1].causes.empty());
}

TEST(SweepRecorderTest, OfAStoppedSweepTheAnswersBeforeItsMomentAreKept)
{
    SweepRecorder recorder;
    EXPECT_EQ(recorder.GetStopped(), std::nullopt);
    recorder.OnTreeJudged(0, 0, Result(TreeVerdict::Word::FAULT), Causes({"A"}));
    recorder.OnTreeJudged(10, 0, Result(TreeVerdict::Word::FAULT), Causes({"B"}));
    recorder.OnStopped(10);
    ASSERT_EQ(recorder.GetStopped(), 10);
    recorder.Close(9);
    const std::vector<SweptTree> trees = recorder.TakeTrees();
    EXPECT_THAT(trees[0].timeline.GetIntervals(), ElementsAre(SweptInterval{0, 9, TRUE, "fault"}));
    ASSERT_EQ(trees[0].causes.size(), 1U);
    EXPECT_EQ(trees[0].causes[0].id, "A");
    EXPECT_THAT(trees[0].causes[0].timeline.GetIntervals(), ElementsAre(SweptInterval{0, 9, TRUE, ""}));
}

} // namespace
} // namespace diagnosis
