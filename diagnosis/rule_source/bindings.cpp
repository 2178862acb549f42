#include "diagnosis/rule_source/bindings.h"

namespace diagnosis::rule_source {

namespace {

using Kind = BindingAlternative::Kind;

void AddName(Element rule, std::vector<RuleName>& names)
{
    const Element name = rule.FirstChild("Rule-name");
    if (name.HasText()) {
        names.push_back({name, name.Text(), nullptr});
    }
}

BindingAlternative ReadAlternative(Element element)
{
    BindingAlternative alternative;
    alternative.element = element;
    const Attribute type = element.Find("type");
    if (!type) {
        return alternative;
    }
    alternative.kind = Kind::UNKNOWN;
    if (type.Value() == "singleRule") {
        alternative.kind = Kind::SINGLE;
        AddName(element.FirstChild("Rule"), alternative.names);
    } else if (type.Value() == "multipleRule") {
        alternative.kind = Kind::GROUP;
        for (const Element rule : Children(element.FirstChild("and"), "Rule")) {
            AddName(rule, alternative.names);
        }
    }
    return alternative;
}

Binding ReadBinding(Element element)
{
    Binding binding;
    binding.element = element;
    binding.idElement = element.FirstChild("ID");
    binding.id = binding.idElement.Text();
    binding.isKept = binding.idElement.HasText();
    for (const Element alternative : Children(element, "or")) {
        binding.alternatives.push_back(ReadAlternative(alternative));
    }
    return binding;
}

} // namespace

Bindings ReadBindings(Element tag)
{
    Bindings bindings;
    for (const Element event : Children(tag, "Event")) {
        bindings.all.push_back(ReadBinding(event));
        if (!bindings.all.back().isKept) {
            continue;
        }
        const std::size_t index = bindings.all.size() - 1;
        const auto place = bindings.byId.emplace_hint(bindings.byId.end(), bindings.all.back().id, index);
        if (place->second != index) {
            bindings.all[place->second].isReplaced = true;
            place->second = index;
        }
    }
    return bindings;
}

} // namespace diagnosis::rule_source
