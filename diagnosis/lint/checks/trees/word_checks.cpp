#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

namespace {

using rule_source::Children;
using rule_source::ChildWord;
using rule_source::Element;
using rule_source::ElementWords;
using rule_source::RuleSet;
using rule_source::SECTION_KINDS;
using rule_source::SectionKind;
using rule_source::SectionName;
using rule_source::UnknownAttribute;
using rule_source::UnknownChild;

// ---- Repeated elements. ----

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
    for (const Element again : rules.unread.repeated) {
        ReportAgain(again, Quoted(again.Parent().Name()), report);
    }
}

// ---- Unknown words. ----

/// Finds near words for the first unknown ones only: a file of unknown words would take for ever.
class NearWords {
public:
    std::string ForChild(std::string_view name, const ElementWords& words)
    {
        NearNames near;
        for (const ChildWord& word : words.children) {
            near.Add(word.name);
        }
        return Near(name, near);
    }

    std::string ForAttribute(std::string_view name, const ElementWords& words)
    {
        NearNames near(words.attributes.begin(), words.attributes.end());
        return Near(name, near);
    }

private:
    static constexpr int MOST_LOOKED_FOR = 10'000;

    std::string Near(std::string_view name, NearNames& near)
    {
        return ++mLookedFor > MOST_LOOKED_FOR ? "" : near.Find(name);
    }

    int mLookedFor = 0;
};

bool IsGate(std::string_view name)
{
    return name == "Or-Gate" || name == "And-Gate";
}

// True for what another check reports in more detail.
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

// The check of sections reports sections whose names are nearly right.
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

// Removes an attribute that means nothing. Renames one with a near word, unless the element has that attribute, too.
FixOf FixOfAttribute(const UnknownAttribute& unknown, const std::string& near)
{
    return near.empty()                          ? FixOf::Removal()
        : unknown.element.Has(near.c_str()) ? FixOf()
                                            : FixOf::AttributeName(near);
}

void CheckWords(const Subject& subject, Report& report)
{
    NearWords near;
    CheckSections(subject.rules, report);
    for (const UnknownChild& child : subject.rules.unread.children) {
        if (!IsToldElsewhere(child.element)) {
            const std::string_view name = child.element.Name();
            report.Add(child.element, Quoted(name) + " in " + Quoted(child.element.Parent().Name()) + " is not read",
                {.near = near.ForChild(name, *child.words)});
        }
    }
    for (const UnknownAttribute& unknown : subject.rules.unread.attributes) {
        const std::string_view name = unknown.attribute.Name();
        if (name == "BeginFlag" && unknown.element.Name() == "SQLItem") {
            continue; // another check reports it in more detail
        }
        const std::string meant = near.ForAttribute(name, *unknown.words);
        report.Add(unknown.element, "the attribute " + Quoted(name) + " of " + Quoted(unknown.element.Name())
                + " is not read",
            {.attribute = unknown.attribute, .help = DidYouMean(meant), .fix = FixOfAttribute(unknown, meant)});
    }
}

constexpr Check CHECKS[] = {
    {"A103", Severity::WARNING, CheckClass::STATIC, "element of which only the first is read",
        "A second section, a second element of the tag, or a second element of any word of which only one is read: "
        "\"params\", \"condition\", \"sql\", a gate of the same kind and others.",
        "only the first one is read", CheckRepeated},
    {"A104", Severity::WARNING, CheckClass::STATIC, "element or attribute that is not read",
        "An element or attribute whose name means nothing in its place. Names are compared with case.",
        "it is skipped, with a line in the log only inside \"rule\" and \"commonPart\"", CheckWords},
};

} // namespace

std::span<const Check> WordChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
