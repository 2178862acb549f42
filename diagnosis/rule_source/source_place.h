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

/// Places in the text. As the XML library reports lines but no columns, these functions search the line again; they
/// return nothing if the line has the item several times, or not in the usual form.

/// The name in an element's start tag.
std::optional<SourcePlace> PlaceOfName(Element element);
/// The name in an element's end tag; nothing for an element that its start tag ends.
std::optional<SourcePlace> PlaceOfEndName(Element element);
/// The text of an element as written, with entities; nothing if it is not one piece of plain text.
std::optional<SourcePlace> PlaceOfText(Element element);
/// The value of an attribute as written, without its quotes. May be empty.
std::optional<SourcePlace> PlaceOfValue(Element element, Attribute attribute);
/// The name of an attribute.
std::optional<SourcePlace> PlaceOfAttributeName(Element element, Attribute attribute);
/// An attribute with the white space in front of it, which is removed with it.
std::optional<SourcePlace> PlaceOfAttribute(Element element, Attribute attribute);

} // namespace diagnosis::rule_source

#endif
