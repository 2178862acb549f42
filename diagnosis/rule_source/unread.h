#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_UNREAD_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_UNREAD_H

#include <vector>

#include "diagnosis/rule_source/grammar.h"

namespace diagnosis::rule_source {

/// A child whose name the engine doesn't know in this place.
struct UnknownChild {
    Element element;
    /// The words of its parent.
    const ElementWords* words = nullptr;
};

/// An attribute with a name that the engine doesn't know in its element.
struct UnknownAttribute {
    Element element;
    Attribute attribute;
    /// The words of the element.
    const ElementWords* words = nullptr;
};

/// Elements and attributes that the engine ignores: their names are not in its grammar, or it reads only the first.
struct Unread {
    std::vector<UnknownChild> children;
    std::vector<UnknownAttribute> attributes;
    /// Later children of a word of which only the first one is read.
    std::vector<Element> repeated;

    /// Looks at an element with these words and at all below it. No recursion: what is passed over may be nested as deep
    /// as the XML library goes. A null element has nothing.
    void Look(Element element, const ElementWords& words);
};

} // namespace diagnosis::rule_source

#endif
