#include "diagnosis/rule_source/sections.h"

#include <set>

namespace diagnosis::rule_source {

namespace {

class TagList {
public:
    void AddChildrenOf(Element parent)
    {
        for (const Element child : Children(parent)) {
            if (mSeen.insert(child.Name()).second) {
                mTags.emplace_back(child.Name());
            }
        }
    }

    std::vector<std::string> Take() { return std::move(mTags); }

private:
    std::set<std::string_view> mSeen;
    std::vector<std::string> mTags;
};

} // namespace

const char* SectionName(SectionKind kind)
{
    static constexpr std::array<const char*, SECTION_KINDS.size()> NAMES = {"EventRules", "RuleList",
        "EventFaultDescriptions", "EventSolutions", "RepairDescriptions", "RuleCommonPart"};
    return NAMES[static_cast<std::size_t>(kind)];
}

Section FindSection(Element root, const char* name, const std::string& tag)
{
    const Element section = root.FirstChild(name);
    return {section, section.FirstChild(tag.c_str())};
}

std::vector<std::string> TagsOf(Element treeRoot, Element ruleRoot)
{
    TagList tags;
    tags.AddChildrenOf(treeRoot);
    for (const SectionKind kind : SECTION_KINDS) {
        tags.AddChildrenOf(ruleRoot.FirstChild(SectionName(kind)));
    }
    return tags.Take();
}

} // namespace diagnosis::rule_source
