#ifndef ARBORIST_DIAGNOSIS_DETECTION_CODE_ANSWERS_H
#define ARBORIST_DIAGNOSIS_DETECTION_CODE_ANSWERS_H

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "arborist/frame/detect_info.h"
#include "diagnosis/bundle/bundle.h"
#include "diagnosis/problem.h"

namespace diagnosis {

/// Who is asked about code rules without a recorded answer: the program of --code-runner, a function of the host, or
/// nobody.
struct CodeRunner {
    /// Empty for no program.
    std::string path;
    std::chrono::milliseconds timeout = std::chrono::seconds(30);
    /// Asked in place of a program, on the detection's thread: takes the JSON object that a program reads, returns
    /// whether the fault is present, or nothing if that can't be told.
    std::function<std::optional<bool>(const std::string& question)> ask = {};

    bool IsThere() const { return ask || !path.empty(); }
};

/// Answers the code rules of a bundle: with the recorded answer for the rule's user-defined text, otherwise by asking
/// the program or the host. If there is none of them, the fault counts as not present, with a warning.
class CodeAnswers : public CodeRuleRunner {
public:
    CodeAnswers(std::map<std::string, bool> recorded, CodeRunner runner);

    bool RunCodeRule(std::vector<std::string> faultDescriptionIds, std::vector<std::string> suggestionIds,
        std::vector<std::string> repairIds, const std::string& userDefinedInfo) override;
    Outcome GetOutcome() const override { return mOutcome; }

    const std::vector<Warning>& GetWarnings() const { return mWarnings; }
    /// The answers of the program by the rule's text. If two answers differ, the first stays, with a warning.
    const std::map<std::string, bool>& GetAnswers() const { return mAnswers; }

private:
    bool AskProgram(const std::string& question, const std::string& userDefinedInfo);
    bool AskHost(const std::string& question, const std::string& userDefinedInfo);
    bool Keep(const std::string& userDefinedInfo, bool answer);
    bool Warn(Outcome outcome, const std::string& message);

    std::map<std::string, bool> mRecorded;
    CodeRunner mRunner;
    std::vector<Warning> mWarnings;
    std::map<std::string, bool> mAnswers;
    Outcome mOutcome = Outcome::ANSWERED;
};

/// Answers the code rules of a detection from here on. Null if the bundle has no answers and nobody can be asked: the
/// library then gets no runner, so that code rules end with that reason.
std::shared_ptr<CodeAnswers> AnswerCodeRules(const Bundle& bundle, const CodeRunner& runner, DetectInfo& detection);

} // namespace diagnosis

#endif
