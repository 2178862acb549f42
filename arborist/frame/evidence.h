#ifndef ARBORIST_FRAME_EVIDENCE_H
#define ARBORIST_FRAME_EVIDENCE_H

#include <algorithm>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "arborist/arborist_export.h"
#include "arborist/frame/check.h"
#include "arborist/frame/comparable.h"
#include "arborist/frame/evidence_alarm.h"
#include "arborist/frame/evidence_code.h"
#include "arborist/frame/evidence_command.h"
#include "arborist/frame/evidence_node.h"
#include "arborist/frame/evidence_rule_set.h"
#include "arborist/frame/evidence_tree.h"
#include "arborist/frame/evidence_values.h"
#include "arborist/frame/evidence_words.h"

/// The evidence of a detection, as records that own their texts and outlive the engine: an Event has alternatives, an
/// Alternative has rules, and a Rule has the part of its family.
///
/// The engine fills a record while it decides, and passes the record to the DetectionObserver once it is complete. Without
/// an observer the engine creates no record.
namespace Evidence {

/// The filter that rejected a rule; Rule::reason says which filter it was.
struct Filter {
    /// The value that the filter looks for, the device's or the scene; empty if the value of the device is not known.
    std::string deviceValue;
    /// What the rule accepts or, for a black list, refuses.
    std::string ruleText;

    ARBORIST_COMPARABLE(Filter)
};

/// One rule as it was run for one event.
struct Rule {
    /// The name of the rule.
    std::string name;
    /// Its answer.
    Verdict verdict = Verdict::SKIPPED;
    /// The reason for the verdict. Each window and statement has a reason of its own.
    Reason reason = Reason::NONE;
    /// What else went wrong, each reason once: a node file that is missing although the condition was met, for instance.
    std::vector<Reason> notes;
    /// How reliable the answer is: the worst check of reason, notes, windows and statements.
    Check check = Check::NONE;
    /// The file and the message of the first problem with the event log while the rule ran; empty if there was no problem.
    std::string logProblem;
    /// Set if a filter rejected the rule.
    std::optional<Filter> filter;
    /// The name in the rule that is not known (NO_COMMON_PART, NO_SUCH_DATABASE), or the unknown method (NOT_SQL).
    std::optional<std::string> badName;
    /// The part of its family, in the order of `Family`; empty for a rule that was skipped.
    std::variant<std::monostate, Alarm, Command, Node, Code> part;

    /// The family of `part`.
    Family GetFamily() const { return static_cast<Family>(part.index()); }
    /// Sets `part` to an empty part of this family.
    ARBORIST_EXPORT void SetFamily(Family family);

    /// Adds a note to `notes` unless it is there already.
    void Note(Reason note)
    {
        if (std::find(notes.begin(), notes.end(), note) == notes.end()) {
            notes.push_back(note);
        }
    }

    ARBORIST_COMPARABLE(Rule)
};

/// One way for an event to be decided: one rule, or the rules of a "multipleRule", which must all fire.
struct Alternative {
    /// True for the rules of a "multipleRule".
    bool inGroup = false;
    /// The rules in the order of running. Rules of a group that were not reached come last, with the reason GROUP_ENDED.
    std::vector<Rule> rules;

    ARBORIST_COMPARABLE(Alternative)
};

/// How an event with an entry in the event rules was decided.
struct Event {
    /// The id of the event.
    std::string id;
    /// The name of the event.
    std::string name;
    /// True if its rules made it true.
    bool fired = false;
    /// Why no rule was run; NONE if rules were run: these have reasons of their own.
    Reason reason = Reason::NONE;
    /// The alternatives in the order of running.
    std::vector<Alternative> alternatives;
    /// How reliable the answer is.
    Check check = Check::NONE;

    ARBORIST_COMPARABLE(Event)
};

} // namespace Evidence

#endif
