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

/// An attribute that means something for a few values only.
struct AttributeValues {
    std::string_view attribute;
    std::span<const std::string_view> values;
};

/// The words that are read in an element of one kind.
struct ElementWords {
    /// Its attributes.
    std::span<const std::string_view> attributes = {};
    std::span<const ChildWord> children = {};
    /// For children of any other name; null if they are not allowed.
    const ElementWords* others = nullptr;
    /// Attributes and children without which the element, or nearly all that it says, is skipped.
    std::span<const std::string_view> neededAttributes = {};
    std::span<const std::string_view> neededChildren = {};
    std::span<const AttributeValues> values = {};

    const ChildWord* FindChild(const char* name) const;
    bool HasAttribute(const char* name) const;
    bool NeedsAttribute(std::string_view name) const;
    bool NeedsChild(std::string_view name) const;
    /// The values of an attribute that mean something; empty if any does.
    std::span<const std::string_view> ValuesOf(std::string_view attribute) const;
};

/// The words below an element of the tag in the tree file.
const ElementWords& WordsOfTreeTag();
/// The words below an element of the tag in a section of the rule file; null for another name.
const ElementWords* WordsOfSectionTag(std::string_view section);

} // namespace diagnosis::rule_source

#endif
