#ifndef ARBORIST_FRAME_EVIDENCE_RULE_SET_H
#define ARBORIST_FRAME_EVIDENCE_RULE_SET_H

#include <cstddef>
#include <string>
#include <vector>

#include "arborist/frame/comparable.h"
#include "arborist/frame/evidence_words.h"

namespace Evidence {

/// One of the two XML files of a rule set, after the attempt to read it.
struct RuleSetFile {
    /// Which of the two files it is.
    RuleSetFileType type = RuleSetFileType::TREES;
    /// The result of reading it.
    RuleSetFileState state = RuleSetFileState::MISSING;
    /// The path at which the library looked for the file.
    std::string path;
    /// The XML reader's message for a malformed file; empty otherwise.
    std::string message;
    /// Line of the first error in a malformed file, from 1; 0 if not known.
    int line = 0;
    /// The number of trees of the tag (TREES), or of rules of the tag (RULES).
    std::size_t count = 0;

    ARBORIST_COMPARABLE(RuleSetFile)
};

/// External databases that a rule set names ("defDBTable").
struct ExternalDatabase {
    /// The name by which rules refer to the databases.
    std::string name;
    /// The regular expression for the paths of the databases. If it is invalid, std::regex_error ends the detection.
    std::string pattern;

    ARBORIST_COMPARABLE(ExternalDatabase)
};

/// A rule set after the attempt to load it.
struct RuleSet {
    /// The tree file, then the rule file. A file that the library didn't look for is left out.
    std::vector<RuleSetFile> files;
    /// The external databases that its rules refer to.
    std::vector<ExternalDatabase> databases;
    /// Names of the derived tables that are filled with events of the log.
    std::vector<std::string> eventTables;

    ARBORIST_COMPARABLE(RuleSet)
};

} // namespace Evidence

#endif
