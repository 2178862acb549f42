#include "diagnosis/lint/reading/node_rules.h"

namespace diagnosis::lint {

using rule_source::NodeInfo;
using rule_source::NodeRule;
using rule_source::Param;

NearNames KeysOf(const NodeRule& rule)
{
    return NearNames([&rule](NearNames& near) {
        for (const Param& param : rule.params.Params()) {
            near.Add(param.key);
        }
    });
}

std::unordered_set<std::string_view> ParamKeys(const NodeRule& rule)
{
    std::unordered_set<std::string_view> keys;
    for (const Param& param : rule.params.Params()) {
        keys.insert(param.key);
    }
    return keys;
}

std::unordered_set<std::string_view> NodeKeys(const NodeRule& rule)
{
    std::unordered_set<std::string_view> keys;
    for (const NodeInfo& node : rule.nodes) {
        keys.insert(node.param);
    }
    return keys;
}

} // namespace diagnosis::lint
