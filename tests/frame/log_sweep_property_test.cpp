// A sweep answers for every second from what it asked at a few. Here random rule sets over random logs are answered a
// second way, by a detection as of single moments.

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "arborist/arborist.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_cases.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

// The clocks of the tests' zone were set back within the log, on 2023-10-29.
constexpr std::int64_t NOW = 1700000000;
constexpr std::int64_t DAY = 86400;
constexpr std::int64_t FROM = NOW - 75 * DAY;
constexpr std::int64_t UNTIL = NOW + 40 * DAY;

using Causes = std::vector<Evidence::RootCause>;

struct TreeAnswer {
    Evidence::TreeVerdict verdict;
    Causes causes;

    bool operator==(const TreeAnswer&) const = default;
};

void PrintTo(const TreeAnswer& answer, std::ostream* out)
{
    *out << Evidence::TreeVerdictText(answer.verdict.word) << (answer.verdict.isComplete ? "" : " incomplete") << ", "
         << answer.verdict.possibleCauses.size() << " possible, open " << answer.verdict.checks.Open() << ":";
    for (const Evidence::RootCause& cause : answer.causes) {
        *out << " " << cause.id;
    }
}

std::string TextOf(const Evidence::Event& event)
{
    std::string text = event.id + (event.fired ? "!" : "") + ":";
    for (const Evidence::Alternative& alternative : event.alternatives) {
        text += alternative.inGroup ? " (" : " ";
        for (const Evidence::Rule& rule : alternative.rules) {
            text += rule.name + "=" + std::to_string(static_cast<int>(rule.verdict)) + CheckText(rule.check) + " ";
        }
    }
    return text;
}

// What was told, as of one moment or from a moment on.
struct Answers {
    std::map<std::string, TreeAnswer> trees;
    std::map<std::string, std::string> events;
};

/// The answers of one detection.
class Detected : public DetectionObserver {
public:
    void OnEventDecided(Evidence::Event event) override { answers.events.emplace(event.id, TextOf(event)); }
    void OnTreeStarted(Evidence::TreeHead) override { mCauses.clear(); }
    void OnRootCause(Evidence::RootCause cause) override { mCauses.push_back(std::move(cause)); }
    void OnTreeFinished(Evidence::TreeResult result) override
    {
        result.verdict.open.clear();
        answers.trees[result.id] = {std::move(result.verdict), std::move(mCauses)};
    }

    Answers answers;

private:
    Causes mCauses;
};

/// The answers of a sweep, by the moment from which on they hold.
class Swept : public SweepObserver {
public:
    void OnPlan(SweepPlan told) override { plan = std::move(told); }
    void OnEventDecided(std::int64_t moment, const Evidence::Event& event) override
    {
        events[event.id][moment] = TextOf(event);
        moments.insert(moment);
    }
    void OnTreeJudged(
        std::int64_t moment, std::size_t, const Evidence::TreeResult& result, const Causes& causes) override
    {
        trees[result.id][moment] = {result.verdict, causes};
        moments.insert(moment);
    }

    SweepPlan plan;
    std::map<std::string, std::map<std::int64_t, TreeAnswer>> trees;
    std::map<std::string, std::map<std::int64_t, std::string>> events;
    std::set<std::int64_t> moments;
};

template <typename Answer>
const Answer& At(const std::map<std::int64_t, Answer>& answers, std::int64_t moment)
{
    return std::prev(answers.upper_bound(moment))->second;
}

class Runner : public CodeRuleRunner {
public:
    bool RunCodeRule(std::vector<std::string>, std::vector<std::string>, std::vector<std::string>,
        const std::string& info) override
    {
        return info == "yes";
    }
};

class LogSweepProperty : public testing::TestWithParam<unsigned int> {
protected:
    LogSweepProperty() : mRandom(8)
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        mSettings.Set(Settings::TEMPORARY_STORES, "1");
        for (unsigned int skipped = 0; skipped < GetParam() * 7919; ++skipped) {
            mRandom.Below(2);
        }
    }

    std::size_t Below(std::size_t end) { return mRandom.Below(end); }
    std::string Number(std::size_t end) { return std::to_string(Below(end)); }
    template <typename Choices>
    std::string OneOf(const Choices& choices) { return choices[Below(std::size(choices))]; }

    void WriteLog()
    {
        static const char* const extras[] = {"", "{}", R"({"a":1})", R"({"a":2,"b":"x"})", R"({"b":"y","a":"3"})", "{\"a\":",
            R"({"COUNT":3})", R"({"COUNT":-1})", R"({"COUNT":"x"})", R"({"a":"n"})"};
        static const char* const versions[] = {"1", "1", "1", "2", ""};
        EventLogBuilder builder;
        const bool isOdd = mRandom.OnceIn(4);
        for (std::size_t row = Below(120); row > 0; --row) {
            const std::int64_t time = NOW - static_cast<std::int64_t>(Below(70 * DAY));
            builder.Row({time, mRandom.OnceIn(4) ? 920000000 + static_cast<std::int64_t>(Below(3)) : 1 + static_cast<std::int64_t>(Below(6)),
                OneOf(versions), isOdd || mRandom.OnceIn(2) ? OneOf(extras) : R"({"a":)" + Number(5) + "}"});
        }
        for (std::size_t change = isOdd ? Below(4) : 0; change > 0; --change) {
            static const char* const changes[] = {"update event_info_flow set occurrence_time = null where _ID = ",
                "update event_info_flow set occurrence_time = 1699000000.5 where _ID = ",
                "update event_info_flow set occurrence_time = 1699000000000 where _ID = ",
                "update event_info set version_id = 77 where _ID = ", "delete from event_info_flow where _ID = "};
            builder.Sql(OneOf(changes) + Number(60));
        }
        builder.Sql("update event_info_flow set event_pid = _ID");
        for (std::size_t lost = isOdd ? Below(3) : 0; lost > 0; --lost) {
            builder.Sql("update event_info_flow set event_pid = 5000 where _ID = " + Number(60));
        }
        if (!mRandom.OnceIn(12)) {
            builder.WriteTo(mDir.Path("data/Comms/Lumbra/workDir/0/log.db"));
        }
    }

    Xml AlarmItem()
    {
        static const char* const kinds[] = {"duration", "daily_peak", "latest"};
        static const char* const logics[] = {"gt", "lt", "le", "ge", "eq", "ne"};
        static const char* const types[] = {"int", "string", "double"};
        const std::size_t first = mRandom.OnceIn(4) ? 920000000 + Below(3) : Below(7);
        std::vector<Xml> parts;
        for (const char* const kind : kinds) {
            if (mRandom.OnceIn(2)) {
                parts.push_back(TimeXml(kind, Number(40), std::to_string(static_cast<int>(Below(7)) - 1)));
            }
        }
        const bool isTested = mRandom.OnceIn(2);
        if (isTested) {
            const auto test = [&] { return TestXml(OneOf(logics), mRandom.OnceIn(3) ? "q" : "p", Number(4)); };
            parts.push_back(ParamsXml({ParamXml("p", "a", OneOf(types)), ParamXml("q", "b", "string")}));
            parts.push_back(ConditionXml({mRandom.OnceIn(2) ? SingleLogicXml(test()) : MultipleLogicXml({test(), test()})}));
        }
        static const char* const words[] = {"1", "2", "3", "4"};
        Xml item = AlarmIdXml(std::to_string(first), std::to_string(first + Below(4)), parts);
        item.Attr("BeginFlag", OneOf(words));
        return isTested ? item.Attr("type", "param_eventid") : item;
    }

    static Xml TableXml(const std::string& name, const std::string& first, const std::string& last)
    {
        return Xml("thresholdsOrLumbraData").Attr("name", name)
            .Child(Xml("retrieveLumbraData").Child(Xml("alarmId").Attr("Eventid_Min", first).Attr("Eventid_Max", last)
                .Child(ParamsXml({ParamXml("1", "a", "int")}))));
    }

    Xml CommandRule(const std::string& name)
    {
        static const char* const statements[] = {"select count(*) as n from TABLE_A", "select sum(a) as n from TABLE_A",
            "select count(*) as n from TABLE_B where a > 1", "select max(occurrence_time) as n from TABLE_A",
            "select count(*) as n from TABLE_A, (select max(a) as most from TABLE_B) where a = most"};
        const Xml condition = ConditionXml({SingleLogicXml(
            Xml("ge").Attr("type", "static").TextChild("id", "n").TextChild("value", Number(4)))});
        return CommandRuleXml(name).Child(Xml("referenceCommonPart").TextChild("commonPartName", "TABLE_A"))
            .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int")})))
            .Child(AnalysisMethodXml("", {Xml("sql").Text(OneOf(statements)), TimeXml("duration", Number(40), "0"), condition}));
    }

    std::vector<Xml> Events(std::size_t depth)
    {
        std::vector<Xml> events;
        for (std::size_t event = 1 + Below(3); event > 0; --event) {
            if (depth < 2 && mRandom.OnceIn(3)) {
                const auto below = Events(depth + 1);
                const std::string id = "G" + Number(90);
                mGates.insert(id);
                events.push_back(Intermediate(id, mRandom.OnceIn(2) ? Or(below) : And(below)));
                continue;
            }
            const std::string id = "E" + Number(6);
            events.push_back(Basic(id, {"", "", mRandom.OnceIn(4) ? R"({"Repairid":"P3"})" : "", mRandom.OnceIn(20) ? "2" : ""}));
        }
        return events;
    }

    void WriteRuleSet()
    {
        static const char* const rules[] = {"A0", "A1", "A2", "A3", "A4", "N", "C", "C2", "Q", "Q2", "missing"};
        TreeXml trees("Tag");
        trees.Version("1");
        for (std::size_t tree = 0; tree < 3; ++tree) {
            const auto events = Events(0);
            trees.Tree("T" + std::to_string(tree), mRandom.OnceIn(2) ? Or(events) : And(events));
        }
        RuleXml text("Tag");
        std::vector<std::string> ids{"E0", "E1", "E2", "E3", "E4", "E5"};
        if (!mGates.empty() && mRandom.OnceIn(2)) {
            ids.push_back(*mGates.begin());
        }
        for (const std::string& id : ids) {
            std::vector<Xml> alternatives;
            for (std::size_t count = 1 + Below(2); count > 0; --count) {
                alternatives.push_back(mRandom.OnceIn(3) ? Multiple({OneOf(rules), OneOf(rules)}) : Single(OneOf(rules)));
            }
            text.EventRule(id, alternatives);
            if (mRandom.OnceIn(3)) {
                text.Repair(id, {{"P" + Number(3), ""}});
            }
        }
        for (const char* const name : {"A0", "A1", "A2", "A3", "A4"}) {
            std::vector<Xml> items{AlarmItem()};
            if (mRandom.OnceIn(3)) {
                items.push_back(AlarmItem());
            }
            text.Rule(AlarmRuleXml(name, items, mRandom.OnceIn(15) ? "2" : "1"));
        }
        text.Rule(NodeRuleXml("N", {NodeInfoXml("T", mDir.Path("node")), ParamsXml({ParamXml("t", "T", "int")}),
            ConditionXml({SingleLogicXml(TestXml("gt", "t", "70"))})}));
        text.Rule(CodeRuleXml("Q", "CODE", "yes")).Rule(CodeRuleXml("Q2", "CODE2", "no"));
        text.CommonPart({TableXml("TABLE_A", "1", "2"), TableXml("TABLE_B", "2", "4")});
        text.Rule(CommandRule("C")).Rule(CommandRule("C2"));
        mDir.Write("rules/FaultTrees.xml", trees.Text());
        mDir.Write("rules/FaultTreeRules.xml", text.Text());
        if (mRandom.OnceIn(2)) {
            mDir.Write("node", "80\n");
        }
        for (const char* const repair : {"P0", "P1", "P2", "P3"}) {
            if (mRandom.OnceIn(2)) {
                mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW - static_cast<std::int64_t>(Below(60 * DAY))));
                UpdateRepairDb(repair);
            }
        }
        mSettings.Set(Settings::VERSION_NAME, mRandom.OnceIn(4) ? "" : "1");
    }

    std::shared_ptr<DetectInfo> Info() const
    {
        auto info = std::make_shared<DetectInfo>();
        info->mDetectScene = 1;
        info->mTreeTag = "Tag";
        info->mRuleFileDir = mDir.Path("rules");
        info->mDeviceDetails = std::make_shared<DeviceDetails>();
        info->mCodeRuleRunner = std::make_shared<Runner>();
        return info;
    }

    Answers DetectAsOf(std::int64_t moment)
    {
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(moment));
        mSettings.Set(Settings::AS_OF, std::to_string(moment));
        const auto observer = std::make_shared<Detected>();
        Arborist engine(Info());
        engine.SetObserver(observer);
        engine.StartDetection();
        return observer->answers;
    }

    // The moments to look at: those that were asked with the second before each, and others.
    std::vector<std::int64_t> Sample(const std::set<std::int64_t>& asked, std::size_t most)
    {
        std::vector<std::int64_t> moments;
        for (const std::int64_t moment : asked) {
            if (mRandom.Below(asked.size()) < most) {
                moments.push_back(moment);
                moments.push_back(std::max(moment - 1, FROM));
            }
        }
        for (std::size_t other = 0; other < most; ++other) {
            moments.push_back(FROM + static_cast<std::int64_t>(Below(static_cast<std::size_t>(UNTIL - FROM + 1))));
        }
        moments.insert(moments.end(), {FROM, UNTIL});
        return moments;
    }

    void ExpectEqual(const Swept& swept, const Answers& detected, std::int64_t moment)
    {
        std::set<std::string> unswept;
        for (const SweepPlan::Unswept& rule : swept.plan.unswept) {
            unswept.insert(rule.eventId);
        }
        ASSERT_EQ(swept.trees.size(), detected.trees.size());
        for (const auto& [id, text] : detected.events) {
            if (unswept.count(id) == 0) {
                EXPECT_EQ(At(swept.events.at(id), moment), text);
            }
        }
        for (const auto& [id, answer] : detected.trees) {
            // The trees are named by their numbers.
            if (std::count(swept.plan.unsweptTrees.begin(), swept.plan.unsweptTrees.end(), id.back() - '0') == 0) {
                EXPECT_EQ(At(swept.trees.at(id), moment), answer) << id;
            }
        }
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    RandomCases mRandom;
    std::set<std::string> mGates;
};

TEST_P(LogSweepProperty, EqualsADetectionAsOfEachMoment)
{
    SCOPED_TRACE("seed " + std::to_string(mRandom.GetSeed()) + " case " + std::to_string(GetParam()));
    WriteLog();
    WriteRuleSet();
    Swept swept;
    SweepRequest request{FROM, UNTIL};
    ASSERT_TRUE(LogSweep(Info()).Run(request, swept));
    const auto most = static_cast<std::size_t>(mRandom.GetCount());
    for (const std::int64_t moment : Sample(swept.moments, most)) {
        SCOPED_TRACE("as of " + std::to_string(moment));
        ExpectEqual(swept, DetectAsOf(moment), moment);
        if (HasFailure()) {
            return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Random, LogSweepProperty, testing::Range(0U, 20U));

} // namespace
