#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_SECTIONS_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_SECTIONS_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "diagnosis/rule_source/element.h"

namespace diagnosis::rule_source {

/// The sections of the rule file.
enum class SectionKind {
    EVENT_RULES,
    RULE_LIST,
    FAULT_DESCRIPTIONS,
    SOLUTIONS,
    REPAIR_DESCRIPTIONS,
    COMMON_PART,
};

inline constexpr std::array<SectionKind, 6> SECTION_KINDS = {SectionKind::EVENT_RULES, SectionKind::RULE_LIST,
    SectionKind::FAULT_DESCRIPTIONS, SectionKind::SOLUTIONS, SectionKind::REPAIR_DESCRIPTIONS,
    SectionKind::COMMON_PART};

/// The word of a section: "EventRules", "RuleList" ...
const char* SectionName(SectionKind kind);

/// The element that the engine reads for one section: the first one of the tag in the first one of the section's name.
struct Section {
    /// Null if the file has no such section.
    Element element;
    /// Null if the section has no such tag.
    Element tag;
};

Section FindSection(Element root, const char* name, const std::string& tag);

/// The tags of the two files, each once, in order of appearance: the children of the tree file's root, then those of
/// the rule file's sections. Either root may be null.
std::vector<std::string> TagsOf(Element treeRoot, Element ruleRoot);

} // namespace diagnosis::rule_source

#endif
