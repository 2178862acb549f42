#include "arborist/frame/sweep_observer.h"

SweepObserver::~SweepObserver() = default;

// Empty by default, so that an observer overrides only the calls that it needs. One that keeps a record moves it.
// NOLINTBEGIN(performance-unnecessary-value-param)
void SweepObserver::OnRuleSetRead(Evidence::RuleSet) {}
void SweepObserver::OnPlan(SweepPlan) {}
void SweepObserver::OnTrouble(Evidence::Trouble) {}
// NOLINTEND(performance-unnecessary-value-param)

void SweepObserver::OnEventDecided(std::int64_t, const Evidence::Event&) {}

void SweepObserver::OnTreeJudged(
    std::int64_t, std::size_t, const Evidence::TreeResult&, const std::vector<Evidence::RootCause>&) {}

void SweepObserver::OnStopped(std::int64_t) {}
