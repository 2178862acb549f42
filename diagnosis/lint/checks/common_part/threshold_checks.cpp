#include <algorithm>
#include <array>
#include <map>
#include <unordered_map>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

namespace {

using rule_source::Element;
using rule_source::Param;
using rule_source::ParamTable;
using rule_source::Threshold;
using rule_source::ThresholdBean;
using rule_source::ThresholdItem;
using rule_source::ThresholdTest;

/// Calls `visit(bean, item)` for each "ThresholdItem".
template <typename Visit>
void ForEachItem(const Subject& subject, Visit visit)
{
    for (const ThresholdBean& bean : subject.rules.commonPart.beans) {
        for (const ThresholdItem& item : bean.thresholdItems) {
            visit(bean, item);
        }
    }
}

void CheckSystemParams(const Subject& subject, Report& report)
{
    static constexpr std::array<std::string_view, 4> WORDS = {"CPU_NAME", "RAM_SIZE", "RESOLUTION", "BATTFULL_DESIGN"};
    NearNames near(WORDS.begin(), WORDS.end());
    for (const ThresholdBean& bean : subject.rules.commonPart.beans) {
        for (const Param& param : bean.systemParams.Params()) {
            if (std::find(WORDS.begin(), WORDS.end(), param.key) == WORDS.end()) {
                report.Add(param.element, "nothing gives the system parameter " + Quoted(param.key) + " a value",
                    {.attribute = param.element.Find("key"), .near = near.Find(param.key)});
            }
        }
    }
}

bool IsLookedAt(const ThresholdTest& test)
{
    return test.test.word == "eq" || test.test.word == "in";
}

void CheckWords(const Subject& subject, Report& report)
{
    ForEachItem(subject, [&report](const ThresholdBean& bean, const ThresholdItem& item) {
        for (const ThresholdTest& test : item.condition.tests) {
            if (!IsLookedAt(test)) {
                report.Add(test.test.element, "a threshold test of the common part " + Quoted(bean.name) + " with "
                        + Quoted(test.test.word) + " holds always", {.help = "list the values with \"in\""});
            }
        }
    });
}

void CheckConditions(const Subject& subject, Report& report)
{
    ForEachItem(subject, [&report](const ThresholdBean& bean, const ThresholdItem& item) {
        if (item.condition.tests.empty()) {
            report.Add(item.element, "an item of the common part " + Quoted(bean.name) + " has no test",
                {.help = "to make it a default, put it first and give it a test of the word \"ne\", which holds always"});
        }
    });
}

// Searches the near name of an unknown one in the table of its bean.
void ReportUnknown(const ParamTable& table, Element element, Details details, std::string message,
    std::string_view id, Report& report)
{
    if (table.Find(id) != nullptr) {
        return;
    }
    details.near = NearIdIn(table, id);
    report.Add(element, std::move(message), std::move(details));
}

void CheckIds(const Subject& subject, Report& report)
{
    ForEachItem(subject, [&report](const ThresholdBean& bean, const ThresholdItem& item) {
        const std::string of = " of the common part " + Quoted(bean.name);
        for (const Threshold& threshold : item.thresholds) {
            ReportUnknown(bean.thresholds, threshold.element, {.attribute = threshold.element.Find("id")},
                "no threshold" + of + " has the id " + Quoted(threshold.id), threshold.id, report);
        }
        for (const ThresholdTest& test : item.condition.tests) {
            if (IsLookedAt(test)) {
                ReportUnknown(bean.systemParams, test.test.idElement, {.isAboutText = true},
                    "no system parameter" + of + " has the id " + Quoted(test.test.id), test.test.id, report);
            }
        }
    });
}

using Values = std::vector<std::string_view>;

/// The values that an item's condition requires of each parameter. A comparison word that the engine ignores requires
/// none.
std::map<std::string_view, Values> AskedOf(const ThresholdItem& item)
{
    std::map<std::string_view, Values> asked;
    for (const ThresholdTest& test : item.condition.tests) {
        if (test.test.word == "eq") {
            asked[test.test.id] = {test.test.value};
        } else if (test.test.word == "in") {
            Values& values = asked[test.test.id];
            std::transform(test.values.begin(), test.values.end(), std::back_inserter(values),
                [](const Element& value) { return value.Text(); });
        }
    }
    return asked;
}

// Each combination of values that meets a condition, as one text; for a condition with very many only some of them.
std::vector<std::string> CasesOf(const std::map<std::string_view, Values>& asked)
{
    static constexpr std::size_t MOST_CASES = 256;
    std::vector<std::string> cases = {""};
    for (const auto& [id, values] : asked) {
        std::vector<std::string> longer;
        for (const std::string& start : cases) {
            for (const std::string_view value : values) {
                if (longer.size() == MOST_CASES) {
                    break;
                }
                longer.push_back(start + std::string(id) + '\n' + std::string(value) + '\n');
            }
        }
        cases = std::move(longer);
    }
    return cases;
}

// By case and threshold, the item that sets it last: the engine sets the thresholds of all items that apply, in file
    // order.
class LaterItems {
public:
    explicit LaterItems(const ThresholdBean& bean) : mBean(bean) {}

    void Look(Report& report)
    {
        for (auto item = mBean.thresholdItems.rbegin(); item != mBean.thresholdItems.rend(); ++item) {
            if (!item->condition.tests.empty()) {
                Look(*item, report);
            }
        }
    }

private:
    void Look(const ThresholdItem& item, Report& report)
    {
        const auto cases = CasesOf(AskedOf(item));
        const ThresholdItem* overwriting = nullptr;
        for (const std::string& each : cases) {
            for (const Threshold& threshold : item.thresholds) {
                const std::string key = each + std::string(threshold.id);
                const auto [place, isNew] = mSetBy.emplace(key, &item);
                overwriting = isNew || place->second == &item ? overwriting : place->second;
            }
        }
        if (overwriting != nullptr) {
            report.Add(item.element, "the item of the common part " + Quoted(mBean.name) + " in line "
                    + std::to_string(overwriting->element.Line()) + " holds where this one does, and sets the same "
                    "threshold",
                {.help = "let the conditions exclude each other"});
        }
    }

    const ThresholdBean& mBean;
    std::unordered_map<std::string, const ThresholdItem*> mSetBy;
};

void CheckOverlaps(const Subject& subject, Report& report)
{
    for (const ThresholdBean& bean : subject.rules.commonPart.beans) {
        LaterItems(bean).Look(report);
    }
}

void CheckUnread(const Subject& subject, Report& report)
{
    ForEachItem(subject, [&report](const ThresholdBean& bean, const ThresholdItem& item) {
        const Element second = item.condition.alternative.Next("or");
        if (second) {
            report.Add(second, "a threshold condition of the common part " + Quoted(bean.name) + " has another \"or\"",
                {.help = "write an item for each of them"});
        }
        for (const ThresholdTest& test : item.condition.tests) {
            for (const Element value : test.values) {
                if (value.Name() != "value") {
                    report.Add(value, Quoted(value.Name()) + " in a \"set\" counts as a value");
                }
            }
        }
    });
}

constexpr Check CHECKS[] = {
    {"A808", Severity::WARNING, CheckClass::STATIC, "system parameter that nothing fills",
        "A \"param\" of \"SystemParamTable\" whose \"key\" is none of \"CPU_NAME\", \"RAM_SIZE\", \"RESOLUTION\" and "
        "\"BATTFULL_DESIGN\".",
        "it has no value, and what is compared with it is false", CheckSystemParams},
    {"A809", Severity::WARNING, CheckClass::STATIC, "threshold test that holds always",
        "A test of a \"ThresholdItem\" with another word than \"eq\" and \"in\".", "the test holds always", CheckWords},
    {"A810", Severity::WARNING, CheckClass::STATIC, "threshold item without a test",
        "A \"ThresholdItem\" whose condition has no test that is read.", "the item never applies", CheckConditions},
    {"A811", Severity::WARNING, CheckClass::STATIC, "id that its table lacks",
        "A \"threshold\" whose id \"ThresholdParamTable\" lacks, or a threshold test whose id \"SystemParamTable\" "
        "lacks.",
        "the threshold is passed over; an item with such a test never applies", CheckIds},
    {"A812", Severity::WARNING, CheckClass::STATIC, "threshold items that overlap",
        "A \"ThresholdItem\" that sets a threshold which a later item sets again, for the same values of the same "
        "system parameters.",
        "the later item overwrites what the earlier one set", CheckOverlaps},
    {"A813", Severity::WARNING, CheckClass::STATIC, "threshold condition that is read otherwise",
        "A second \"or\" in the condition of a \"ThresholdItem\", or an element that is no \"value\" behind the first "
        "one of a \"set\".",
        "the second \"or\" is not read; the text of the element counts as a value", CheckUnread},
};

} // namespace

std::span<const Check> ThresholdChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
