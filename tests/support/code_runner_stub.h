#ifndef ARBORIST_TESTS_SUPPORT_CODE_RUNNER_STUB_H
#define ARBORIST_TESTS_SUPPORT_CODE_RUNNER_STUB_H

#include <functional>
#include <string>
#include <vector>

#include "arborist/frame/detect_info.h"

/// A host that gives one answer to every code rule and keeps what it was handed, "faults|suggestions|repairs|info".
struct CodeRunnerStub : CodeRuleRunner {
    bool answer = false;
    std::vector<std::string> calls;
    /// Called from within, when set.
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
