#include <algorithm>

#include "diagnosis/rule_set/schema.h"
#include "diagnosis/rule_set/word_names.h"
#include "diagnosis/rule_set/xml_lines.h"

namespace diagnosis::rule_set {

namespace {

using rule_source::ChildWord;
using rule_source::ElementWords;
using rule_source::SECTION_KINDS;

/// Writes the schema of one file.
class RelaxNgWriter {
public:
    std::string Text(RuleFileKind kind)
    {
        const std::string start = XmlLines("start", kind == RuleFileKind::TREES ? TreeRoot() : RuleRoot());
        std::string defines;
        mNames.ForEach([&](const ElementWords& words, const std::string& name) {
            defines += XmlLines("define name=\"" + name + "\"", Content(words));
        });
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<!-- Written by \"arborist rules schema\". -->\n"
            + XmlLines("grammar xmlns=\"http://relaxng.org/ns/structure/1.0\" "
                      "datatypeLibrary=\"http://www.w3.org/2001/XMLSchema-datatypes\"",
                start + defines);
    }

private:
    std::string TreeRoot()
    {
        return OfAnyName(Version() + XmlLines("zeroOrMore", OfAnyName(Reference(rule_source::WordsOfTreeTag(), "trees"))));
    }

    std::string RuleRoot()
    {
        std::string sections;
        for (const rule_source::SectionKind kind : SECTION_KINDS) {
            const std::string name = rule_source::SectionName(kind);
            const std::string tags = XmlLines("zeroOrMore",
                OfAnyName(Reference(*rule_source::WordsOfSectionTag(name), name)));
            sections += XmlLines("optional", XmlLines("element name=\"" + name + "\"", tags));
        }
        return OfAnyName(Version() + XmlLines("interleave", sections));
    }

    static std::string Version() { return XmlLines("optional", XmlLines("attribute name=\"version\"")); }

    static std::string OfAnyName(const std::string& content) { return XmlLines("element", XmlLines("anyName") + content); }

    std::string Reference(const ElementWords& words, std::string_view element)
    {
        return IsText(words) ? XmlLines("text")
                             : XmlLines("ref name=\"" + mNames.NameOf(words, element) + "\"");
    }

    std::string Content(const ElementWords& words)
    {
        const std::string content = Attributes(words) + Children(words);
        return content.empty() ? XmlLines("empty") : content;
    }

    static std::string Attributes(const ElementWords& words)
    {
        std::string text;
        for (const std::string_view name : words.attributes) {
            std::string values;
            for (const std::string_view value : words.ValuesOf(name)) {
                values += "<value type=\"string\">" + std::string(value) + "</value>\n";
            }
            const std::string attribute = XmlLines("attribute name=\"" + std::string(name) + "\"",
                values.empty() ? "" : XmlLines("choice", values));
            text += words.NeedsAttribute(name) ? attribute : XmlLines("optional", attribute);
        }
        return text;
    }

    std::string Children(const ElementWords& words)
    {
        const bool hasSingle =
            std::any_of(words.children.begin(), words.children.end(), [](const ChildWord& word) { return word.isSingle; });
        const std::string text = hasSingle ? Interleaved(words) : AnyOf(words);
        const std::size_t count = words.children.size() + (words.others == nullptr ? 0 : 1);
        return !hasSingle || count < 2 ? text : XmlLines("interleave", text);
    }

    std::string Element(const ChildWord& word)
    {
        return XmlLines("element name=\"" + std::string(word.name) + "\"", Reference(*word.words, word.name));
    }

    std::string Interleaved(const ElementWords& words)
    {
        std::string text;
        for (const ChildWord& word : words.children) {
            const bool isNeeded = words.NeedsChild(word.name);
            const char* const wrapper = word.isSingle ? "optional" : isNeeded ? "oneOrMore" : "zeroOrMore";
            text += word.isSingle && isNeeded ? Element(word) : XmlLines(wrapper, Element(word));
        }
        return text;
    }

    // Any number of children in any order.
    std::string AnyOf(const ElementWords& words)
    {
        std::string choices;
        std::string names;
        for (const ChildWord& word : words.children) {
            choices += Element(word);
            names += "<name>" + std::string(word.name) + "</name>\n";
        }
        if (words.others != nullptr) {
            const std::string anyName = XmlLines("anyName", names.empty() ? "" : XmlLines("except", names));
            choices += XmlLines("element", anyName + Reference(*words.others, names.empty() ? "tree" : "undeveloped"));
        }
        const bool isChoice = words.children.size() + (words.others == nullptr ? 0 : 1) > 1;
        return choices.empty() ? ""
                               : XmlLines(words.neededChildren.empty() ? "zeroOrMore" : "oneOrMore",
                                     isChoice ? XmlLines("choice", choices) : choices);
    }

    WordNames mNames;
};

} // namespace

std::string RelaxNgOf(RuleFileKind kind)
{
    return RelaxNgWriter().Text(kind);
}

} // namespace diagnosis::rule_set
