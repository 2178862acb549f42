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
    /// The first moment, in seconds since the epoch, included as is the last.
    std::int64_t from = 0;
    std::int64_t until = 0; ///< The last moment.
    /// The derived tables are built anew for at most so many moments: first for the events whose tables change least often.
    std::size_t mostTableMoments = 1000;
    /// Rules that can't be swept, as their answer may change without a change of the log: a statement that reads the
    /// clock. For the name of each, a word for the reason.
    std::map<std::string, std::string> unsweptRules = {};
    /// Derived tables are built only for the events of the trees with this id, and for events that ask a rule of this name.
    /// Both empty: for all.
    std::string tree = {};
    std::string rule = {}; ///< See `tree`.
};

/// What a sweep will ask, and what it can't.
struct SweepPlan {
    /// A rule whose answers at the moments between are not known, and all that rests on it.
    struct Unswept {
        std::string eventId; ///< The event that names the rule.
        std::string ruleName; ///< The rule.
        /// "log_damaged", "odd_times", "too_many_moments", a word of SweepRequest::unsweptRules, or "not_asked_for": the
        /// request leaves out all trees and rules that could tell of it.
        std::string reason;
        /// Of a rule on derived tables that are not built: at how many moments after the first those of its event change.
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
        std::size_t times = 0; ///< At how many moments these rules are asked, the first included.
    };

    /// The number of different moments after the first.
    std::size_t moments = 0;
    /// The number of moments after the first for which derived tables are built.
    std::size_t tableMoments = 0;
    /// The rules that can't be swept, by event and rule.
    std::vector<Unswept> unswept;
    /// The numbers of the trees with an event that has such a rule, in ascending order.
    std::vector<std::size_t> unsweptTrees;
    /// The events with a rule on derived tables that are built.
    std::vector<Asked> asked;
};

/// Receives the answers of a sweep, in order of time. At the first moment it receives all of them, later only what may
/// have changed; everything else still holds.
class ARBORIST_EXPORT SweepObserver {
public:
    virtual ~SweepObserver();

    /// Called first, after the attempt to read the rule set.
    virtual void OnRuleSetRead(Evidence::RuleSet ruleSet);
    /// Called before the first moment.
    virtual void OnPlan(SweepPlan plan);
    /// Called for each event that was decided again; for several events with one id, for the first of them. The record of a
    /// rule on derived tables is that of the moment at which it was asked last.
    virtual void OnEventDecided(std::int64_t moment, const Evidence::Event& event);
    /// Called for each tree with another answer of an event than before. `tree` is its number in the results of a
    /// detection, from 0. `result` is what a detection as of this moment finds, without TreeVerdict::open.
    virtual void OnTreeJudged(std::int64_t moment, std::size_t tree, const Evidence::TreeResult& result,
        const std::vector<Evidence::RootCause>& rootCauses);
    /// Called for a problem that belongs to no record of a rule, each time that it is met.
    virtual void OnTrouble(Evidence::Trouble trouble);
    /// Called last if the sweep was stopped: answers of this moment may be missing, those of the seconds before it hold.
    virtual void OnStopped(std::int64_t moment);
};

#endif
