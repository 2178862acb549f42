// Verdicts of random rule sets against trying every answer to the open checks.

#include "arborist/frame/arborist.h"

#include <map>
#include <set>

#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_cases.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using Evidence::TreeVerdict;
using Word = TreeVerdict::Word;

const std::string TAG = "test";

// The host: a rule without an answer breaks off.
class Host : public CodeRuleRunner {
public:
    explicit Host(std::map<std::string, bool> answers) : mAnswers(std::move(answers)) {}

    bool RunCodeRule(std::vector<std::string>, std::vector<std::string>, std::vector<std::string>,
                     const std::string& userDefinedInfo) override
    {
        const auto answer = mAnswers.find(userDefinedInfo);
        mHasAnswered = answer != mAnswers.end();
        return mHasAnswered && answer->second;
    }
    Outcome GetOutcome() const override { return mHasAnswered ? Outcome::ANSWERED : Outcome::BROKEN_OFF; }

private:
    std::map<std::string, bool> mAnswers;
    bool mHasAnswered = false;
};

class VerdictObserver : public DetectionObserver {
public:
    void OnTreeFinished(Evidence::TreeResult result) override { trees.push_back(std::move(result)); }

    std::vector<Evidence::TreeResult> trees;
};

// What a detection answers for one tree.
struct Answer {
    TreeVerdict verdict;
    std::set<std::string> causes;
};

struct Style {
    const char* name;
    // A group asks its open rules last, so that none that is not asked could answer false.
    bool areOpenRulesLast;
};
void PrintTo(const Style& style, std::ostream* out) { *out << style.name; }

class RandomRuleSets : public testing::TestWithParam<Style> {
protected:
    // Rules "r0", "r1" ..., of which "r0" to the last open one have no answer.
    void MakeRules(RandomCases& random)
    {
        mAnswers.clear();
        mOpen.clear();
        for (int number = 0; number < 6; ++number) {
            const std::string name = "r" + std::to_string(number);
            if (number < 3 && !random.OnceIn(4)) {
                mOpen.push_back(name);
            } else {
                mAnswers[name] = random.OnceIn(2);
            }
        }
    }

    Xml Alternative(RandomCases& random) const
    {
        std::vector<std::string> names;
        for (int number = 5; number >= 0; --number) {
            const std::string name = "r" + std::to_string(number);
            if (random.OnceIn(3)) {
                const bool isLast = GetParam().areOpenRulesLast ? mAnswers.count(name) == 0 : random.OnceIn(2);
                names.insert(isLast ? names.end() : names.begin(), name);
            }
        }
        if (names.empty()) {
            return Single("r" + std::to_string(random.Below(6)));
        }
        return names.size() == 1 ? Single(names.front()) : Multiple(names);
    }

    static Xml Gate(RandomCases& random, int depth, int& number)
    {
        std::vector<Xml> events;
        for (std::size_t count = 1 + random.Below(3); count > 0; --count) {
            const bool isBasic = depth == 0 || random.OnceIn(2);
            const std::string id = isBasic ? std::string(1, static_cast<char>('A' + random.Below(4)))
                                           : "G" + std::to_string(number++);
            events.push_back(isBasic ? Basic(id) : Intermediate(id, Gate(random, depth - 1, number)));
        }
        return random.OnceIn(2) ? Or(events) : And(events);
    }

    // Two trees over the same events, so that one entry is used in both.
    void Write(RandomCases& random)
    {
        RuleXml rules(TAG);
        for (int number = 0; number < 6; ++number) {
            const std::string name = "r" + std::to_string(number);
            rules.Rule(CodeRuleXml(name, "CODE_" + name, name));
        }
        for (const char* event : {"A", "B", "C", "D", "G0"}) {
            std::vector<Xml> alternatives;
            for (std::size_t count = random.Below(4); count > 0; --count) {
                alternatives.push_back(Alternative(random));
            }
            if (!alternatives.empty() || random.OnceIn(2)) {
                alternatives.empty() ? alternatives.push_back(Single("r5")) : void();
                rules.EventRule(event, alternatives);
            }
        }
        int number = 0;
        const Xml first = Gate(random, 2, number);
        mDir.Write("FaultTrees.xml", TreeXml(TAG).Tree("T", first).Tree("U", Gate(random, 2, number)).Text());
        mDir.Write("FaultTreeRules.xml", rules.Text());
    }

    std::vector<Answer> Detect(const std::map<std::string, bool>& answers) const
    {
        const auto info = DetectInfoFor(mDir, TAG);
        info->mCodeRuleRunner = std::make_shared<Host>(answers);
        const auto observer = std::make_shared<VerdictObserver>();
        Arborist arborist(info);
        arborist.SetObserver(observer);
        const auto trees = arborist.StartDetection();
        std::vector<Answer> found;
        for (std::size_t tree = 0; tree < trees.size(); ++tree) {
            Answer answer{observer->trees.at(tree).verdict, {}};
            for (const auto& cause : trees[tree]->mRootCauseResults) {
                answer.causes.insert(cause->mNode->mId);
            }
            found.push_back(answer);
        }
        return found;
    }

    // The answers of a detection for each combination of answers to the open rules.
    std::vector<std::vector<Answer>> TryAll() const
    {
        std::vector<std::vector<Answer>> all;
        for (unsigned combination = 0; combination < 1U << mOpen.size(); ++combination) {
            auto answers = mAnswers;
            for (std::size_t rule = 0; rule < mOpen.size(); ++rule) {
                answers[mOpen[rule]] = (combination >> rule & 1U) != 0;
            }
            all.push_back(Detect(answers));
        }
        return all;
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::map<std::string, bool> mAnswers;
    std::vector<std::string> mOpen;
};

// Events without an entry are open in each detection: no answer of a rule decides them.
TEST_P(RandomRuleSets, HaveTheVerdictsOfTryingEveryAnswer)
{
    RandomCases random(150);
    std::map<std::string, int> seen;
    for (int number = 0; number < random.GetCount(); ++number) {
        SCOPED_TRACE("case " + std::to_string(number) + " of seed " + std::to_string(random.GetSeed()));
        MakeRules(random);
        Write(random);
        const auto actual = Detect(mAnswers);
        const auto tried = TryAll();
        ASSERT_EQ(actual.size(), 2U);
        for (std::size_t tree = 0; tree < actual.size(); ++tree) {
            const auto& [verdict, causes] = actual[tree];
            std::set<Word> words;
            std::set<std::string> added;
            for (const auto& answers : tried) {
                words.insert(answers.at(tree).verdict.word);
                for (const std::string& cause : answers.at(tree).causes) {
                    added.insert(causes.count(cause) == 0 ? cause : "");
                }
            }
            added.erase("");
            std::set<std::string> possible;
            for (const auto& cause : verdict.possibleCauses) {
                possible.insert(cause.id);
            }
            // Sound: what is told as known holds for every answer.
            EXPECT_EQ(verdict.word == Word::FAULT, !causes.empty());
            EXPECT_TRUE(words.count(Word::FAULT) == 0 || verdict.word == Word::FAULT || verdict.word == Word::UNDECIDED);
            EXPECT_TRUE(!verdict.isComplete || (added.empty() && words == std::set<Word>{verdict.word}));
            for (const std::string& cause : added) {
                EXPECT_EQ(possible.count(cause), 1U) << cause;
            }
            ++seen[Evidence::TreeVerdictText(verdict.word)];
            // Exact: what is told as open depends on an answer, of a rule or of an event that has none.
            const bool hasBareEvents = tried.back().at(tree).verdict.checks.Open() > 0;
            if (GetParam().areOpenRulesLast && !hasBareEvents) {
                EXPECT_TRUE(verdict.word != Word::UNDECIDED || words != std::set<Word>{Word::NO_FAULT});
                EXPECT_EQ(verdict.isComplete, added.empty() && possible.empty() && words == std::set<Word>{verdict.word});
                for (const auto& cause : verdict.possibleCauses) {
                    EXPECT_EQ(tried.back().at(tree).causes.count(cause.id), 1U) << cause.id;
                }
                ++seen[verdict.isComplete ? "complete" : "incomplete"];
            }
        }
        if (HasFailure()) {
            ADD_FAILURE() << mDir.Read("FaultTrees.xml") << mDir.Read("FaultTreeRules.xml");
            return;
        }
    }
    for (const char* kind : {"fault", "no_fault", "undecided"}) {
        EXPECT_GT(seen[kind], 5) << kind;
    }
    EXPECT_TRUE(!GetParam().areOpenRulesLast || (seen["complete"] > 5 && seen["incomplete"] > 5));
}

INSTANTIATE_TEST_SUITE_P(Table, RandomRuleSets, testing::Values(
    Style{"OpenRulesAnywhere", false}, Style{"OpenRulesLast", true}), CaseName());

} // namespace
