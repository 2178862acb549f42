#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_GRAMMAR_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_GRAMMAR_H

#include <span>
#include <string_view>

#include "diagnosis/rule_source/element.h"

namespace diagnosis::rule_source {

struct ElementWords;

/// The name of a child that an element may have.
struct ChildWord {
    std::string_view name;
    /// The words that such a child may contain.
    const ElementWords* words;
    /// True if only the first one is read.
    bool isSingle;
};

/// The words that are read in an element of one kind.
struct ElementWords {
    /// Its attributes.
    std::span<const std::string_view> attributes = {};
    std::span<const ChildWord> children = {};
    /// For children of any other name; null if they are not allowed.
    const ElementWords* others = nullptr;

    const ChildWord* FindChild(std::string_view name) const;
    bool HasAttribute(std::string_view name) const;
};

/// The words below an element of the tag in the tree file.
const ElementWords& WordsOfTreeTag();
/// The words below an element of the tag in a section of the rule file; null for another name.
const ElementWords* WordsOfSectionTag(std::string_view section);

} // namespace diagnosis::rule_source

#endif
