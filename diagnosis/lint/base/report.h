#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_REPORT_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_REPORT_H

#include <string>
#include <vector>

#include "diagnosis/lint/base/check.h"
#include "diagnosis/rule_source/source_file.h"

namespace diagnosis::lint {

/// What mends a finding. The text is what the file is to read, without the marks of XML: they are put in when it is
/// written.
struct FixOf {
    enum class What { NOTHING, TEXT, VALUE, REMOVE_ATTRIBUTE };

    What what = What::NOTHING;
    std::string text = {};
    /// Whether the engine reads the same afterwards.
    bool isSafe = false;

    /// Gives the element another text.
    static FixOf Text(std::string text, bool isSafe) { return {What::TEXT, std::move(text), isSafe}; }
    /// Gives the attribute another value.
    static FixOf Value(std::string text, bool isSafe) { return {What::VALUE, std::move(text), isSafe}; }
    /// Takes away an attribute that nobody reads.
    static FixOf Removal() { return {What::REMOVE_ATTRIBUTE, "", true}; }
};

/// What a finding may have beside its element and message.
struct Details {
    /// The attribute that it is about: the caret points at its value.
    rule_source::Attribute attribute = {};
    /// What to do about it, as a sentence without a full stop: `did you mean "worn"?`.
    std::string help = {};
    FixOf fix = {};
    /// Whether the caret points at the element's text; otherwise, without an attribute, at its name.
    bool isAboutText = false;
};

/// A finding where it was reported: it holds elements, and the files must outlive it.
struct Reported {
    const Check* check = nullptr;
    const rule_source::SourceFile* file = nullptr;
    /// Null for a finding about a file.
    rule_source::Element element;
    int line = 0;
    std::string message;
    Details details;
};

/// Takes what checks find.
class Report {
public:
    /// What is reported from now on is found by this check.
    void Begin(const Check& check) { mCheck = &check; }

    /// Something about an element. The message is a sentence without a full stop and quotes names: `the event "A" ...`.
    void Add(rule_source::Element element, std::string message, Details details = {});
    /// Something about a file as a whole, or about a line of it that no element stands on.
    void AddToFile(const rule_source::SourceFile& file, int line, std::string message);

    std::vector<Reported>& Findings() { return mFindings; }

private:
    const Check* mCheck = nullptr;
    std::vector<Reported> mFindings;
};

/// A name in a message: in double quotes.
std::string Quoted(std::string_view name);

} // namespace diagnosis::lint

#endif
