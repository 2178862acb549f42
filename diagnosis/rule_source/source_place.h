#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_SOURCE_PLACE_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_SOURCE_PLACE_H

#include <cstddef>
#include <optional>

#include "diagnosis/rule_source/source_file.h"

namespace diagnosis::rule_source {

/// A piece of a file's text, in bytes.
struct SourcePlace {
    std::size_t offset = 0;
    std::size_t length = 0;
};

/// Where things stand in the text. The XML library tells lines and no columns, so that they are looked for again:
/// nothing where the line holds what is looked for more than once, or not in the usual form.

/// The name in an element's start tag.
std::optional<SourcePlace> PlaceOfName(Element element);
/// The text of an element as the file writes it, entities unresolved; nothing where it is not one piece of plain text.
std::optional<SourcePlace> PlaceOfText(Element element);
/// The value of an attribute as the file writes it, without its quotes. May be empty.
std::optional<SourcePlace> PlaceOfValue(Element element, Attribute attribute);
/// An attribute with the white space in front of it: what goes when it is removed.
std::optional<SourcePlace> PlaceOfAttribute(Element element, Attribute attribute);

} // namespace diagnosis::rule_source

#endif
