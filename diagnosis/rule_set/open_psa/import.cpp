#include "diagnosis/rule_set/open_psa/import.h"

#include <algorithm>
#include <string_view>

#include "diagnosis/rule_set/open_psa/model.h"
#include "diagnosis/rule_set/open_psa/references.h"
#include "diagnosis/rule_set/open_psa/sizes.h"
#include "diagnosis/rule_set/xml_lines.h"
#include "diagnosis/text/escaped_name.h"
#include "diagnosis/text/markup.h"

namespace diagnosis::rule_set::open_psa {

namespace {

using Kind = Formula::Kind;

/// The gates that no formula names, in order of the file.
std::vector<std::size_t> TopGates(const Model& model)
{
    std::vector<bool> isNamed(model.gates.size());
    for (const GateDefinition& gate : model.gates) {
        ForEachReference(gate.formula, [&](const Formula& reference) {
            if (reference.kind == Kind::GATE) {
                isNamed[model.gatesByName.at(reference.name)] = true;
            }
        });
    }
    std::vector<std::size_t> tops;
    for (std::size_t gate = 0; gate < isNamed.size(); ++gate) {
        if (!isNamed[gate]) {
            tops.push_back(gate);
        }
    }
    return tops;
}

std::optional<Failure> CheckSizes(const Model& model, const std::vector<std::size_t>& tops)
{
    const std::vector<Size> sizes = SizesOf(model);
    std::uint64_t events = 0;
    for (const std::size_t top : tops) {
        events += sizes[top].events;
        const std::string about = "the tree of the gate \"" + model.gates[top].name + "\" ";
        if (sizes[top].levels > MOST_LEVELS) {
            return FailureAt(model.path, model.gates[top].line,
                about + "has more than " + std::to_string(MOST_LEVELS) + " levels, which a tree file can't hold");
        }
        if (events > MOST_EVENTS) {
            return FailureAt(model.path, model.gates[top].line,
                about + "and those before it have more than " + std::to_string(MOST_EVENTS) + " events when written out");
        }
    }
    return std::nullopt;
}

std::string TextLine(const char* name, const std::string& text)
{
    return std::string("<") + name + ">" + Markup(text) + "</" + name + ">\n";
}

/// The lines of one event: its element, id, name, and gate.
std::string EventLines(const char* element, const std::string& id, const std::string& label, const std::string& gate = "")
{
    return XmlLines(element, TextLine("ID", id) + (label.empty() ? "" : TextLine("Name", label)) + gate);
}

/// Writes the event of one gate with all below it. Events that have no name of their own are named after the gate:
/// "GATE_1", "GATE_2" ...
class GateWriter {
public:
    GateWriter(const Model& model, const GateDefinition& gate)
        : mModel(model), mGate(gate), mId(gate.eventId)
    {
    }

    std::string Lines() { return EventLines("Intermediate-Event", mId, mGate.label, GateLines(mGate.formula)); }

private:
    static constexpr char OR[] = "Or-Gate";
    static constexpr char AND[] = "And-Gate";

    std::string NewId()
    {
        std::string id;
        do {
            id = mId + "_" + std::to_string(++mNumber);
        } while (mModel.gatesByName.count(EscapedName(id)) != 0 || mModel.basicEvents.count(EscapedName(id)) != 0
            || mModel.gatesByName.count(id) != 0 || mModel.basicEvents.count(id) != 0);
        return id;
    }

    std::string GateLines(const Formula& formula)
    {
        if (formula.kind == Kind::GATE || formula.kind == Kind::BASIC_EVENT) {
            return XmlLines(OR, ArgumentLines(formula));
        }
        const std::size_t count = formula.arguments.size();
        if (formula.kind == Kind::AT_LEAST && formula.least > 1 && formula.least < count) {
            return XmlLines(OR, CombinationLines(formula));
        }
        std::string arguments;
        for (const Formula& argument : formula.arguments) {
            arguments += ArgumentLines(argument);
        }
        const bool isAnd = formula.kind == Kind::AND || (formula.kind == Kind::AT_LEAST && formula.least > 1);
        return XmlLines(isAnd ? AND : OR, arguments);
    }

    // An AND for each choice of arguments, in order.
    std::string CombinationLines(const Formula& formula)
    {
        std::vector<bool> isChosen(formula.arguments.size());
        std::fill_n(isChosen.begin(), formula.least, true);
        std::string lines;
        do {
            const std::string id = NewId();
            std::string arguments;
            for (std::size_t i = 0; i < isChosen.size(); ++i) {
                arguments += isChosen[i] ? ArgumentLines(formula.arguments[i]) : "";
            }
            lines += EventLines("Intermediate-Event", id, "", XmlLines(AND, arguments));
        } while (std::prev_permutation(isChosen.begin(), isChosen.end()));
        return lines;
    }

    std::string ArgumentLines(const Formula& formula)
    {
        if (formula.kind == Kind::GATE) {
            return GateWriter(mModel, mModel.gates[mModel.gatesByName.at(formula.name)]).Lines();
        }
        if (formula.kind == Kind::BASIC_EVENT) {
            const BasicEventDefinition& basic = mModel.basicEvents.at(formula.name);
            return EventLines(
                basic.isUndeveloped ? "Undeveloped-Event" : "Basic-Event", UnescapedName(formula.name), basic.label);
        }
        const std::string id = NewId();
        return EventLines("Intermediate-Event", id, "", GateLines(formula));
    }

    const Model& mModel;
    const GateDefinition& mGate;
    const std::string mId;
    int mNumber = 0;
};

std::string TreeFile(const Model& model, const std::vector<std::size_t>& tops, const std::string& tag)
{
    std::vector<std::size_t> topsOfTree(model.trees.size());
    for (const std::size_t top : tops) {
        ++topsOfTree[model.gates[top].tree];
    }
    std::string trees;
    for (const std::size_t top : tops) {
        const GateDefinition& gate = model.gates[top];
        // A fault tree with several top gates becomes as many trees.
        const std::string id = UnescapedName(model.trees[gate.tree])
            + (topsOfTree[gate.tree] == 1 ? "" : "_" + UnescapedName(gate.name));
        trees += XmlLines("tree id=\"" + Markup(id) + "\" version=\"1\" type=\"imported\"",
            GateWriter(model, gate).Lines());
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + XmlLines("FaultTrees version=\"1\"", XmlLines(tag, trees));
}

} // namespace

std::optional<Failure> Import(const std::string& path, const std::string& tag, ImportedTrees& imported)
{
    Model model;
    if (auto failure = ReadModel(path, model)) {
        return failure;
    }
    const auto tops = TopGates(model);
    if (tops.empty()) {
        return FailureAt(path, 0, "it defines no gate");
    }
    if (auto failure = CheckSizes(model, tops)) {
        return failure;
    }
    imported = {TreeFile(model, tops, tag), tops.size(), model.withProbabilities};
    return std::nullopt;
}

} // namespace diagnosis::rule_set::open_psa
