#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/deduction/fault_tree_visitor.h"
#include "arborist/deduction/plain/minimal_cutset_parser.h"
#include "arborist/deduction/root_cause.h"
#include "arborist/deduction/plain/root_cause_locator.h"
#include "arborist/frame/fault_tree_result.h"
#include "arborist/frame/log.h"
#include "tests/deduction/cause_text.h"
#include "tests/deduction/random_tree.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/tree_builder.h"

namespace {

// The results of one deduction as text.
struct Outcome {
    std::vector<std::string> causes;
    std::vector<std::vector<std::shared_ptr<Event>>> events;
    std::vector<std::string> log;
};

Outcome OutcomeOf(const std::vector<std::shared_ptr<RootCause>>& causes, const LogCapture& log)
{
    Outcome outcome{TextOf(causes), {}, log.Lines(FT::LEVEL_INFO)};
    for (const auto& cause : causes) {
        outcome.events.push_back(cause->GetLeaf());
    }
    return outcome;
}

Outcome ByExpansion(FaultTree& tree)
{
    LogCapture log;
    tree.Check();
    const auto causes = RootCauseLocator().FindRootCause(tree, MinimalCutsetParser::GetMcs(tree));
    Outcome outcome = OutcomeOf(causes, log);
    outcome.log.push_back(std::string("FUNc:FaultTreeVisitor::AnalyzeRootCause: status= ") +
                          (causes.empty() ? "0 " : "1 "));
    outcome.log.push_back("FUNc:FaultTreeVisitor::AnalyzeRootCause: mRootCauseList size= " +
                          std::to_string(causes.size()));
    return outcome;
}

// Finds root causes by their definition, for trees with unambiguous paths: sets of leaves that make their gates true,
// where each leaf and all events above it are in error.
using Way = std::vector<const Event*>;
using WaySets = std::vector<std::vector<Way>>;

WaySets SetsBelow(const Event& event, Way way)
{
    way.insert(way.begin(), &event);
    const IntermediateEvent* intermediate = event.AsIntermediate();
    if (intermediate == nullptr) {
        return {{way}};
    }
    WaySets sets;
    if (intermediate->GetGate() == nullptr) {
        return sets;
    }
    for (const auto& child : intermediate->GetGate()->GetEvents()) {
        const WaySets more = SetsBelow(*child, way);
        if (intermediate->GetGate()->GetKind() == GateKind::OR || sets.empty()) {
            sets.insert(sets.end(), more.begin(), more.end());
            continue;
        }
        WaySets both;
        for (const auto& left : sets) {
            for (const auto& right : more) {
                both.push_back(left);
                both.back().insert(both.back().end(), right.begin(), right.end());
            }
        }
        sets = both;
    }
    return sets;
}

std::vector<std::string> ByMeaning(const FaultTree& tree)
{
    std::vector<std::string> causes;
    for (const auto& set : SetsBelow(*tree.GetIntermediateEvent(), {})) {
        std::vector<std::string> ids;
        bool isInError = true;
        for (const Way& way : set) {
            for (const Event* event : way) {
                isInError = isInError && IsError(event->GetResult());
                if (std::find(ids.begin(), ids.end(), event->GetId()) == ids.end()) {
                    ids.push_back(event->GetId());
                }
            }
        }
        if (isInError) {
            causes.push_back(Joined(ids, " < "));
        }
    }
    return causes;
}

class RandomTrees : public testing::TestWithParam<TreeStyle> {};

TEST_P(RandomTrees, DeductionAgreesWithTheExpansion)
{
    int faults = 0;
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const auto tree = RandomTree(seed, GetParam()).Make();
        if (ExpansionOf(*tree->GetIntermediateEvent()) > 300) {
            continue;
        }
        const Outcome expected = ByExpansion(*tree);
        LogCapture log;
        FaultTreeVisitor visitor(nullptr);
        visitor.DeduceRootCause(tree);
        const Outcome outcome = OutcomeOf(visitor.GetRootCauseList(), log);
        ASSERT_EQ(outcome.causes, expected.causes);
        ASSERT_EQ(outcome.events, expected.events);
        ASSERT_EQ(outcome.log, expected.log);
        ASSERT_EQ(visitor.IsFault(), !expected.causes.empty());
        ASSERT_EQ(visitor.GetRootCauseNodeList().size(), expected.causes.size());
        for (std::size_t cause = 0; cause < expected.causes.size(); ++cause) {
            ASSERT_EQ(visitor.GetRootCauseNodeList()[cause]->mId, expected.events[cause].front()->GetId());
        }
        faults += visitor.IsFault() ? 1 : 0;
    }
    // The test is only meaningful if many trees have faults.
    EXPECT_GT(faults, 50);
}

INSTANTIATE_TEST_SUITE_P(Table, RandomTrees, testing::Values(
    TreeStyle{"OwnIds", {}, 75},
    TreeStyle{"OwnIdsMostlyHealthy", {}, 40},
    TreeStyle{"FewIds", {"A", "B", "C", "D", "E", "F"}, 80},
    TreeStyle{"EmptyIds", {"", " ", "A", "B", "C"}, 80},
    TreeStyle{"Slashes", {"A", "B", "C", "D", "A/B", "/", "B/", "/C"}, 80},
    TreeStyle{"Ampersands", {"A", "B", "C", "D", "A&T", "&", "A&A/B", "B& ", "A&A/A"}, 85},
    TreeStyle{"OneSeparator", {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M", "N", "A&A/B"}, 85},
    TreeStyle{"Everything", {"A", "B", "", "/", "&", "A/B", "A&A/B", "A/&A", "//", "&&", "A/A&A/B", " A "}, 85}),
    CaseName());

TEST(RandomTreesTest, DeductionAgreesWithTheMeaningWherePathsAreTheirOwn)
{
    const TreeStyle style{"OwnIds", {}, 75};
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const auto tree = RandomTree(seed, style).Make();
        if (ExpansionOf(*tree->GetIntermediateEvent()) > 300) {
            continue;
        }
        LogCapture log;
        FaultTreeVisitor visitor(nullptr);
        visitor.DeduceRootCause(tree);
        ASSERT_EQ(TextOf(visitor.GetRootCauseList()), ByMeaning(*tree));
    }
}

} // namespace
