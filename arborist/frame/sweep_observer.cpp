#include "arborist/frame/sweep_observer.h"

SweepObserver::~SweepObserver() = default;

void SweepObserver::OnRuleSetRead(Evidence::RuleSet) {}

void SweepObserver::OnPlan(SweepPlan) {}

void SweepObserver::OnEventDecided(std::int64_t, const Evidence::Event&) {}

void SweepObserver::OnTreeJudged(
    std::int64_t, std::size_t, const Evidence::TreeResult&, const std::vector<Evidence::RootCause>&) {}
