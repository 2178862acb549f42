#ifndef ARBORIST_TESTS_SUPPORT_CODE_RUNNER_STUB_H
#define ARBORIST_TESTS_SUPPORT_CODE_RUNNER_STUB_H

#include <functional>
#include <string>
#include <vector>

#include "arborist/frame/detect_info.h"

/// A host that gives the same answer to every code rule and records its arguments, "faults|suggestions|repairs|info".
struct CodeRunnerStub : CodeRuleRunner {
    bool answer = false;
    Outcome outcome = Outcome::ANSWERED;
    std::vector<std::string> calls;
    /// Called during each run, if set.
    std::function<void()> onCall;

    bool RunCodeRule(std::vector<std::string> faultDescriptionIds, std::vector<std::string> suggestionIds,
                     std::vector<std::string> repairIds, const std::string& userDefinedInfo) override
    {
        calls.push_back(Joined(faultDescriptionIds) + "|" + Joined(suggestionIds) + "|" + Joined(repairIds) + "|"
                        + userDefinedInfo);
        if (onCall) {
            onCall();
        }
        return answer;
    }

    Outcome GetOutcome() const override { return outcome; }

private:
    static std::string Joined(const std::vector<std::string>& ids)
    {
        std::string joined;
        for (const auto& id : ids) {
            joined += (joined.empty() ? "" : ",") + id;
        }
        return joined;
    }
};

#endif
