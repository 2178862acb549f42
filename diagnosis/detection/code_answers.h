#ifndef ARBORIST_DIAGNOSIS_DETECTION_CODE_ANSWERS_H
#define ARBORIST_DIAGNOSIS_DETECTION_CODE_ANSWERS_H

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "arborist/frame/detect_info.h"
#include "diagnosis/problem.h"

namespace diagnosis {

/// The program of --code-runner; an empty path for none.
struct CodeRunner {
    std::string path;
    std::chrono::milliseconds timeout = std::chrono::seconds(30);
};

/// Answers the code rules of a bundle: with the recorded answer for the rule's user-defined text, otherwise by running
/// the program. If there is neither, the fault counts as not present, with a warning.
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
    bool Keep(const std::string& userDefinedInfo, bool answer);
    bool Warn(Outcome outcome, const std::string& code, const std::string& message);

    std::map<std::string, bool> mRecorded;
    CodeRunner mRunner;
    std::vector<Warning> mWarnings;
    std::map<std::string, bool> mAnswers;
    Outcome mOutcome = Outcome::ANSWERED;
};

} // namespace diagnosis

#endif
