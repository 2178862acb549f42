#include <cstdint>
#include <vector>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/rule_source/grammar.h"

namespace diagnosis::lint {

namespace {

using rule_source::Attribute;
using rule_source::Attributes;
using rule_source::Children;
using rule_source::ChildWord;
using rule_source::Element;
using rule_source::ElementWords;
using rule_source::RuleSet;
using rule_source::SECTION_KINDS;
using rule_source::SectionKind;
using rule_source::SectionName;

struct Place {
    Element element;
    const ElementWords* words;
};

/// Calls `onElement(element, words)` for the tag's elements and each element below them whose words are known, and
/// `onChild(element, words, child, word)` for each of its children, `word` being null for an unknown one. No recursion:
/// what is skipped may be nested as deep as the XML library goes.
template <typename OnElement, typename OnChild>
void Walk(const RuleSet& rules, OnElement onElement, OnChild onChild)
{
    std::vector<Place> open;
    if (rules.treeTag) {
        open.push_back({rules.treeTag, &rule_source::WordsOfTreeTag()});
    }
    for (const SectionKind kind : SECTION_KINDS) {
        if (const Element tag = rules.SectionOf(kind).tag) {
            open.push_back({tag, rule_source::WordsOfSectionTag(SectionName(kind))});
        }
    }
    while (!open.empty()) {
        const Place place = open.back();
        open.pop_back();
        onElement(place.element, *place.words);
        for (const Element child : Children(place.element)) {
            const ChildWord* const word = place.words->FindChild(child.Name());
            onChild(place.element, *place.words, child, word);
            const ElementWords* const words = word != nullptr ? word->words : place.words->others;
            if (words != nullptr) {
                open.push_back({child, words});
            }
        }
    }
}

// ---- Elements that stand again. ----

void ReportAgain(Element element, const std::string& where, Report& report)
{
    report.Add(element, "another " + Quoted(element.Name()) + " in " + where + ", of which only the first is read",
        {.help = "put its content into the first one"});
}

void CheckRepeatedTag(Element tag, const RuleSet& rules, Report& report)
{
    for (Element again = tag.Next(rules.tag.c_str()); again; again = again.Next(rules.tag.c_str())) {
        ReportAgain(again, Quoted(tag.Parent().Name()), report);
    }
}

void CheckRepeated(const Subject& subject, Report& report)
{
    const RuleSet& rules = subject.rules;
    CheckRepeatedTag(rules.treeTag, rules, report);
    for (const SectionKind kind : SECTION_KINDS) {
        const Element section = rules.SectionOf(kind).element;
        for (Element again = section.Next(SectionName(kind)); again; again = again.Next(SectionName(kind))) {
            ReportAgain(again, "the rule file", report);
        }
        CheckRepeatedTag(rules.SectionOf(kind).tag, rules, report);
    }
    std::uint64_t seen = 0; // a bit for each word of the element; none has more words than bits
    Walk(rules, [&seen](Element, const ElementWords&) { seen = 0; },
        [&](Element element, const ElementWords& words, Element child, const ChildWord* word) {
            if (word == nullptr || !word->isSingle) {
                return;
            }
            const std::uint64_t bit = std::uint64_t{1} << static_cast<unsigned int>(word - words.children.data());
            if ((seen & bit) != 0) {
                ReportAgain(child, Quoted(element.Name()), report);
            }
            seen |= bit;
        });
}

// ---- Words that nobody knows. ----

/// Finds near words for the first unknown ones only, as a file of unknown words would take for ever.
class WordHelp {
public:
    std::string ForChild(std::string_view name, const ElementWords& words)
    {
        NearNames near;
        for (const ChildWord& word : words.children) {
            near.Add(word.name);
        }
        return Help(name, near);
    }

    std::string ForAttribute(std::string_view name, const ElementWords& words)
    {
        NearNames near;
        for (const std::string_view word : words.attributes) {
            near.Add(word);
        }
        return Help(name, near);
    }

private:
    static constexpr int MOST_LOOKED_FOR = 10'000;

    std::string Help(std::string_view name, NearNames& near)
    {
        return ++mLookedFor > MOST_LOOKED_FOR ? "" : near.Help(name);
    }

    int mLookedFor = 0;
};

bool IsGate(std::string_view name)
{
    return name == "Or-Gate" || name == "And-Gate";
}

// True for an element that another check reports in more detail.
bool IsToldElsewhere(Element child)
{
    const Element parent = child.Parent();
    const std::string_view name = child.Name();
    const std::string_view in = parent.Name();
    const bool isFirstOfTest =
        in == "or" && parent.Value("type") == "single_logic" && parent.FirstChild() == child;
    const bool isEntryOfAnother = (in == "Solutions" && name == "description")
        || ((in == "FaultDescriptions" || in == "Descriptions") && name == "solution");
    return IsGate(name) || isFirstOfTest || isEntryOfAnother || (in == "alarmId" && name == "BeginFlag");
}

// In the tree file every element of a tag is a tree, and every child of a gate an event.
void CheckChild(Element element, const ElementWords& words, Element child, WordHelp& help, Report& report)
{
    if (words.others == nullptr && !IsToldElsewhere(child)) {
        report.Add(child, Quoted(child.Name()) + " in " + Quoted(element.Name()) + " is not read",
            {.help = help.ForChild(child.Name(), words)});
    }
}

void CheckAttributes(Element element, const ElementWords& words, WordHelp& help, Report& report)
{
    for (const Attribute attribute : Attributes(element)) {
        const std::string_view name = attribute.Name();
        const bool isToldElsewhere = name == "BeginFlag" && element.Name() == "SQLItem";
        if (words.HasAttribute(name) || isToldElsewhere) {
            continue;
        }
        const std::string near = help.ForAttribute(name, words);
        report.Add(element, "the attribute " + Quoted(name) + " of " + Quoted(element.Name()) + " is not read",
            {.attribute = attribute, .help = near, .fix = near.empty() ? FixOf::Removal() : FixOf()});
    }
}

// The check of sections reports sections with similar names.
void CheckSections(const RuleSet& rules, Report& report)
{
    NearNames sections;
    for (const SectionKind kind : SECTION_KINDS) {
        sections.Add(SectionName(kind));
    }
    for (const Element child : Children(rules.files.RuleRoot())) {
        if (rule_source::WordsOfSectionTag(child.Name()) == nullptr && sections.Find(child.Name()).empty()) {
            report.Add(child, Quoted(child.Name()) + " is no section of the rule file and is not read");
        }
    }
}

void CheckWords(const Subject& subject, Report& report)
{
    WordHelp help;
    CheckSections(subject.rules, report);
    Walk(subject.rules,
        [&](Element element, const ElementWords& words) { CheckAttributes(element, words, help, report); },
        [&](Element element, const ElementWords& words, Element child, const ChildWord* word) {
            if (word == nullptr) {
                CheckChild(element, words, child, help, report);
            }
        });
}

constexpr Check CHECKS[] = {
    {"A103", Severity::WARNING, CheckClass::STATIC, "element of which only the first is read",
        "A second section, a second element of the tag, or a second element of any word of which only one is read: "
        "\"params\", \"condition\", \"sql\", a gate of the same kind and others.",
        "only the first one is read", CheckRepeated},
    {"A104", Severity::WARNING, CheckClass::STATIC, "element or attribute that nobody reads",
        "An element or attribute whose name means nothing in its place. Names are compared with case.",
        "it is skipped; a line in the log tells of it in \"rule\" and \"commonPart\" only", CheckWords},
};

} // namespace

std::span<const Check> WordChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
