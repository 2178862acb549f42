#ifndef ARBORIST_TOOLS_RENDER_RULE_SET_TEXT_H
#define ARBORIST_TOOLS_RENDER_RULE_SET_TEXT_H

#include <string>
#include <vector>

#include "diagnosis/lint/base/subject.h"
#include "diagnosis/rule_set/difference.h"
#include "diagnosis/rule_set/inventory.h"
#include "diagnosis/rule_set/read_rule_set.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

/// The results of the rules commands as text; each ends with a line end.
std::string InventoryText(const rule_set::ReadRuleSet& rules, const Colour& colour);
std::string ShownText(const rule_set::Shown& shown, const Colour& colour);
std::string CountsText(const rule_set::ReadRuleSet& rules, const Colour& colour);
std::string DifferenceText(const std::vector<rule_set::Change>& changes, const Colour& colour);
std::string ReachText(
    const rule_set::ReadRuleSet& rules, const lint::DeviceProfile& device, const Colour& colour);

} // namespace diagnosis::command

#endif
