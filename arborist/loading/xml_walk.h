#ifndef ARBORIST_LOADING_XML_WALK_H
#define ARBORIST_LOADING_XML_WALK_H

#include <initializer_list>
#include <string>
#include <vector>

#include <tinyxml2.h>

/// Functions with which all parsers of a rule set walk its XML: each level reads the first child of a name, or all of
/// them in order. Names must match exactly, case included.
namespace XmlWalk {

/// Range of the children of an element, for a range-based loop: all, or those of one name. Empty for a null parent.
class Children {
public:
    class Iterator {
    public:
        Iterator(const tinyxml2::XMLElement* element, const char* name) : mElement(element), mName(name) {}
        const tinyxml2::XMLElement& operator*() const { return *mElement; }
        Iterator& operator++()
        {
            mElement = mElement->NextSiblingElement(mName);
            return *this;
        }
        bool operator!=(const Iterator& other) const { return mElement != other.mElement; }

    private:
        const tinyxml2::XMLElement* mElement;
        const char* mName;
    };

    explicit Children(const tinyxml2::XMLElement* parent, const char* name = nullptr)
        : mFirst(parent == nullptr ? nullptr : parent->FirstChildElement(name)), mName(name)
    {
    }
    explicit Children(const tinyxml2::XMLElement& parent, const char* name = nullptr) : Children(&parent, name) {}

    Iterator begin() const { return {mFirst, mName}; }
    Iterator end() const { return {nullptr, mName}; }

private:
    const tinyxml2::XMLElement* mFirst;
    const char* mName;
};

/// A name and the place for the first child with that name; see FindFirstChildren.
struct ChildSlot {
    const char* name;
    const tinyxml2::XMLElement** child;
};

/// A name and the place for the text of that attribute; see ReadAttributes.
struct AttributeSlot {
    const char* name;
    std::string* text;
};

bool IsNamed(const tinyxml2::XMLElement& element, const char* name);

/// The first element named `tag` in the first `section` of the root; null if either is missing.
const tinyxml2::XMLElement* FindTagElement(
    const tinyxml2::XMLDocument& document, const char* section, const std::string& tag);

/// Finds the first child of each name in one walk over the children; asking the XML library for each name would walk
/// them again each time. A slot without a child keeps its null.
void FindFirstChildren(const tinyxml2::XMLElement& parent, std::initializer_list<ChildSlot> slots);

/// Assigns each attribute that is present, an empty one included, and leaves the other texts unchanged. An attribute
/// can't occur twice: the XML library refuses such a file.
void ReadAttributes(const tinyxml2::XMLElement& element, std::initializer_list<AttributeSlot> slots);

/// The value of an attribute; empty when it is absent.
std::string Attribute(const tinyxml2::XMLElement& element, const char* name);

/// The "id" attributes of the children of this name, in order; a child without one is skipped. A null parent has none.
std::vector<std::string> ChildIds(const tinyxml2::XMLElement* parent, const char* name);

/// The text of an element; null for a null element and for one without text. An empty CDATA section is text.
const char* TextOf(const tinyxml2::XMLElement* element);

/// The text of the first child of this name; null when there is no such child or no text in it.
const char* ChildText(const tinyxml2::XMLElement& parent, const char* name);

/// Assigns the text of an element; leaves `target` unchanged if there is none.
void AssignText(const tinyxml2::XMLElement* element, std::string& target);

} // namespace XmlWalk

#endif
