#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_REPORT_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_REPORT_H

#include <deque>
#include <optional>
#include <string>

#include "diagnosis/lint/base/check.h"
#include "diagnosis/rule_source/sections.h"
#include "diagnosis/rule_source/source_file.h"

namespace diagnosis::lint {

/// The fix of a finding. The text is the new content without XML escapes, which are added when it is written.
struct FixOf {
    enum class What { NOTHING, TEXT, VALUE, NAME, ATTRIBUTE_NAME, REMOVE_ATTRIBUTE };

    What what = What::NOTHING;
    std::string text = {};
    /// Whether the engine reads the same afterwards.
    bool isSafe = false;
    /// The element that is changed, if it is another one than that of the finding.
    rule_source::Element element = {};

    /// Replaces the text of the element.
    static FixOf Text(std::string text, bool isSafe) { return {What::TEXT, std::move(text), isSafe}; }
    /// Replaces the text of another element, which changes what the engine reads.
    static FixOf TextOf(rule_source::Element element, std::string text)
    {
        return {What::TEXT, std::move(text), false, element};
    }
    /// Replaces the value of the attribute.
    static FixOf Value(std::string text, bool isSafe) { return {What::VALUE, std::move(text), isSafe}; }
    /// Renames the element, which changes what the engine reads.
    static FixOf Name(std::string name) { return {What::NAME, std::move(name), false}; }
    /// Renames the attribute, which changes what the engine reads.
    static FixOf AttributeName(std::string name) { return {What::ATTRIBUTE_NAME, std::move(name), false}; }
    /// Removes an attribute that nothing reads.
    static FixOf Removal() { return {What::REMOVE_ATTRIBUTE, "", true}; }
};

/// Optional parts of a finding.
struct Details {
    /// The attribute that it is about: the caret points at its value.
    rule_source::Attribute attribute = {};
    /// What to do about it, as a sentence without a full stop: `did you mean "worn"?`.
    std::string help = {};
    FixOf fix = {};
    /// The known name that was probably meant. If there is one, it becomes the help, and an unsafe fix puts it where the
    /// caret points, unless the finding has a fix of its own.
    std::string near = {};
    /// True if the caret points at the element's text; otherwise, without an attribute, it points at its name.
    bool isAboutText = false;
    /// The section that the rule file lacks, or lacks for the tag.
    std::optional<rule_source::SectionKind> absent = {};
};

/// A finding as it was reported. Refers to elements, so that the files must outlive it.
struct Reported {
    const Check* check = nullptr;
    const rule_source::SourceFile* file = nullptr;
    /// Null for a finding about a file.
    rule_source::Element element;
    int line = 0;
    std::string message;
    Details details;
};

/// Collects the findings of checks.
class Report {
public:
    /// Later reports belong to this check.
    void Begin(const Check& check) { mCheck = &check; }

    /// Adds a finding about an element. The message is a sentence without a full stop, with names in quotes: `the event
    /// "A" ...`.
    void Add(rule_source::Element element, std::string message, Details details = {});
    /// Adds a finding about a whole file, or about a line of it without an element.
    void AddToFile(const rule_source::SourceFile& file, int line, std::string message);

    std::deque<Reported>& Findings() { return mFindings; }

private:
    const Check* mCheck = nullptr;
    /// No vector: it would move all of them again and again.
    std::deque<Reported> mFindings;
};

/// The help for a near name: `did you mean "worn"?`; empty without one.
std::string DidYouMean(const std::string& near);

/// A name in a message: in double quotes.
std::string Quoted(std::string_view name);

} // namespace diagnosis::lint

#endif
