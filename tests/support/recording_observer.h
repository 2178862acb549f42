#ifndef ARBORIST_TESTS_SUPPORT_RECORDING_OBSERVER_H
#define ARBORIST_TESTS_SUPPORT_RECORDING_OBSERVER_H

#include <string>
#include <vector>

#include "arborist/frame/detection_observer.h"

/// Converts the arguments of each call into lines of text, so that a test can compare them with a list.
class RecordingObserver : public DetectionObserver {
public:
    const std::vector<std::string>& Lines() const { return mLines; }
    /// The lines that begin with this word ("formula").
    std::vector<std::string> Lines(const std::string& word) const;
    void Clear() { mLines.clear(); }

    void OnRuleSetRead(Evidence::RuleSet ruleSet) override;
    void OnTreeStarted(Evidence::TreeHead tree) override;
    void OnEventDecided(Evidence::Event event) override;
    void OnTreeFolded(std::vector<Evidence::FoldedEvent> events) override;
    void OnRootCause(Evidence::RootCause rootCause) override;
    void OnTreeFinished(Evidence::TreeResult result) override;
    void OnTrouble(Evidence::Trouble trouble) override;

private:
    void AddRule(const std::string& eventId, const Evidence::Rule& rule, const std::string& place);

    std::vector<std::string> mLines;
};

#endif
