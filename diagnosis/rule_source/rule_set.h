#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_RULE_SET_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_RULE_SET_H

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "diagnosis/rule_source/bindings.h"
#include "diagnosis/rule_source/common_part.h"
#include "diagnosis/rule_source/descriptions.h"
#include "diagnosis/rule_source/rules.h"
#include "diagnosis/rule_source/sections.h"
#include "diagnosis/rule_source/source_file.h"
#include "diagnosis/rule_source/trees.h"
#include "diagnosis/rule_source/unread.h"

namespace diagnosis::rule_source {

/// The two files of a rule set. A pointer is null if its file is not linted: an editor may pass only one.
struct RuleSetFiles {
    std::unique_ptr<SourceFile> trees;
    std::unique_ptr<SourceFile> rules;

    /// The root of each file; null if it is not linted or not loaded.
    Element TreeRoot() const { return trees == nullptr ? Element() : trees->Root(); }
    Element RuleRoot() const { return rules == nullptr ? Element() : rules->Root(); }
};

/// Reads the files of a folder. As in the engine, `prefix`, unless empty, and "_" precede their names.
RuleSetFiles ReadRuleSetFiles(const std::string& folder, const std::string& prefix);

/// The paths of the two files.
struct RuleSetPaths {
    std::string treeFile;
    std::string ruleFile;
};

/// The content of the two files.
struct RuleSetContents {
    SourceFile::Content trees;
    SourceFile::Content rules;
};
RuleSetContents ReadRuleSetContents(const RuleSetPaths& paths);
/// Whether both files could be read, XML or not.
bool AreRead(const RuleSetContents& contents);
/// The digest of both texts, in hexadecimal digits, which is that of other texts if a byte is another one or in the other
/// file. A file that can't be read is like an empty one. Nothing but the bytes counts: neither paths nor whether they
/// are XML.
std::string DigestOfTexts(const RuleSetContents& contents);

/// Parses both files at the same time.
RuleSetFiles ParseRuleSetFiles(RuleSetContents contents);
/// Reads and parses both files.
RuleSetFiles ReadRuleSetFiles(const RuleSetPaths& paths);

/// Everything that the engine reads from a rule set for one tag, each item with its element, and what it skips.
///
/// Refers to elements and texts of the files, which must outlive it.
struct RuleSet {
    /// Reads the files for a tag.
    RuleSet(const RuleSetFiles& files, const std::string& tag);
    RuleSet(const RuleSet&) = delete;
    RuleSet& operator=(const RuleSet&) = delete;

    const RuleSetFiles& files;
    std::string tag;

    /// True if the file can be judged. An unknown name is no finding if the other file is missing.
    bool hasTrees = false;
    bool hasRules = false;

    /// The tag's element of the tree file; null if there is none.
    Element treeTag;
    Trees trees;

    /// By SectionKind.
    std::array<Section, SECTION_KINDS.size()> sections;
    Bindings bindings;
    Rules rules;
    Descriptions faultDescriptions;
    Descriptions solutions;
    Descriptions repairs;
    CommonPart commonPart;

    /// Elements and attributes that the engine ignores, below the tag's elements of both files.
    Unread unread;

    /// An event of each id, the first in file order, as an index into trees.events.
    std::map<std::string_view, std::size_t> eventsById;

    const Section& SectionOf(SectionKind kind) const { return sections[static_cast<std::size_t>(kind)]; }

private:
    void Link();
};

} // namespace diagnosis::rule_source

#endif
