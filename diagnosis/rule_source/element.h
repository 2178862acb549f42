#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_ELEMENT_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_ELEMENT_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace tinyxml2 {
class XMLAttribute;
class XMLElement;
} // namespace tinyxml2

namespace diagnosis::rule_source {

class SourceFile;

/// An attribute with its place in the file. Pass it by value. Null if there is none. Valid as long as its file.
class Attribute {
public:
    Attribute() = default;
    explicit Attribute(const tinyxml2::XMLAttribute* attribute) : mAttribute(attribute) {}

    explicit operator bool() const { return mAttribute != nullptr; }
    bool operator==(const Attribute& other) const = default;

    // The calls below are for attributes that are not null.
    std::string_view Name() const;
    /// With entities resolved.
    std::string_view Value() const;
    int Line() const;
    Attribute Next() const;

private:
    const tinyxml2::XMLAttribute* mAttribute = nullptr;
};

/// An element with its place in the file. Pass it by value. Null if there is none. Valid as long as its file, like the
/// texts that it returns.
///
/// A null element has no children, no attributes and no text, so that a chain of FirstChild needs no tests in between.
class Element {
public:
    Element() = default;
    explicit Element(const tinyxml2::XMLElement* element) : mElement(element) {}

    explicit operator bool() const { return mElement != nullptr; }
    bool operator==(const Element& other) const = default;

    std::string_view Name() const;
    /// The line on which it begins, from 1; 0 for a null element.
    int Line() const;
    /// Its file; null for a null element.
    const SourceFile* File() const;

    /// The text that the engine reads: the first piece of text, apart from comments. Empty if it reads none.
    std::string_view Text() const;
    /// True if the engine reads a text: an empty CDATA section is one, white space alone is not.
    bool HasText() const;

    Element Parent() const;
    Element FirstChild() const;
    Element FirstChild(const char* name) const;
    Element Next() const;
    Element Next(const char* name) const;

    Attribute FirstAttribute() const;
    Attribute Find(const char* attribute) const;
    bool Has(const char* attribute) const { return static_cast<bool>(Find(attribute)); }
    /// The value of an attribute; empty if it is missing.
    std::string_view Value(const char* attribute) const;
    /// A whole number as the engine reads those of "period" and "threshold": nothing for a missing attribute and for a
    /// text that is none.
    std::optional<std::int32_t> Number(const char* attribute) const;

    /// The element of the XML library, for this room alone.
    const tinyxml2::XMLElement* Get() const { return mElement; }

private:
    friend struct std::hash<Element>;

    const tinyxml2::XMLElement* mElement = nullptr;
};

/// The children of an element for a range-based loop: all of them, or those of one name.
class Children {
public:
    class Iterator {
    public:
        Iterator(Element element, const char* name) : mElement(element), mName(name) {}
        Element operator*() const { return mElement; }
        Iterator& operator++()
        {
            mElement = mElement.Next(mName);
            return *this;
        }
        bool operator!=(const Iterator& other) const { return !(mElement == other.mElement); }

    private:
        Element mElement;
        const char* mName;
    };

    explicit Children(Element parent, const char* name = nullptr) : mParent(parent), mName(name) {}

    Iterator begin() const { return {mParent.FirstChild(mName), mName}; }
    Iterator end() const { return {Element(), mName}; }

private:
    Element mParent;
    const char* mName;
};

/// The attributes of an element for a range-based loop, in order.
class Attributes {
public:
    class Iterator {
    public:
        explicit Iterator(Attribute attribute) : mAttribute(attribute) {}
        Attribute operator*() const { return mAttribute; }
        Iterator& operator++()
        {
            mAttribute = mAttribute.Next();
            return *this;
        }
        bool operator!=(const Iterator& other) const { return !(mAttribute == other.mAttribute); }

    private:
        Attribute mAttribute;
    };

    explicit Attributes(Element element) : mElement(element) {}

    Iterator begin() const { return Iterator(mElement.FirstAttribute()); }
    Iterator end() const { return Iterator(Attribute()); }

private:
    Element mElement;
};

} // namespace diagnosis::rule_source

template <>
struct std::hash<diagnosis::rule_source::Element> {
    std::size_t operator()(const diagnosis::rule_source::Element& element) const
    {
        return std::hash<const void*>()(element.mElement);
    }
};

#endif
