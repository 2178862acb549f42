#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_BINDINGS_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_BINDINGS_H

#include <map>
#include <string_view>
#include <vector>

#include "diagnosis/rule_source/element.h"

namespace diagnosis::rule_source {

struct Rule;
struct TreeEvent;

/// The name of a rule in an event's alternative.
struct RuleName {
    /// The "Rule-name" element.
    Element element;
    std::string_view name;
    /// The rule of this name; null if there is none.
    const Rule* rule = nullptr;
};

/// One alternative of an event's rules: an "or".
struct BindingAlternative {
    enum class Kind {
        SINGLE, ///< "singleRule"
        GROUP, ///< "multipleRule": all of its rules must be true
        UNKNOWN, ///< any other type: the engine keeps it, and it is never true
        DROPPED, ///< without a type
    };

    Element element;
    Kind kind = Kind::DROPPED;
    /// The names that the engine reads: one for a single rule.
    std::vector<RuleName> names;
};

/// The rules of one event: an "Event" of "EventRules".
struct Binding {
    Element element;
    /// Null, or without text, if the engine drops the entry.
    Element idElement;
    /// The id as written, including spaces at its ends.
    std::string_view id;
    bool isKept = false;
    /// An event of the id; null if no tree has one.
    const TreeEvent* event = nullptr;
    /// True if a later entry of the same id replaces it.
    bool isReplaced = false;
    /// In order, including those that the engine drops.
    std::vector<BindingAlternative> alternatives;
};

struct Bindings {
    /// In file order.
    std::vector<Binding> all;
    /// The entry that counts for each id, as an index into all.
    std::map<std::string_view, std::size_t> byId;

    /// Null for an event without an entry.
    const Binding* Find(std::string_view eventId) const
    {
        const auto found = byId.find(eventId);
        return found == byId.end() ? nullptr : &all[found->second];
    }
};

/// Reads the "Event" children of a tag element; null has none.
Bindings ReadBindings(Element tag);

} // namespace diagnosis::rule_source

#endif
