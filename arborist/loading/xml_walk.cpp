#include "arborist/loading/xml_walk.h"

#include <cstddef>
#include <cstring>

namespace {

// Most pairs of names differ in their first letter, so compare that first.
bool IsSameName(const char* left, const char* right)
{
    return left[0] == right[0] && std::strcmp(left, right) == 0;
}

} // namespace

namespace XmlWalk {

bool IsNamed(const tinyxml2::XMLElement& element, const char* name)
{
    return IsSameName(element.Name(), name);
}

const tinyxml2::XMLElement* FindTagElement(
    const tinyxml2::XMLDocument& document, const char* section, const std::string& tag)
{
    const tinyxml2::XMLElement* root = document.RootElement();
    const tinyxml2::XMLElement* sectionElement = root == nullptr ? nullptr : root->FirstChildElement(section);
    return sectionElement == nullptr ? nullptr : sectionElement->FirstChildElement(tag.c_str());
}

void FindFirstChildren(const tinyxml2::XMLElement& parent, std::initializer_list<ChildSlot> slots)
{
    std::size_t missing = slots.size();
    for (const tinyxml2::XMLElement& child : Children(parent)) {
        const char* name = child.Name();
        for (const ChildSlot& slot : slots) {
            if (*slot.child == nullptr && IsSameName(slot.name, name)) {
                *slot.child = &child;
                --missing;
                break;
            }
        }
        if (missing == 0) {
            return;
        }
    }
}

void ReadAttributes(const tinyxml2::XMLElement& element, std::initializer_list<AttributeSlot> slots)
{
    for (const tinyxml2::XMLAttribute* attribute = element.FirstAttribute(); attribute != nullptr;
         attribute = attribute->Next()) {
        const char* name = attribute->Name();
        for (const AttributeSlot& slot : slots) {
            if (IsSameName(slot.name, name)) {
                *slot.text = attribute->Value();
                break;
            }
        }
    }
}

std::string Attribute(const tinyxml2::XMLElement& element, const char* name)
{
    const char* value = element.Attribute(name);
    return value == nullptr ? "" : value;
}

std::vector<std::string> ChildIds(const tinyxml2::XMLElement* parent, const char* name)
{
    std::vector<std::string> ids;
    for (const tinyxml2::XMLElement& child : Children(parent, name)) {
        if (const char* id = child.Attribute("id")) {
            ids.emplace_back(id);
        }
    }
    return ids;
}

const char* TextOf(const tinyxml2::XMLElement* element)
{
    return element == nullptr ? nullptr : element->GetText();
}

const char* ChildText(const tinyxml2::XMLElement& parent, const char* name)
{
    return TextOf(parent.FirstChildElement(name));
}

void AssignText(const tinyxml2::XMLElement* element, std::string& target)
{
    if (const char* text = TextOf(element)) {
        target = text;
    }
}

} // namespace XmlWalk
