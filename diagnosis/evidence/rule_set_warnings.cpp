#include "diagnosis/evidence/rule_set_warnings.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "diagnosis/lint/lint.h"
#include "diagnosis/lint/registry.h"

namespace diagnosis {

namespace {

using lint::Check;
using lint::CheckClass;
using lint::Finding;
using rule_source::SectionKind;

struct CodeOfCheck {
    std::string_view id;
    WarningCode code;
};

// The checks whose mistakes have a code of their own, in order of id. Other errors are a RULE_SET_ERROR.
constexpr std::array CODES = {
    CodeOfCheck{"A102", WarningCode::UNKNOWN_NAME}, // a section or a tag
    CodeOfCheck{"A103", WarningCode::DUPLICATE}, // an element of which only the first is read
    CodeOfCheck{"A104", WarningCode::UNKNOWN_NAME}, // an element or an attribute
    CodeOfCheck{"A202", WarningCode::DROPPED}, // a tree
    CodeOfCheck{"A203", WarningCode::DROPPED}, // a tree, or its second top event
    CodeOfCheck{"A204", WarningCode::DROPPED}, // an AND gate
    CodeOfCheck{"A205", WarningCode::DROPPED}, // a gate
    CodeOfCheck{"A206", WarningCode::UNKNOWN_NAME}, // an event
    CodeOfCheck{"A209", WarningCode::DUPLICATE}, // an event in a tree
    CodeOfCheck{"A217", WarningCode::DUPLICATE}, // a tree
    CodeOfCheck{"A303", WarningCode::NO_SUCH_RULE},
    CodeOfCheck{"A304", WarningCode::DUPLICATE}, // an event entry
    CodeOfCheck{"A305", WarningCode::UNKNOWN_NAME}, // the type of an alternative
    CodeOfCheck{"A306", WarningCode::DROPPED}, // a rule name
    CodeOfCheck{"A309", WarningCode::UNUSED_RULE},
    CodeOfCheck{"A404", WarningCode::DROPPED}, // a rule
    CodeOfCheck{"A405", WarningCode::DUPLICATE}, // a rule
    CodeOfCheck{"A407", WarningCode::UNKNOWN_NAME}, // a BeginFlag
    CodeOfCheck{"A408", WarningCode::UNKNOWN_NAME}, // a BeginFlag in the wrong form
    CodeOfCheck{"A410", WarningCode::BAD_NUMBER}, // a period
    CodeOfCheck{"A411", WarningCode::BAD_NUMBER}, // a threshold
    CodeOfCheck{"A420", WarningCode::UNKNOWN_NAME}, // a comparison
    CodeOfCheck{"A422", WarningCode::UNKNOWN_NAME}, // a type
    CodeOfCheck{"A423", WarningCode::BAD_NUMBER}, // a value
    CodeOfCheck{"A424", WarningCode::BAD_NUMBER}, // a value
    CodeOfCheck{"A426", WarningCode::UNKNOWN_NAME}, // a comparison
    CodeOfCheck{"A427", WarningCode::UNKNOWN_NAME}, // a logic word
    CodeOfCheck{"A428", WarningCode::DROPPED}, // a test
    CodeOfCheck{"A429", WarningCode::DROPPED}, // a parameter
    CodeOfCheck{"A501", WarningCode::BAD_NUMBER}, // event ids
    CodeOfCheck{"A503", WarningCode::UNKNOWN_NAME}, // a window
    CodeOfCheck{"A506", WarningCode::UNKNOWN_NAME}, // the type of an item with tests
    CodeOfCheck{"A508", WarningCode::UNKNOWN_NAME}, // a parameter
    CodeOfCheck{"A605", WarningCode::SQL_FAILED},
    CodeOfCheck{"A606", WarningCode::SQL_FAILED},
    CodeOfCheck{"A608", WarningCode::SQL_FAILED},
    CodeOfCheck{"A613", WarningCode::UNKNOWN_NAME}, // the type of a query
    CodeOfCheck{"A614", WarningCode::UNKNOWN_NAME}, // a common part
    CodeOfCheck{"A615", WarningCode::UNKNOWN_NAME}, // the type or the threshold of a test
    CodeOfCheck{"A622", WarningCode::BAD_NUMBER}, // a number of databases
    CodeOfCheck{"A623", WarningCode::UNKNOWN_NAME}, // databases
    CodeOfCheck{"A625", WarningCode::SQL_FAILED},
    CodeOfCheck{"A704", WarningCode::UNKNOWN_NAME}, // a name in a formula
    CodeOfCheck{"A708", WarningCode::UNKNOWN_NAME}, // the result of a formula
    CodeOfCheck{"A712", WarningCode::UNKNOWN_NAME}, // the parameter of a node
    CodeOfCheck{"A807", WarningCode::DUPLICATE}, // a common part
    CodeOfCheck{"A808", WarningCode::UNKNOWN_NAME}, // a system parameter
    CodeOfCheck{"A809", WarningCode::UNKNOWN_NAME}, // a comparison of a threshold
    CodeOfCheck{"A811", WarningCode::UNKNOWN_NAME}, // a threshold or a system parameter
    CodeOfCheck{"A814", WarningCode::DROPPED}, // a path of databases
    CodeOfCheck{"A908", WarningCode::DROPPED}, // a code rule
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
        if (CodeOfMistakes(*check)) {
            told.insert(check->id);
        }
    }
    return told;
}

// Without the tag's element of the rule list there are no rules at all, which has a code of its own.
WarningCode CodeOf(const Finding& finding)
{
    return finding.absent == SectionKind::RULE_LIST ? WarningCode::NO_RULES : *CodeOfMistakes(*finding.check);
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
    if (mistake.code == WarningCode::SQL_FAILED || mistake.code == WarningCode::NO_RULES) {
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

/// An attribute of a rule, and that of a device with which it is compared.
struct Filter {
    const char* ofRule;
    const char* ofDevice;
};
constexpr std::array FILTERS = {Filter{"production", "Product"}, Filter{"blackProducts", "Product"},
    Filter{"platform", "Platform"}, Filter{"deviceType", "DeviceType"}};

std::string ValueOf(const DeviceDetails& device, const std::string& attribute)
{
    return attribute == "Product" ? device.GetProduct()
        : attribute == "Platform" ? device.GetPlatform() : device.GetDeviceType();
}

} // namespace

std::optional<WarningCode> CodeOfMistakes(const Check& check)
{
    if (check.kind == CheckClass::DEVICE || check.kind == CheckClass::HOST) {
        return std::nullopt;
    }
    const auto row = std::lower_bound(CODES.begin(), CODES.end(), CodeOfCheck{check.id, {}}, IsBefore);
    if (row != CODES.end() && row->id == check.id) {
        return row->code;
    }
    return check.severity == lint::Severity::ERROR ? std::optional(WarningCode::RULE_SET_ERROR) : std::nullopt;
}

RuleSetWarnings::RuleSetWarnings(const rule_source::RuleSetFiles& files, const std::string& tag)
{
    static const std::set<std::string> TOLD_CHECKS = ToldChecks();
    lint::LintOptions options;
    options.only = TOLD_CHECKS;
    options.details.withOwners = true;
    const rule_source::RuleSet rules(files, tag);
    for (const Finding& finding : lint::LintRuleSet(rules, options).findings) {
        mMistakes.Add({CodeOf(finding),
            {MessageOf(finding), finding.check->id, finding.file, finding.line, finding.rule, finding.event}});
    }
    mRuleFile = files.rules == nullptr ? "" : files.rules->Path();
    for (const auto& [name, rule] : rules.rules.byName) {
        mRuleLines.emplace_hint(mRuleLines.end(), name, rule->element.Line());
        for (const Filter& filter : FILTERS) {
            if (!rule->element.Value(filter.ofRule).empty()) {
                mFilters.insert(filter.ofDevice);
            }
        }
    }
}

void RuleSetWarnings::AddEmptyAttributes(const DeviceDetails& device, WarningList& told) const
{
    for (const std::string& attribute : mFilters) {
        if (ValueOf(device, attribute).empty()) {
            told.Add(WarningCode::ATTRIBUTE_EMPTY, "the device has no " + lint::Quoted(attribute) + ": rules for some values of "
                "it run as if they were for this device, and rules with a black list don't");
        }
    }
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
