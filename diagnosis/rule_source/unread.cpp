#include "diagnosis/rule_source/unread.h"

#include <cstdint>

namespace diagnosis::rule_source {

namespace {

struct Open {
    Element element;
    const ElementWords* words;
};

void LookAtAttributes(const Open& open, Unread& unread)
{
    for (const Attribute attribute : Attributes(open.element)) {
        if (!open.words->HasAttribute(attribute.Name())) {
            unread.attributes.push_back({open.element, attribute, open.words});
        }
    }
}

void LookAtChildren(const Open& open, std::vector<Open>& below, Unread& unread)
{
    std::uint64_t seen = 0; // a bit for each word; no element has more words than there are bits
    for (const Element child : Children(open.element)) {
        const ChildWord* const word = open.words->FindChild(child.Name());
        if (word == nullptr && open.words->others == nullptr) {
            unread.children.push_back({child, open.words});
            continue;
        }
        if (word != nullptr && word->isSingle) {
            const std::uint64_t bit = std::uint64_t{1} << static_cast<unsigned int>(word - open.words->children.data());
            if ((seen & bit) != 0) {
                unread.repeated.push_back(child);
            }
            seen |= bit;
        }
        below.push_back({child, word != nullptr ? word->words : open.words->others});
    }
}

} // namespace

void Unread::Look(Element element, const ElementWords& words)
{
    std::vector<Open> below;
    if (element) {
        below.push_back({element, &words});
    }
    while (!below.empty()) {
        const Open open = below.back();
        below.pop_back();
        LookAtAttributes(open, *this);
        LookAtChildren(open, below, *this);
    }
}

} // namespace diagnosis::rule_source
