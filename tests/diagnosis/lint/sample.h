#ifndef ARBORIST_TESTS_LINT_SAMPLE_H
#define ARBORIST_TESTS_LINT_SAMPLE_H

#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "diagnosis/rule_source/rule_set.h"
#include "tests/support/example_page.h"
#include "tests/support/temp_dir.h"

/// A folder of tests/diagnosis/lint/samples named "A303-words": what is wrong, and the same as it should be.
///
/// "bad" and "good" hold the file of the rule set that shows it, or both. A file that they lack is that of the folder
/// itself, and where it has none, either, that of tests/diagnosis/lint/samples/plain: the tree T = OR(E) of the tag
/// "Laptop", and the code rule "r" for E, which holds. "effect.txt" tells what the engine makes of both: see ReadEffect.
struct LintSample {
    /// "A303".
    std::string id;
    /// "A303_rule_that_is_not_there", for the name of a test.
    std::string name;
    /// Absolute path.
    std::string folder;

    /// Folders in which files of the bad or of the good rule set are looked for, the first that has a file counting.
    std::vector<std::string> Folders(const std::string& which) const;
    /// The files of the bad or of the good rule set.
    diagnosis::rule_source::RuleSetFiles Files(const std::string& which) const;
    /// Copies them into a folder.
    void CopyTo(const TempDir& dir, const std::string& which) const;
};
inline void PrintTo(const LintSample& sample, std::ostream* out) { *out << sample.folder; }

/// What "effect.txt" of a sample says, in lines "key: text" as the examples of pages have them:
///
/// "bad" and "good" are outcomes of a detection with that rule set, "also" has ids of other checks that find something in
/// the bad sample, and every other key describes the detection ("log", "node", "device", "scene", ...).
struct LintEffect {
    /// What describes the detection.
    std::vector<std::pair<std::string, std::string>> scene;
    std::vector<std::string> bad;
    std::vector<std::string> good;
    std::set<std::string> also;
};

/// All samples in order of id.
std::vector<LintSample> AllLintSamples();

/// The first sample whose name begins so.
const LintSample& SampleNamed(const std::string& start);

/// Empty for a sample without the file.
LintEffect ReadEffect(const LintSample& sample);

#endif
