#include "arborist/frame/detection_observer.h"

DetectionObserver::~DetectionObserver() = default;

// Empty by default, so that an observer overrides only the calls that it needs. One that keeps a record moves it.
// NOLINTBEGIN(performance-unnecessary-value-param)
void DetectionObserver::OnRuleSetRead(Evidence::RuleSet) {}
void DetectionObserver::OnTreeStarted(Evidence::TreeHead) {}
void DetectionObserver::OnEventDecided(Evidence::Event) {}
void DetectionObserver::OnTreeFolded(std::vector<Evidence::FoldedEvent>) {}
void DetectionObserver::OnRootCause(Evidence::RootCause) {}
void DetectionObserver::OnTreeFinished(Evidence::TreeResult) {}
void DetectionObserver::OnTrouble(Evidence::Trouble) {}
// NOLINTEND(performance-unnecessary-value-param)
