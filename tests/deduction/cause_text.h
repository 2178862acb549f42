#ifndef ARBORIST_TESTS_DEDUCTION_CAUSE_TEXT_H
#define ARBORIST_TESTS_DEDUCTION_CAUSE_TEXT_H

#include <memory>
#include <string>
#include <vector>

#include "arborist/deduction/cut_set.h"
#include "arborist/deduction/root_cause.h"

inline std::string Joined(const std::vector<std::string>& texts, const std::string& separator)
{
    std::string joined;
    for (std::size_t text = 0; text < texts.size(); ++text) {
        joined += (text == 0 ? "" : separator) + texts[text];
    }
    return joined;
}

/// Each cut set as "T/G1/A & T/E".
inline std::vector<std::string> TextOf(const MinimalCutSet& cutSets)
{
    std::vector<std::string> texts;
    for (const auto& cutSet : cutSets) {
        texts.push_back(Joined(cutSet, " & "));
    }
    return texts;
}

/// Each root cause as "A < G1 < T".
inline std::vector<std::string> TextOf(const std::vector<std::shared_ptr<RootCause>>& rootCauses)
{
    std::vector<std::string> texts;
    for (const auto& rootCause : rootCauses) {
        texts.push_back(Joined(rootCause->GetPaths(), " < "));
    }
    return texts;
}

#endif
