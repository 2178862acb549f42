#include "diagnosis/rule_source/element.h"

#include <tinyxml2.h>

namespace diagnosis::rule_source {

namespace {

std::string_view OrEmpty(const char* text)
{
    return text == nullptr ? std::string_view() : std::string_view(text);
}

} // namespace

std::string_view Attribute::Name() const
{
    return mAttribute->Name();
}

std::string_view Attribute::Value() const
{
    return mAttribute->Value();
}

int Attribute::Line() const
{
    return mAttribute->GetLineNum();
}

Attribute Attribute::Next() const
{
    return Attribute(mAttribute->Next());
}

std::string_view Element::Name() const
{
    return mElement == nullptr ? std::string_view() : std::string_view(mElement->Name());
}

int Element::Line() const
{
    return mElement == nullptr ? 0 : mElement->GetLineNum();
}

const SourceFile* Element::File() const
{
    return mElement == nullptr ? nullptr : static_cast<const SourceFile*>(mElement->GetDocument()->GetUserData());
}

std::string_view Element::Text() const
{
    return mElement == nullptr ? std::string_view() : OrEmpty(mElement->GetText());
}

bool Element::HasText() const
{
    return mElement != nullptr && mElement->GetText() != nullptr;
}

Element Element::Parent() const
{
    return mElement == nullptr || mElement->Parent() == nullptr ? Element() : Element(mElement->Parent()->ToElement());
}

Element Element::FirstChild() const
{
    return FirstChild(nullptr);
}

Element Element::FirstChild(const char* name) const
{
    return mElement == nullptr ? Element() : Element(mElement->FirstChildElement(name));
}

Element Element::Next() const
{
    return Next(nullptr);
}

Element Element::Next(const char* name) const
{
    return mElement == nullptr ? Element() : Element(mElement->NextSiblingElement(name));
}

Attribute Element::FirstAttribute() const
{
    return mElement == nullptr ? Attribute() : Attribute(mElement->FirstAttribute());
}

Attribute Element::Find(const char* attribute) const
{
    return mElement == nullptr ? Attribute() : Attribute(mElement->FindAttribute(attribute));
}

std::string_view Element::Value(const char* attribute) const
{
    const Attribute found = Find(attribute);
    return found ? found.Value() : std::string_view();
}

std::optional<std::int32_t> Element::Number(const char* attribute) const
{
    int number = 0;
    if (mElement == nullptr || mElement->QueryIntAttribute(attribute, &number) != tinyxml2::XML_SUCCESS) {
        return std::nullopt;
    }
    return number;
}

} // namespace diagnosis::rule_source
