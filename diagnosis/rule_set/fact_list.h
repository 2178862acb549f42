#ifndef ARBORIST_DIAGNOSIS_RULE_SET_FACT_LIST_H
#define ARBORIST_DIAGNOSIS_RULE_SET_FACT_LIST_H

#include <string>
#include <string_view>
#include <utility>

#include "diagnosis/rule_set/item.h"
#include "diagnosis/rule_source/conditions.h"
#include "diagnosis/rule_source/params.h"

namespace diagnosis::rule_set {

/// Adds facts to an item, with what the keys of a part have in front: "alarm item 2, ".
class FactList {
public:
    explicit FactList(Item& item, std::string prefix = "") : mItem(item), mPrefix(std::move(prefix)) {}

    /// Adds nothing for an empty value.
    void Add(std::string_view key, std::string_view value, rule_source::Element element)
    {
        if (!value.empty()) {
            mItem.facts.push_back({mPrefix + std::string(key), std::string(value), element.Line()});
        }
    }

    void Add(const rule_source::ParamTable& params, const std::string& word = "parameter")
    {
        for (const rule_source::Param& param : params.Params()) {
            Add(word + " " + std::string(param.id), std::string(param.key) + " (" + std::string(param.type) + ")",
                param.element);
        }
    }

    void Add(const rule_source::Condition& condition);

    /// The facts of a part of this one.
    FactList Part(const std::string& name) const { return FactList(mItem, mPrefix + name + ", "); }

private:
    Item& mItem;
    std::string mPrefix;
};

/// "10 ge 5 and 11 eq 2": the tests of a condition in the form of threshold items.
std::string ConditionText(const rule_source::ThresholdCondition& condition);

} // namespace diagnosis::rule_set

#endif
