#ifndef ARBORIST_EVALUATION_SWEEP_RULE_SWEEP_H
#define ARBORIST_EVALUATION_SWEEP_RULE_SWEEP_H

#include <cstddef>
#include <cstdint>
#include <compare>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "arborist/evaluation/event_decider.h"
#include "arborist/evaluation/rule_engine_helper.h"
#include "arborist/evaluation/sweep/kept_answers.h"
#include "arborist/evaluation/sweep/moment_in_force.h"
#include "arborist/evaluation/sweep/moment_range.h"
#include "arborist/frame/sweep_observer.h"

class CommonPart;
class Event;
class EventRule;
class FaultTree;
class FaultTreeParser;
class RuleHelper;
class TableMoments;
struct DetectInfo;

/// Decides the events of all trees at all moments at which an answer may change, by the checkers of a detection.
///
/// All events with one id share the rules of an entry, and what they leave in it: together they are a unit, which is
/// decided anew where one of its rules may answer differently. Nothing else is asked twice.
class RuleSweep {
public:
    /// An event with its latest answer.
    struct SweptEvent {
        std::shared_ptr<Event> event;
        Evidence::Check check = Evidence::Check::NONE;
        bool isTrue = false;
    };

    /// A tree with its events in pre-order.
    struct Tree {
        std::shared_ptr<FaultTree> tree;
        std::vector<SweptEvent> events;
        bool isChanged = true;
    };

    /// The rule set must have been read. Keeps the arguments. `tellTrouble` gets what belongs to no record of a rule.
    RuleSweep(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<FaultTreeParser> ruleSet, SweepRequest request,
        std::function<void(Evidence::Trouble trouble)> tellTrouble);
    ~RuleSweep();

    /// Prepares the shared data of the rules and finds the moments. Throws std::regex_error like a detection.
    SweepPlan Plan();

    /// Decides what may change, moment after moment; sets Tree::isChanged for trees with another answer, and calls
    /// `judge` after each moment, which may clear it. `tell` gets each event that was decided.
    void Run(const std::function<void(std::int64_t moment)>& judge,
        const std::function<void(std::int64_t moment, const Evidence::Event& event)>& tell);

    std::vector<Tree>& GetTrees() { return mTrees; }
    /// The moment at which it is; the first one before Run.
    std::int64_t GetMoment() const { return mAt; }

private:
    class Listener;

    /// The place of an event: its tree, and its index in it.
    struct Place {
        std::size_t tree;
        std::size_t event;
    };

    struct Unit {
        std::string eventId;
        std::shared_ptr<EventRule> entry;
        std::vector<Place> places;
        /// Where its other rules may answer differently.
        Moments moments = {};
        /// Where its derived tables change.
        Moments tableMoments = {};
        /// The names of its rules on derived tables. They are asked where the tables change, and keep their answers
        /// between.
        std::set<std::string> tableRules = {};
        /// Whether the tables are not built for it.
        bool isLeftOut = false;

        bool HasTables() const { return !tableRules.empty() && !isLeftOut; }
    };

    /// One unit at one moment.
    struct Turn {
        std::int64_t moment;
        std::uint32_t unit;
        /// Whether its rules on derived tables are asked, too.
        bool asksTables;

        auto operator<=>(const Turn&) const = default;
    };

    void PrepareCommonPart();
    void FetchTree(const std::shared_ptr<FaultTree>& tree);
    void FindMoments(Unit& unit, SweepPlan& plan);
    void FindMomentsOfRule(Unit& unit, const std::string& ruleName, SweepPlan& plan);
    void LimitTables(SweepPlan& plan);
    bool IsAskedFor(const Unit& unit) const;
    void NoteUnsweptTrees(SweepPlan& plan) const;
    void MakeTurns();
    void MakeTurnsOf(std::uint32_t number);
    void BuildTables();
    void MakeRulesFresh(const Turn& turn);
    void AskTables(const Unit& unit);
    void Decide(Unit& unit);

    std::shared_ptr<DetectInfo> mDetectInfo;
    std::shared_ptr<FaultTreeParser> mRuleSet;
    SweepRequest mRequest;
    std::int64_t mAt = mRequest.from;
    MomentRange mRange;
    MomentInForce mMoment;
    std::shared_ptr<RuleHelper> mRuleHelper;
    std::shared_ptr<RuleEngineHelper> mEvents;
    std::unique_ptr<Listener> mListener;
    EventDecider mDecider;
    std::shared_ptr<CommonPart> mCommonPart;
    std::unique_ptr<TableMoments> mTableMoments;
    KeptAnswers mKept;
    std::vector<Tree> mTrees;
    std::vector<Unit> mUnits;
    std::map<std::string, std::size_t> mUnitOf; // by event id
    std::vector<Turn> mTurns;
};

#endif
