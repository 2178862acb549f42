#ifndef ARBORIST_FRAME_SWEEP_OBSERVER_H
#define ARBORIST_FRAME_SWEEP_OBSERVER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "arborist/arborist_export.h"
#include "arborist/frame/evidence.h"
#include "arborist/frame/trouble.h"

/// The moments of a sweep, and its limits.
struct SweepRequest {
    /// The first moment, in seconds since the epoch.
    std::int64_t from = 0;
    /// The last moment, which belongs to the sweep. If it lies before `from`, only `from` is judged.
    std::int64_t until = 0;
    /// The derived tables are built anew for at most so many moments: first for the events whose tables change least often.
    std::size_t mostTableMoments = 1000;
    /// Rules that can't be swept because their answer may change without a change of the log: a statement that reads the
    /// clock, for instance. Maps the name of each to a word for the reason.
    std::map<std::string, std::string> unsweptRules = {};
    /// If one of the two isn't empty, derived tables are built only for the events of the trees with the id `tree`, and for
    /// the events that name the rule `rule`.
    ///@{
    std::string tree = {};
    std::string rule = {};
    ///@}
};

/// What a sweep will ask, and what it can't.
struct SweepPlan {
    /// A rule whose answers are not known for all moments. What rests on the rule isn't known either.
    struct Unswept {
        std::string eventId; ///< The event that names the rule.
        std::string ruleName; ///< The rule.
        /// "log_damaged", "odd_times", "too_many_moments", "not_asked_for" or a word of SweepRequest::unsweptRules. With
        /// "not_asked_for", SweepRequest::tree and SweepRequest::rule leave the event out.
        std::string reason;
        /// With "too_many_moments" and "not_asked_for", the number of moments after the first at which the derived tables
        /// of the event change; otherwise 0.
        std::size_t moments = 0;

        /// The order by event and rule.
        bool operator<(const Unswept& other) const
        {
            return eventId != other.eventId ? eventId < other.eventId : ruleName < other.ruleName;
        }
    };

    /// How often the rules of an event on derived tables are asked.
    struct Asked {
        std::string eventId; ///< The event.
        std::size_t times = 0; ///< The number of moments at which these rules are asked, the first included.
    };

    /// The number of moments after the first at which a rule is asked.
    std::size_t moments = 0;
    /// The number of moments after the first for which derived tables are built.
    std::size_t tableMoments = 0;
    /// The rules that can't be swept, by event and rule.
    std::vector<Unswept> unswept;
    /// The trees with an event that has such a rule: their numbers in the results of a detection, from 0, ascending.
    std::vector<std::size_t> unsweptTrees;
    /// The events with a rule on derived tables that are built.
    std::vector<Asked> asked;
};

/// Receives the answers of a sweep, in order of time. At the first moment it receives all answers, later only those that
/// may have changed; all others still hold.
class ARBORIST_EXPORT SweepObserver {
public:
    virtual ~SweepObserver();

    /// Called first, after the attempt to read the rule set.
    virtual void OnRuleSetRead(Evidence::RuleSet ruleSet);
    /// Called before the first moment.
    virtual void OnPlan(SweepPlan plan);
    /// Called for each event that was decided again; if several events have one id, only for the first of them. The record
    /// of a rule on derived tables is from the moment at which the rule was asked last.
    virtual void OnEventDecided(std::int64_t moment, const Evidence::Event& event);
    /// Called for each tree in which the answer of an event has changed. `tree` is its number in the results of a
    /// detection, from 0. `result` is what a detection as of this moment finds, without TreeVerdict::open.
    virtual void OnTreeJudged(std::int64_t moment, std::size_t tree, const Evidence::TreeResult& result,
        const std::vector<Evidence::RootCause>& rootCauses);
    /// Called for a problem that belongs to no record of a rule, each time that the sweep meets the problem.
    virtual void OnTrouble(Evidence::Trouble trouble);
    /// Called last if the sweep was stopped: answers for `moment` may be missing, those for the seconds before it hold.
    virtual void OnStopped(std::int64_t moment);
};

#endif
