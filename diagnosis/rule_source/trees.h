#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_TREES_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_TREES_H

#include <cstddef>
#include <string_view>
#include <vector>

#include "diagnosis/rule_source/element.h"

namespace diagnosis::rule_source {

struct Binding;

enum class EventKind { INTERMEDIATE, BASIC, UNDEVELOPED };
enum class GateKind { NONE, OR, AND };

/// An event of a tree as the engine reads it.
struct TreeEvent {
    static constexpr std::size_t NO_PARENT = static_cast<std::size_t>(-1);

    Element element;
    EventKind kind = EventKind::UNDEVELOPED;
    /// The first child of its name, if there is one; likewise the next three.
    Element idElement;
    Element nameElement;
    Element userDefined;
    Element detectMode;
    /// Without spaces at both ends, as in the engine; idElement.Text() has the id as written.
    std::string_view id;
    /// The gate that the engine uses; null if there is none, and for all events but intermediate ones.
    Element gate;
    GateKind gateKind = GateKind::NONE;
    /// The entry of the event rules that counts for it; null if there is none.
    const Binding* binding = nullptr;
    /// The event whose gate it is a child of, as an index into Trees::events.
    std::size_t parent = NO_PARENT;
    /// One past the index of its last descendant.
    std::size_t end = 0;
    /// Index into Trees::trees.
    std::size_t tree = 0;
};

struct Tree {
    Element element;
    std::string_view id;
    /// The top event; null if it is missing, for which the engine drops the tree.
    Element top;
    /// True if the engine keeps it: it has a top event, an id, a version and a type.
    bool isKept = false;
    /// Its events in Trees::events, the top event first; none if it is not kept.
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// The trees of one tag in file order, including those that the engine drops.
struct Trees {
    std::vector<Tree> trees;
    /// The events of all kept trees, each before those below its gate.
    std::vector<TreeEvent> events;

    /// Calls `visit(index)` for each event of a gate, in order. `event` is an index into events.
    template <typename Visit>
    void ForEachChild(std::size_t event, Visit visit) const
    {
        for (std::size_t child = event + 1; child < events[event].end; child = events[child].end) {
            visit(child);
        }
    }
};

/// Reads the children of a tag element; null has none.
Trees ReadTrees(Element tag);

} // namespace diagnosis::rule_source

#endif
