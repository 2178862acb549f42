#include "diagnosis/cases/case_runner.h"

#include <algorithm>

#include "diagnosis/process/library_log.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis::cases {

/// The lines of the library's log, while a case asks for them.
struct CaseRunner::LogLines {
    bool isWanted = false;
    std::vector<std::string> lines;

    class Sink : public LogSink {
    public:
        explicit Sink(std::shared_ptr<LogLines> target) : mTarget(std::move(target)) {}

        bool IsWanted(unsigned int) const override { return mTarget->isWanted; }
        void OnLine(unsigned int, const std::string& line) override
        {
            mTarget->lines.push_back(line.substr(0, line.size() - 1)); // without the line end
        }

    private:
        std::shared_ptr<LogLines> mTarget;
    };
};

CaseRunner::CaseRunner(std::string rules) : mRules(std::move(rules)), mLog(std::make_shared<LogLines>())
{
    SendLibraryLogTo(std::make_unique<LogLines::Sink>(mLog));
}

CaseRunner::~CaseRunner()
{
    GiveLibraryLogBack();
}

CaseOutcome CaseRunner::Run(const TestCase& testCase)
{
    CaseOutcome outcome{testCase.file, testCase.line, testCase.name, testCase.isReviewed, std::nullopt, {}};
    mReport = DetectionReport();
    Bundle description = testCase.bundle;
    std::string folder;
    outcome.failure = Describe(testCase, description);
    if (!outcome.failure) {
        outcome.failure = mStage.Build(testCase, description, folder);
    }
    if (outcome.failure) {
        return outcome;
    }
    mLog->isWanted = !testCase.expected.log.empty() || !testCase.expected.noLog.empty();
    mLog->lines.clear();
    DetectionOptions options;
    options.withExplanation = true;
    options.checksRuleSet = false; // nobody reads the warnings of a case
    mReport = RunDetection({testCase.file, folder}, options);
    outcome.failure = mReport.failure;
    if (!outcome.failure) {
        outcome.differences = Compare(testCase.expected, mReport, mLog->lines);
    }
    return outcome;
}

// Completes the description of the device by what depends on the rule set.
std::optional<Failure> CaseRunner::Describe(const TestCase& testCase, Bundle& description)
{
    description.ruleFileDir = mRules.empty() ? description.ruleFileDir : mRules;
    const auto& tags = mRuleSets.TagsOf(description.ruleFileDir, description.ruleFilePrefix);
    if (description.treeTag.empty()) {
        if (tags.size() > 1) {
            return Failure{FailureCode::BAD_CASE, testCase.file + ":" + std::to_string(testCase.line) + ": the rule set has "
                + std::to_string(tags.size()) + " tags; name one of them in \"tag\""};
        }
        description.treeTag = tags.empty() ? "-" : tags.front();
    }
    // The detection reports a rule set without the tag as unusable.
    const bool hasTag = std::find(tags.begin(), tags.end(), description.treeTag) != tags.end();
    mRuleSet = {description.ruleFileDir, description.ruleFilePrefix, description.treeTag};
    return testCase.answers.empty() || !hasTag ? std::nullopt : Answer(testCase, description);
}

// The library asks for answers by the text of the rule.
std::optional<Failure> CaseRunner::Answer(const TestCase& testCase, Bundle& description)
{
    std::map<std::string, std::string> texts;
    std::vector<std::string> names;
    for (const auto& rule : mRuleSets.Get(mRuleSet).rules.codeRules) {
        texts[std::string(rule.name)] = rule.userDefinedInfo.Text();
        names.emplace_back(rule.name);
    }
    const auto fail = [&testCase](const std::string& reason) {
        return Failure{FailureCode::BAD_CASE, testCase.file + ":" + std::to_string(testCase.line) + ": " + reason};
    };
    for (const auto& [name, answer] : testCase.answers) {
        const auto text = texts.find(name);
        if (text == texts.end()) {
            return fail("no code rule has the name \"" + name + "\", which \"answers\" has" + DidYouMean(name, names));
        }
        const auto place = description.codeAnswers.emplace(text->second, answer).first;
        if (place->second != answer) {
            return fail("\"answers\" has two answers for one text: \"" + text->second + "\"");
        }
    }
    return std::nullopt;
}

} // namespace diagnosis::cases
