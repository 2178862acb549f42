#include "diagnosis/detection/code_answers.h"

#include <utility>

#include "diagnosis/detection/code_program.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

namespace {

std::string Question(const std::vector<std::string>& faultDescriptionIds,
    const std::vector<std::string>& suggestionIds, const std::vector<std::string>& repairIds,
    const std::string& userDefinedInfo)
{
    JsonWriter json;
    json.BeginObject();
    json.Key("faultDescriptionIds").Texts(faultDescriptionIds);
    json.Key("suggestionIds").Texts(suggestionIds);
    json.Key("repairIds").Texts(repairIds);
    json.Text("userDefinedInfo", userDefinedInfo);
    return json.EndObject().Line() + "\n";
}

} // namespace

CodeAnswers::CodeAnswers(std::map<std::string, bool> recorded, CodeRunner runner)
    : mRecorded(std::move(recorded)), mRunner(std::move(runner))
{
}

bool CodeAnswers::RunCodeRule(std::vector<std::string> faultDescriptionIds, std::vector<std::string> suggestionIds,
    std::vector<std::string> repairIds, const std::string& userDefinedInfo)
{
    mOutcome = Outcome::ANSWERED;
    const auto recorded = mRecorded.find(userDefinedInfo);
    if (recorded != mRecorded.end()) {
        return recorded->second;
    }
    if (!mRunner.IsThere()) {
        mOutcome = Outcome::NOBODY_THERE; // the detection's warnings name the rule
        return false;
    }
    const std::string question = Question(faultDescriptionIds, suggestionIds, repairIds, userDefinedInfo);
    return mRunner.ask ? AskHost(question, userDefinedInfo) : AskProgram(question, userDefinedInfo);
}

bool CodeAnswers::AskHost(const std::string& question, const std::string& userDefinedInfo)
{
    const std::optional<bool> answer = mRunner.ask(question);
    return answer ? Keep(userDefinedInfo, *answer)
                  : Warn(Outcome::BROKEN_OFF,
                      "the host: asked about \"" + userDefinedInfo + "\": gave no answer: taken as not present");
}

bool CodeAnswers::AskProgram(const std::string& question, const std::string& userDefinedInfo)
{
    const ProgramOutcome outcome = RunProgram(mRunner.path, question, mRunner.timeout);
    const std::string about = mRunner.path + ": asked about \"" + userDefinedInfo + "\": ";
    if (outcome.kind == ProgramOutcome::Kind::TROUBLE) {
        return Warn(Outcome::BROKEN_OFF, about + outcome.trouble + ": taken as not present");
    }
    if (outcome.exitStatus != 0 && outcome.exitStatus != 1) {
        return Warn(Outcome::BROKEN_OFF, about + "exit status " + std::to_string(outcome.exitStatus)
            + ", neither 0 (present) nor 1 (not present): taken as not present");
    }
    return Keep(userDefinedInfo, outcome.exitStatus == 0);
}

bool CodeAnswers::Keep(const std::string& userDefinedInfo, bool answer)
{
    if (mAnswers.try_emplace(userDefinedInfo, answer).first->second != answer) {
        Warn(Outcome::ANSWERED, (mRunner.ask ? "the host" : mRunner.path) + ": two answers about \"" + userDefinedInfo + "\" differ");
    }
    return answer;
}

bool CodeAnswers::Warn(Outcome outcome, const std::string& message)
{
    mOutcome = outcome;
    mWarnings.push_back({WarningCode::CODE_RUNNER, message});
    return false;
}

std::shared_ptr<CodeAnswers> AnswerCodeRules(const Bundle& bundle, const CodeRunner& runner, DetectInfo& detection)
{
    if (bundle.codeAnswers.empty() && !runner.IsThere()) {
        return nullptr;
    }
    auto answers = std::make_shared<CodeAnswers>(bundle.codeAnswers, runner);
    detection.mCodeRuleRunner = answers;
    return answers;
}

} // namespace diagnosis
