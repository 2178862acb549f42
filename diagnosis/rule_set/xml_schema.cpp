#include <algorithm>
#include <set>

#include "diagnosis/rule_set/schema.h"
#include "diagnosis/rule_set/word_names.h"
#include "diagnosis/rule_set/xml_lines.h"
#include "diagnosis/text/markup.h"

namespace diagnosis::rule_set {

namespace {

using rule_source::ChildWord;
using rule_source::Children;
using rule_source::Element;
using rule_source::ElementWords;
using rule_source::RuleSetFiles;
using rule_source::SECTION_KINDS;

/// The names in two files that may be any.
struct AnyNames {
    std::string treeRoot = "FaultTrees";
    std::string ruleRoot = "FaultTreeRules";
    std::set<std::string> trees;
    std::set<std::string> undeveloped;
    std::set<std::string> otherTags;
};

AnyNames NamesIn(const RuleSetFiles& files, const std::string& tag)
{
    AnyNames names;
    if (const Element root = files.TreeRoot()) {
        names.treeRoot = root.Name();
    }
    if (const Element root = files.RuleRoot()) {
        names.ruleRoot = root.Name();
    }
    for (const Element tree : Children(files.TreeRoot().FirstChild(tag.c_str()))) {
        names.trees.emplace(tree.Name());
    }
    for (const auto& event : rule_source::ReadTrees(files.TreeRoot().FirstChild(tag.c_str())).events) {
        if (event.kind == rule_source::EventKind::UNDEVELOPED) {
            names.undeveloped.emplace(event.element.Name());
        }
    }
    for (const std::string& other : rule_source::TagsOf(files.TreeRoot(), files.RuleRoot())) {
        if (other != tag) {
            names.otherTags.insert(other);
        }
    }
    if (names.trees.empty()) {
        names.trees.insert("tree");
    }
    return names;
}

std::string ElementLine(const std::string& name, const std::string& type, const char* occurs = "")
{
    return XmlLines("xs:element name=\"" + Markup(name) + "\"" + (type.empty() ? "" : " type=\"" + type + "\"") + occurs);
}

// Any number of children in any order.
std::string AnyOf(const std::string& children, const char* least = " minOccurs=\"0\"")
{
    return XmlLines(std::string("xs:choice") + least + " maxOccurs=\"unbounded\"", children);
}

std::string AttributeLines(const ElementWords& words, std::string_view name)
{
    const std::string start = "xs:attribute name=\"" + std::string(name) + "\""
        + (words.NeedsAttribute(name) ? " use=\"required\"" : "");
    std::string values;
    for (const std::string_view value : words.ValuesOf(name)) {
        values += XmlLines("xs:enumeration value=\"" + std::string(value) + "\"");
    }
    return values.empty()
        ? XmlLines(start + " type=\"xs:string\"")
        : XmlLines(start, XmlLines("xs:simpleType", XmlLines("xs:restriction base=\"xs:string\"", values)));
}

/// Writes the schema of one tag.
class XmlSchemaWriter {
public:
    XmlSchemaWriter(AnyNames names, std::string tag) : mAnyNames(std::move(names)), mTag(std::move(tag)) {}

    std::string Text()
    {
        const std::string trees = Tag(rule_source::WordsOfTreeTag(), "trees");
        std::string text = mAnyNames.treeRoot == mAnyNames.ruleRoot
            ? Root(mAnyNames.treeRoot, trees + Sections())
            : Root(mAnyNames.treeRoot, trees) + Root(mAnyNames.ruleRoot, Sections());
        mNames.ForEach([&](const ElementWords& words, const std::string& name) {
            text += XmlLines("xs:complexType name=\"" + name + "\"", ChildrenOf(words) + Attributes(words));
        });
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- Written by \"arborist rules schema\" for one tag. -->\n"
            + XmlLines("xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"", text);
    }

private:
    static std::string Root(const std::string& name, const std::string& children)
    {
        return XmlLines("xs:element name=\"" + Markup(name) + "\"",
            XmlLines("xs:complexType",
                AnyOf(children) + XmlLines("xs:attribute name=\"version\" type=\"xs:string\"")));
    }

    // The tag with its words, and other tags with any content.
    std::string Tag(const ElementWords& words, const std::string& section)
    {
        std::string text = ElementLine(mTag, TypeOf(words, section));
        for (const std::string& other : mAnyNames.otherTags) {
            text += ElementLine(other, "");
        }
        return text;
    }

    std::string Sections()
    {
        std::string text;
        for (const rule_source::SectionKind kind : SECTION_KINDS) {
            const std::string name = rule_source::SectionName(kind);
            text += XmlLines("xs:element name=\"" + name + "\"",
                XmlLines("xs:complexType", AnyOf(Tag(*rule_source::WordsOfSectionTag(name), name))));
        }
        return text;
    }

    std::string TypeOf(const ElementWords& words, std::string_view element)
    {
        return IsText(words) ? "xs:string" : mNames.NameOf(words, element);
    }

    static std::string Attributes(const ElementWords& words)
    {
        std::string text;
        for (const std::string_view name : words.attributes) {
            text += AttributeLines(words, name);
        }
        return text;
    }

    // Children without an order can only be counted if each occurs at most once.
    std::string ChildrenOf(const ElementWords& words)
    {
        const bool isAll = words.others == nullptr
            && std::all_of(words.children.begin(), words.children.end(), [](const ChildWord& word) { return word.isSingle; });
        std::string text;
        for (const ChildWord& word : words.children) {
            const bool isOptional = isAll && !words.NeedsChild(word.name);
            text += ElementLine(std::string(word.name), TypeOf(*word.words, word.name), isOptional ? " minOccurs=\"0\"" : "");
        }
        text += OtherChildren(words);
        return text.empty() ? ""
            : isAll         ? XmlLines("xs:all", text)
                            : AnyOf(text, words.neededChildren.empty() ? " minOccurs=\"0\"" : "");
    }

    std::string OtherChildren(const ElementWords& words)
    {
        std::string text;
        if (words.others != nullptr && !IsText(*words.others)) {
            const bool isTree = words.children.empty();
            for (const std::string& name : isTree ? mAnyNames.trees : mAnyNames.undeveloped) {
                text += ElementLine(name, TypeOf(*words.others, isTree ? "tree" : "undeveloped"));
            }
        }
        return text;
    }

    AnyNames mAnyNames;
    std::string mTag;
    WordNames mNames;
};

} // namespace

std::string XmlSchemaOf(const RuleSetFiles& files, const std::string& tag)
{
    return XmlSchemaWriter(NamesIn(files, tag), tag).Text();
}

} // namespace diagnosis::rule_set
