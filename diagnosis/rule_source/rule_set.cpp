#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::rule_source {

RuleSetFiles ReadRuleSetFiles(const std::string& folder, const std::string& prefix)
{
    const std::string start = folder + "/" + (prefix.empty() ? "" : prefix + "_");
    return {SourceFile::Read(start + "FaultTrees.xml"), SourceFile::Read(start + "FaultTreeRules.xml")};
}

RuleSet::RuleSet(const RuleSetFiles& setFiles, const std::string& setTag) : files(setFiles), tag(setTag)
{
    hasTrees = files.trees != nullptr && files.trees->IsLoaded();
    hasRules = files.rules != nullptr && files.rules->IsLoaded();
    treeTag = files.TreeRoot().FirstChild(tag.c_str());
    trees = ReadTrees(treeTag);
    for (const SectionKind kind : SECTION_KINDS) {
        sections[static_cast<std::size_t>(kind)] = FindSection(files.RuleRoot(), SectionName(kind), tag);
    }
    bindings = ReadBindings(SectionOf(SectionKind::EVENT_RULES).tag);
    rules = ReadRules(SectionOf(SectionKind::RULE_LIST).tag);
    faultDescriptions = ReadDescriptions(
        SectionKind::FAULT_DESCRIPTIONS, SectionOf(SectionKind::FAULT_DESCRIPTIONS).tag);
    solutions = ReadDescriptions(SectionKind::SOLUTIONS, SectionOf(SectionKind::SOLUTIONS).tag);
    repairs = ReadDescriptions(SectionKind::REPAIR_DESCRIPTIONS, SectionOf(SectionKind::REPAIR_DESCRIPTIONS).tag);
    commonPart = ReadCommonPart(SectionOf(SectionKind::COMMON_PART).tag);
    for (std::size_t event = 0; event < trees.events.size(); ++event) {
        // Rule sets are mostly sorted by id: then the place at the end is the right one.
        eventsById.emplace_hint(eventsById.end(), trees.events[event].id, event);
    }
    Link();
}

void RuleSet::Link()
{
    for (TreeEvent& event : trees.events) {
        event.binding = bindings.Find(event.id);
    }
    for (Binding& binding : bindings.all) {
        binding.event = FindEvent(binding.id);
        for (BindingAlternative& alternative : binding.alternatives) {
            for (RuleName& name : alternative.names) {
                name.rule = rules.Find(name.name);
            }
        }
    }
    for (Descriptions* section : {&faultDescriptions, &solutions, &repairs}) {
        for (DescriptionItem& item : section->items) {
            item.event = FindEvent(item.id);
        }
    }
}

const TreeEvent* RuleSet::FindEvent(std::string_view id) const
{
    const auto found = eventsById.find(id);
    return found == eventsById.end() ? nullptr : &trees.events[found->second];
}

} // namespace diagnosis::rule_source
