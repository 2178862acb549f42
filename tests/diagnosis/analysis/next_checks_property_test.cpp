#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/analysis/next_checks.h"
#include "diagnosis/detection/detection.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_cases.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using diagnosis::FewestChecks;
using diagnosis::FindNextChecks;
using diagnosis::NextChecks;
using diagnosis::TreeReport;
using testing::Contains;
using testing::Each;
using testing::Not;
using Word = Evidence::TreeVerdict::Word;

using Answers = std::map<std::string, bool>;

/// A bundle with a random tree, whose open checks are code rules that may decide several events. Some events are left
/// to the host, or have a rule that is not for the device, or one that has an answer from the start.
class RandomBundle {
public:
    explicit RandomBundle(RandomCases& random)
        : mRandom(random), mCanBeKnown(random.OnceIn(2)), mMayShare(random.OnceIn(2))
    {
        for (std::size_t count = (mMayShare ? 1 : 2) + mRandom.Below(3); count > 0; --count) {
            mRules.push_back("r" + std::to_string(count));
        }
        mUnused = mRules;
        mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Tree("T", Gate(2)).Text());
        mRuleFile.Rule(CodeRuleXml("other", "COther", "other").Attr("production", "OTHER"));
        for (const std::string& rule : {std::string("yes"), std::string("no")}) {
            mRuleFile.Rule(CodeRuleXml(rule, "C" + rule, rule));
        }
        for (const std::string& rule : mRules) {
            mRuleFile.Rule(CodeRuleXml(rule, "C" + rule, rule));
        }
        mDir.Write("b/rules/FaultTreeRules.xml", mRuleFile.Text());
    }

    /// The rules that nothing answers.
    const std::vector<std::string>& GetRules() const { return mRules; }

    TreeReport Detect(const Answers& answers) const
    {
        std::string recorded = R"("yes": true, "no": false)";
        for (const auto& [rule, answer] : answers) {
            recorded += ", \"" + rule + "\": " + (answer ? "true" : "false");
        }
        mDir.Write("b/bundle.json", R"({"detectScene": 1, "treeTag": "Tag", "device": {"Product": "P"}, "codeAnswers": {)"
            + recorded + "}}");
        diagnosis::DetectionOptions options;
        options.withExplanation = true;
        options.checksRuleSet = false;
        return RunDetection({"b", mDir.Path("b")}, options).trees.at(0);
    }

private:
    std::string Rule()
    {
        if (mRandom.OnceIn(6)) {
            return "other";
        }
        if (mCanBeKnown && mRandom.OnceIn(3)) {
            return mRandom.OneOf({"yes", "no"});
        }
        if (mMayShare) {
            return mRandom.OneOf(mRules);
        }
        if (mUnused.empty()) {
            return "other";
        }
        const std::string rule = mUnused.back();
        mUnused.pop_back();
        return rule;
    }

    void AddRules(const std::string& id)
    {
        std::vector<Xml> alternatives;
        for (std::size_t count = mRandom.OnceIn(4) ? 2 : 1; count > 0; --count) {
            const std::string first = Rule();
            alternatives.push_back(mRandom.OnceIn(6) ? Multiple({first, Rule()}) : Single(first));
        }
        mRuleFile.EventRule(id, alternatives);
    }

    Xml Gate(int levels)
    {
        std::vector<Xml> events;
        for (std::size_t count = 1 + mRandom.Below(3); count > 0; --count) {
            const std::string id = "E" + std::to_string(mIds++);
            const bool isInner = levels > 0 && mRandom.OnceIn(3);
            if (!isInner || mRandom.OnceIn(4)) {
                AddRules(id);
            }
            EventTexts texts;
            texts.detectMode = mRandom.OnceIn(10) ? "2" : "";
            events.push_back(isInner ? Intermediate(id, Gate(levels - 1)) : Basic(id, texts));
        }
        return mRandom.OnceIn(2) ? Or(events) : And(events);
    }

    RandomCases& mRandom;
    bool mCanBeKnown;
    bool mMayShare;
    std::size_t mIds = 0;
    std::vector<std::string> mRules;
    std::vector<std::string> mUnused;
    RuleXml mRuleFile{"Tag"};
    TempDir mDir;
    LogCapture mLog;
};

Answers Chosen(const std::vector<std::string>& rules, std::size_t number)
{
    Answers answers;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        answers[rules[i]] = (number >> i & 1U) != 0;
    }
    return answers;
}

/// The verdict for every answer of all rules.
std::vector<Word> AllVerdicts(const RandomBundle& bundle)
{
    std::vector<Word> words;
    for (std::size_t number = 0; number < std::size_t{1} << bundle.GetRules().size(); ++number) {
        words.push_back(bundle.Detect(Chosen(bundle.GetRules(), number)).verdict.word);
    }
    return words;
}

// Whether these answers, of the rules in `asked`, settle whether there is a fault, and which way.
std::optional<bool> Settled(const std::vector<Word>& words, std::size_t asked, std::size_t answers)
{
    std::optional<bool> isFault;
    for (std::size_t number = 0; number < words.size(); ++number) {
        if ((number & asked) != answers) {
            continue;
        }
        if (isFault && *isFault != (words[number] == Word::FAULT)) {
            return std::nullopt;
        }
        isFault = words[number] == Word::FAULT;
    }
    return isFault;
}

// The fewest answers that prove a fault and that rule it out, by trying all.
FewestChecks ByTrial(const std::vector<Word>& words)
{
    FewestChecks fewest{FewestChecks::NEVER, FewestChecks::NEVER};
    for (std::size_t asked = 0; asked < words.size(); ++asked) {
        const auto count = static_cast<std::uint32_t>(__builtin_popcountll(asked));
        for (std::size_t answers = 0; answers <= asked; ++answers) {
            const auto isFault = (answers & ~asked) == 0 ? Settled(words, asked, answers) : std::nullopt;
            if (isFault) {
                std::uint32_t& ofAnswer = *isFault ? fewest.toProve : fewest.toRuleOut;
                ofAnswer = std::min(ofAnswer, count);
            }
        }
    }
    return fewest;
}

// Answers the rule that comes next until the verdict is no longer undecided, or no answer can change that.
void FollowNext(const RandomBundle& bundle, const Answers& all)
{
    Answers answers;
    TreeReport report = bundle.Detect(answers);
    while (report.IsUndecided()) {
        const NextChecks next = FindNextChecks(report, 1);
        if (next.checks.empty()) {
            EXPECT_TRUE(bundle.Detect(all).IsUndecided()) << "no next check";
            return;
        }
        const auto* const open = OpenCheckOf(report, report.tree.events[next.checks[0].event].id);
        ASSERT_NE(open, nullptr);
        ASSERT_TRUE(answers.emplace(open->ruleName, all.at(open->ruleName)).second) << open->ruleName << " again";
        report = bundle.Detect(answers);
    }
}

void ExpectNumbers(const NextChecks& next, const std::vector<Word>& words)
{
    if (next.aim != NextChecks::Aim::CAUSE) {
        EXPECT_THAT(words, Not(Contains(Word::FAULT)));
    }
    if (next.aim == NextChecks::Aim::FIRST_ANSWER && !next.checks.empty()) {
        EXPECT_THAT(words, Each(Word::NO_FAULT));
    }
    if (next.aim != NextChecks::Aim::CAUSE) {
        return;
    }
    const FewestChecks fewest = ByTrial(words);
    if (!next.isAtMost) {
        EXPECT_EQ(next.fewest, fewest);
        return;
    }
    // A rule with two uses, or one that was not reached, can make a proof impossible, which counting can't know.
    EXPECT_TRUE(fewest.toProve == FewestChecks::NEVER || fewest.toProve <= next.fewest.toProve);
    EXPECT_LE(fewest.toRuleOut, next.fewest.toRuleOut);
}

TEST(NextChecksPropertyTest, FollowingThemDecidesWheneverAnAnswerCan)
{
    RandomCases random(50);
    for (int n = 0; n < random.GetCount(); ++n) {
        const RandomBundle bundle(random);
        const std::size_t answers = std::size_t{1} << bundle.GetRules().size();
        for (int i = 0; i < 3; ++i) {
            FollowNext(bundle, Chosen(bundle.GetRules(), random.Below(answers)));
        }
    }
}

TEST(NextChecksPropertyTest, TheirNumbersAreThoseOfTryingAllAnswers)
{
    RandomCases random(50);
    int undecided = 0;
    for (int n = 0; n < random.GetCount(); ++n) {
        const RandomBundle bundle(random);
        const TreeReport report = bundle.Detect({});
        if (report.IsUndecided()) {
            ++undecided;
            ExpectNumbers(FindNextChecks(report, 1), AllVerdicts(bundle));
        }
    }
    EXPECT_GE(undecided, random.GetCount() / 4);
}

} // namespace
