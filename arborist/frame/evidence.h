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

/// The evidence of a detection, as records that own their texts and outlive the engine: an event's evidence has its
/// alternatives, these have their rules, and a rule has the part of its family.
///
/// The engine fills a record while it decides, and passes it to the DetectionObserver once it is complete. Without an
/// observer it creates no record.
namespace Evidence {

/// The filter that rejected a rule: Rule::reason says which.
struct Filter {
    /// The value of the device that was looked for; empty if it is not known.
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
    /// What else went wrong on the way, each once: a node file that is missing although the condition was met.
    std::vector<Reason> notes;
    /// What the answer rests on: the worst of reason, notes, windows and statements.
    Check check = Check::NONE;
    /// The file and the message of the first problem with the event log while the rule ran; empty without one.
    std::string logProblem;
    /// Set if a filter rejected it.
    std::optional<Filter> filter;
    /// The unknown name in the rule (NO_COMMON_PART, NO_SUCH_DATABASE); the method that is none (NOT_SQL).
    std::optional<std::string> badName;
    /// The part of its family, in the order of `Family`; empty for a rule that was skipped.
    std::variant<std::monostate, Alarm, Command, Node, Code> part;

    /// The family of `part`.
    Family GetFamily() const { return static_cast<Family>(part.index()); }
    /// Sets `part` to an empty part of this family.
    ARBORIST_EXPORT void SetFamily(Family family);

    /// Adds to `notes` what they don't have yet.
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
    /// In the order of running. Rules of a group that were not reached follow, with the reason GROUP_ENDED.
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
    /// NONE if the reasons are those of its rules.
    Reason reason = Reason::NONE;
    /// In the order of running.
    std::vector<Alternative> alternatives;
    /// What the answer rests on.
    Check check = Check::NONE;

    ARBORIST_COMPARABLE(Event)
};

} // namespace Evidence

#endif
