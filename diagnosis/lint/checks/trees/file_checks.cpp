#include <set>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

namespace {

using rule_source::Children;
using rule_source::Element;
using rule_source::RuleSet;
using rule_source::Section;
using rule_source::SECTION_KINDS;
using rule_source::SectionKind;
using rule_source::SectionName;
using rule_source::SourceFile;

std::string FileName(const SourceFile& file)
{
    return file.Path().substr(file.Path().rfind('/') + 1);
}

void ReportUnreadable(const SourceFile* file, Report& report)
{
    if (file == nullptr || file->IsLoaded() || file->GetState() == SourceFile::State::TOO_DEEP) {
        return;
    }
    const bool isMalformed = file->GetState() == SourceFile::State::MALFORMED;
    report.AddToFile(*file, file->ProblemLine(),
        FileName(*file) + (isMalformed ? " is no well-formed XML: " : " can't be used: ") + file->Problem());
}

void CheckReadable(const Subject& subject, Report& report)
{
    ReportUnreadable(subject.rules.files.trees.get(), report);
    ReportUnreadable(subject.rules.files.rules.get(), report);
}

void ReportTooDeep(const SourceFile* file, Report& report)
{
    if (file != nullptr && file->GetState() == SourceFile::State::TOO_DEEP) {
        report.AddToFile(*file, file->ProblemLine(),
            FileName(*file) + " nests elements deeper than the XML library reads");
    }
}

void CheckDepth(const Subject& subject, Report& report)
{
    ReportTooDeep(subject.rules.files.trees.get(), report);
    ReportTooDeep(subject.rules.files.rules.get(), report);
}

// The child whose name was probably meant to be `name`; null if there is none.
Element NearChild(Element parent, std::string_view name)
{
    NearNames names;
    for (const Element child : Children(parent)) {
        names.Add(child.Name());
    }
    const std::string near = names.Find(name);
    return near.empty() ? Element() : parent.FirstChild(near.c_str());
}

// Reports that `parent` has no child of a name, at the child that was probably meant to have it.
void ReportAbsent(SectionKind kind, Element parent, std::string_view name, const std::string& message, Report& report)
{
    const Element near = NearChild(parent, name);
    report.Add(near ? near : parent, message, {.near = near ? std::string(name) : "", .absent = kind});
}

// True for sections that are optional for a tag.
bool IsOptional(SectionKind kind)
{
    return kind != SectionKind::EVENT_RULES && kind != SectionKind::RULE_LIST;
}

void CheckTreeTag(const RuleSet& rules, Report& report)
{
    const Element root = rules.files.TreeRoot();
    if (rules.hasTrees && root && !rules.treeTag) {
        // The author of the tag picked it by hand: the tree file is probably right.
        const Element near = NearChild(root, rules.tag);
        report.Add(root, "the tree file has no section " + Quoted(rules.tag),
            {.help = DidYouMean(near ? std::string(near.Name()) : "")});
    }
}

void CheckSectionTag(const RuleSet& rules, SectionKind kind, Report& report)
{
    const Section& section = rules.SectionOf(kind);
    const Element root = rules.files.RuleRoot();
    if (!section.element) {
        if (!IsOptional(kind)) {
            ReportAbsent(
                kind, root, SectionName(kind), "the rule file has no section " + Quoted(SectionName(kind)), report);
        }
        return;
    }
    if (section.tag) {
        return;
    }
    if (!IsOptional(kind) || NearChild(section.element, rules.tag)) {
        ReportAbsent(kind, section.element, rules.tag,
            Quoted(SectionName(kind)) + " has no element " + Quoted(rules.tag), report);
    }
}

// Reports a section whose name is similar to that of a missing one.
void CheckSectionNames(const RuleSet& rules, Report& report)
{
    NearNames missing;
    std::set<std::string_view> known;
    for (const SectionKind kind : SECTION_KINDS) {
        known.insert(SectionName(kind));
        if (IsOptional(kind) && !rules.SectionOf(kind).element) {
            missing.Add(SectionName(kind));
        }
    }
    for (const Element child : Children(rules.files.RuleRoot())) {
        const std::string near = known.count(child.Name()) == 0 ? missing.Find(child.Name()) : "";
        if (!near.empty()) {
            report.Add(child, Quoted(child.Name()) + " is no section of the rule file", {.near = near});
        }
    }
}

// Reports a tag without trees: nothing can use its content.
void CheckTagsWithoutTrees(const RuleSet& rules, Report& report)
{
    if (!rules.hasTrees) {
        return;
    }
    const std::vector<std::string> tags = rule_source::TagsOf(rules.files.TreeRoot(), {});
    const std::set<std::string_view> treeTags(tags.begin(), tags.end());
    NearNames near;
    for (const std::string& tag : tags) {
        near.Add(tag);
    }
    for (const SectionKind kind : SECTION_KINDS) {
        for (const Element tag : Children(rules.SectionOf(kind).element)) {
            // Another check reports a tag that is similar to a missing one.
            if (treeTags.count(tag.Name()) == 0 && near.Find(tag.Name()).empty()) {
                report.Add(tag, "the tree file has no section " + Quoted(tag.Name()));
            }
        }
    }
}

void CheckTags(const Subject& subject, Report& report)
{
    const RuleSet& rules = subject.rules;
    CheckTreeTag(rules, report);
    if (!rules.hasRules || !rules.files.RuleRoot()) {
        return;
    }
    for (const SectionKind kind : SECTION_KINDS) {
        CheckSectionTag(rules, kind, report);
    }
    CheckSectionNames(rules, report);
    CheckTagsWithoutTrees(rules, report);
}

constexpr Check CHECKS[] = {
    {"A001", Severity::INFO, CheckClass::STATIC, "suppression without use",
        "A comment \"arborist-disable\" that suppresses nothing: its check finds nothing in the element that follows, "
        "no element follows, or there is no such check.",
        "comments are not read", nullptr},
    {"A101", Severity::ERROR, CheckClass::STATIC, "file missing or not well-formed",
        "A file of the rule set that is not there, can't be read or is no well-formed XML.",
        "without the tree file there is nothing to detect; a malformed rule file still counts as parsed, and every "
        "tree comes out without a fault", CheckReadable},
    {"A102", Severity::ERROR, CheckClass::STATIC, "tag or section that is not there",
        "A tag that the tree file has and \"EventRules\" or \"RuleList\" lacks, or the other way round; a section or a "
        "tag whose name is slightly off. Names are compared with case.",
        "the whole section is empty, without a line in the log", CheckTags},
    {"A106", Severity::ERROR, CheckClass::STATIC, "file nested too deep",
        "A file that nests elements deeper than the XML library reads: 100 levels as packaged.",
        "the whole file is refused, and only the log has the library's error number", CheckDepth},
};

} // namespace

std::span<const Check> FileChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
