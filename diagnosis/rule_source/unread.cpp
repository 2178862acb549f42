#include "diagnosis/rule_source/unread.h"

#include <cstdint>

#include <tinyxml2.h>

namespace diagnosis::rule_source {

namespace {

using tinyxml2::XMLAttribute;
using tinyxml2::XMLElement;
using tinyxml2::XMLNode;

// The first element from `node` on among its siblings.
const XMLElement* ElementFrom(const XMLNode* node)
{
    while (node != nullptr && node->ToElement() == nullptr) {
        node = node->NextSibling();
    }
    return node == nullptr ? nullptr : node->ToElement();
}

/// Visits elements in the order of the file, in which they lie in memory. Asks the library directly: this visits every
/// element and attribute of a file.
class Walk {
public:
    explicit Walk(Unread& unread) : mUnread(unread) {}

    void Look(const XMLElement* top, const ElementWords& words)
    {
        Enter(*top, words);
        while (!mOpen.empty()) {
            if (const XMLElement* const child = mOpen.back().next) {
                mOpen.back().next = ElementFrom(child->NextSibling());
                LookAtChild(*child);
            } else {
                mOpen.pop_back();
            }
        }
    }

private:
    /// An element of which not all children were visited.
    struct Open {
        const ElementWords* words;
        const XMLElement* next;
        /// A bit for each word that a child had; no element has more words than there are bits.
        std::uint64_t seen;
    };

    void Enter(const XMLElement& element, const ElementWords& words)
    {
        for (const XMLAttribute* attribute = element.FirstAttribute(); attribute != nullptr;
             attribute = attribute->Next()) {
            if (!words.HasAttribute(attribute->Name())) {
                mUnread.attributes.push_back({Element(&element), Attribute(attribute), &words});
            }
        }
        if (const XMLElement* const first = ElementFrom(element.FirstChild())) {
            mOpen.push_back({&words, first, 0});
        }
    }

    void LookAtChild(const XMLElement& child)
    {
        Open& open = mOpen.back();
        const ChildWord* const word = open.words->FindChild(child.Name());
        if (word == nullptr && open.words->others == nullptr) {
            mUnread.children.push_back({Element(&child), open.words});
            return;
        }
        if (word != nullptr && word->isSingle) {
            const std::uint64_t bit = std::uint64_t{1} << static_cast<unsigned int>(word - open.words->children.data());
            if ((open.seen & bit) != 0) {
                mUnread.repeated.push_back(Element(&child));
            }
            open.seen |= bit;
        }
        Enter(child, word != nullptr ? *word->words : *open.words->others);
    }

    Unread& mUnread;
    std::vector<Open> mOpen;
};

} // namespace

void Unread::Look(Element element, const ElementWords& words)
{
    if (element) {
        Walk(*this).Look(element.Get(), words);
    }
}

} // namespace diagnosis::rule_source
