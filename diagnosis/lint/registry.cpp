#include "diagnosis/lint/registry.h"

#include <algorithm>

#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

namespace {

std::vector<const Check*> MakeList()
{
    std::vector<const Check*> all;
    for (const auto& group : {FileChecks(), WordChecks(), TreeChecks(), EventChecks(), CutSetChecks(), BindingChecks(),
             AlternativeChecks(), FilterChecks(), DeviceFilterChecks(), TimeChecks(), ComparisonChecks(),
             ConditionChecks(), ValueSetChecks(), AlarmChecks(), AlarmTestChecks(), CommandChecks(), SqlChecks(),
             QueryChecks(), FormulaChecks(), NodeChecks(), CommonPartChecks(), ThresholdChecks(),
             ExternalDatabaseChecks(), DescriptionChecks(), CodeRuleChecks(), HostChecks()}) {
        for (const Check& check : group) {
            all.push_back(&check);
        }
    }
    std::sort(all.begin(), all.end(),
        [](const Check* one, const Check* other) { return std::string_view(one->id) < other->id; });
    return all;
}

} // namespace

const std::vector<const Check*>& AllChecks()
{
    static const std::vector<const Check*> all = MakeList();
    return all;
}

const Check* FindCheck(std::string_view id)
{
    const auto& all = AllChecks();
    const auto found = std::find_if(all.begin(), all.end(), [id](const Check* check) { return check->id == id; });
    return found == all.end() ? nullptr : *found;
}

} // namespace diagnosis::lint
