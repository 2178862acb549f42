#include "diagnosis/evidence/rule_set_warnings.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/lint.h"
#include "diagnosis/lint/registry.h"

namespace diagnosis {

namespace {

using lint::Check;
using lint::CheckClass;
using lint::Finding;
using rule_source::Children;
using rule_source::Element;
using rule_source::SectionKind;
using rule_source::SectionName;

struct CodeOfCheck {
    std::string_view id;
    const char* code;
};

// The checks whose mistakes have a word of their own, in order of id. Other errors are a "rule_set_error".
constexpr std::array CODES = {
    CodeOfCheck{"A102", "unknown_name"}, // a section or a tag
    CodeOfCheck{"A103", "duplicate"}, // an element of which only the first is read
    CodeOfCheck{"A104", "unknown_name"}, // an element or an attribute
    CodeOfCheck{"A202", "dropped"}, // a tree
    CodeOfCheck{"A203", "dropped"}, // a tree, or its second top event
    CodeOfCheck{"A204", "dropped"}, // an AND gate
    CodeOfCheck{"A205", "dropped"}, // a gate
    CodeOfCheck{"A206", "unknown_name"}, // an event
    CodeOfCheck{"A209", "duplicate"}, // an event in a tree
    CodeOfCheck{"A217", "duplicate"}, // a tree
    CodeOfCheck{"A303", "no_such_rule"},
    CodeOfCheck{"A304", "duplicate"}, // an event entry
    CodeOfCheck{"A305", "unknown_name"}, // the type of an alternative
    CodeOfCheck{"A306", "dropped"}, // a rule name
    CodeOfCheck{"A309", "unused_rule"},
    CodeOfCheck{"A404", "dropped"}, // a rule
    CodeOfCheck{"A405", "duplicate"}, // a rule
    CodeOfCheck{"A407", "unknown_name"}, // a BeginFlag
    CodeOfCheck{"A408", "unknown_name"}, // a BeginFlag in the wrong form
    CodeOfCheck{"A410", "bad_number"}, // a period
    CodeOfCheck{"A411", "bad_number"}, // a threshold
    CodeOfCheck{"A420", "unknown_name"}, // a comparison
    CodeOfCheck{"A422", "unknown_name"}, // a type
    CodeOfCheck{"A423", "bad_number"}, // a value
    CodeOfCheck{"A424", "bad_number"}, // a value
    CodeOfCheck{"A426", "unknown_name"}, // a comparison
    CodeOfCheck{"A427", "unknown_name"}, // a logic word
    CodeOfCheck{"A428", "dropped"}, // a test
    CodeOfCheck{"A429", "dropped"}, // a parameter
    CodeOfCheck{"A501", "bad_number"}, // event ids
    CodeOfCheck{"A503", "unknown_name"}, // a window
    CodeOfCheck{"A506", "unknown_name"}, // the type of an item with tests
    CodeOfCheck{"A508", "unknown_name"}, // a parameter
    CodeOfCheck{"A605", "sql_failed"},
    CodeOfCheck{"A606", "sql_failed"},
    CodeOfCheck{"A608", "sql_failed"},
    CodeOfCheck{"A613", "unknown_name"}, // the type of a query
    CodeOfCheck{"A614", "unknown_name"}, // a common part
    CodeOfCheck{"A615", "unknown_name"}, // the type or the threshold of a test
    CodeOfCheck{"A622", "bad_number"}, // a number of databases
    CodeOfCheck{"A623", "unknown_name"}, // databases
    CodeOfCheck{"A625", "sql_failed"},
    CodeOfCheck{"A704", "unknown_name"}, // a name in a formula
    CodeOfCheck{"A708", "unknown_name"}, // the result of a formula
    CodeOfCheck{"A712", "unknown_name"}, // the parameter of a node
    CodeOfCheck{"A807", "duplicate"}, // a common part
    CodeOfCheck{"A808", "unknown_name"}, // a system parameter
    CodeOfCheck{"A809", "unknown_name"}, // a comparison of a threshold
    CodeOfCheck{"A811", "unknown_name"}, // a threshold or a system parameter
    CodeOfCheck{"A814", "dropped"}, // a path of databases
    CodeOfCheck{"A908", "dropped"}, // a code rule
};

constexpr bool IsBefore(const CodeOfCheck& one, const CodeOfCheck& other)
{
    return one.id < other.id;
}
static_assert(std::is_sorted(CODES.begin(), CODES.end(), IsBefore));

std::set<std::string> ToldChecks()
{
    std::set<std::string> told;
    for (const Check* check : lint::AllChecks()) {
        if (WarningCode(*check) != nullptr) {
            told.insert(check->id);
        }
    }
    return told;
}

// Without the tag's element of the rule list there are no rules at all, which has a code of its own.
std::string CodeOf(const Finding& finding)
{
    const bool isAboutRules = finding.check->id == std::string_view("A102")
        && finding.message.find(lint::Quoted(SectionName(SectionKind::RULE_LIST))) != std::string::npos;
    return isAboutRules ? "no_rules" : WarningCode(*finding.check);
}

std::string MessageOf(const Finding& finding)
{
    return finding.message + (finding.help.empty() ? "" : "; " + finding.help);
}

// True if the detection has already warned of the mistake; adds the mistake's place to that warning. Only these two
// codes occur in both.
bool IsTold(const Warning& mistake, WarningList& told)
{
    bool isTold = false;
    if (mistake.code == "sql_failed" || mistake.code == "no_rules") {
        told.ForEach([&](Warning& warning) {
            if (warning.code != mistake.code || warning.rule != mistake.rule) {
                return;
            }
            isTold = true;
            if (warning.id.empty()) {
                warning.id = mistake.id;
                warning.file = mistake.file;
                warning.line = mistake.line;
            }
        });
    }
    return isTold;
}

// A detection warns of code rules and command rules. Of several with one name the last counts.
std::map<std::string, int> RuleLines(Element root, const std::string& tag)
{
    std::map<std::string, int> lines;
    const auto section = rule_source::FindSection(root, SectionName(SectionKind::RULE_LIST), tag);
    for (const Element rule : Children(section.tag, "rule")) {
        for (const Element element : Children(rule)) {
            if (element.Name() == "codeRule" || element.Name() == "commandRule") {
                lines[std::string(element.Value("name"))] = element.Line();
            }
        }
    }
    return lines;
}

} // namespace

const char* WarningCode(const Check& check)
{
    if (check.kind == CheckClass::DEVICE || check.kind == CheckClass::HOST) {
        return nullptr;
    }
    const auto code = std::lower_bound(CODES.begin(), CODES.end(), CodeOfCheck{check.id, nullptr}, IsBefore);
    const bool hasCode = code != CODES.end() && code->id == check.id;
    return hasCode ? code->code : check.severity == lint::Severity::ERROR ? "rule_set_error" : nullptr;
}

RuleSetWarnings::RuleSetWarnings(const rule_source::RuleSetFiles& files, const std::string& tag)
{
    static const std::set<std::string> TOLD_CHECKS = ToldChecks();
    lint::LintOptions options;
    options.tags = {tag};
    options.only = TOLD_CHECKS;
    options.details.withOwners = true;
    for (const Finding& finding : lint::LintFiles(files, options).findings) {
        mMistakes.Add({CodeOf(finding), MessageOf(finding), finding.check->id, finding.file, finding.line,
            finding.rule, finding.event});
    }
    mRuleFile = files.rules == nullptr ? "" : files.rules->Path();
    mRuleLines = RuleLines(files.RuleRoot(), tag);
}

void RuleSetWarnings::AddTo(WarningList& told) const
{
    told.AddUnless(mMistakes, [&told](const Warning& mistake) { return IsTold(mistake, told); });
    told.ForEach([this](Warning& warning) {
        const auto line = mRuleLines.find(warning.rule);
        if (warning.file.empty() && line != mRuleLines.end()) {
            warning.file = mRuleFile;
            warning.line = line->second;
        }
    });
}

} // namespace diagnosis
