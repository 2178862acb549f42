#include "diagnosis/rule_set/open_psa/references.h"

namespace diagnosis::rule_set::open_psa {

namespace {

using Kind = Formula::Kind;

void Resolve(const Model& model, Formula& reference, std::optional<Failure>& failure)
{
    const bool isGate = model.gatesByName.count(reference.name) != 0;
    if (reference.isOfAnyKind) {
        reference.kind = isGate ? Kind::GATE : Kind::BASIC_EVENT;
    }
    const bool isKnown = reference.kind == Kind::GATE ? isGate : model.basicEvents.count(reference.name) != 0;
    if (!isKnown && !failure) {
        const std::string word = reference.kind == Kind::GATE ? "gate" : "basic event";
        failure = FailureAt(model.path, reference.line, "no " + word + " \"" + reference.name + "\" is defined");
    }
}

/// Orders gates so that each comes after its arguments. Goes without recursion: a file may have a chain of
/// any number of gates.
class GateOrder {
public:
    explicit GateOrder(Model& model) : mModel(model), mParents(model.gates.size()), mOpen(model.gates.size())
    {
        for (std::size_t gate = 0; gate < model.gates.size(); ++gate) {
            ForEachArgument(gate, [&](std::size_t argument) {
                mParents[argument].push_back(gate);
                ++mOpen[gate];
            });
        }
    }

    std::optional<Failure> Find()
    {
        std::vector<std::size_t>& order = mModel.argumentsFirst;
        for (std::size_t gate = 0; gate < mOpen.size(); ++gate) {
            if (mOpen[gate] == 0) {
                order.push_back(gate);
            }
        }
        for (std::size_t next = 0; next < order.size(); ++next) {
            for (const std::size_t parent : mParents[order[next]]) {
                if (--mOpen[parent] == 0) {
                    order.push_back(parent);
                }
            }
        }
        return order.size() == mOpen.size() ? std::nullopt : std::optional(CircleFailure());
    }

private:
    template <typename Visit>
    void ForEachArgument(std::size_t gate, const Visit& visit) const
    {
        ForEachReference(mModel.gates[gate].formula, [&](const Formula& reference) {
            if (reference.kind == Kind::GATE) {
                visit(mModel.gatesByName.at(reference.name));
            }
        });
    }

    // Every gate that is left leads into a circle: follows references until a gate comes again.
    Failure CircleFailure() const
    {
        std::size_t gate = 0;
        while (mOpen[gate] == 0) {
            ++gate;
        }
        std::vector<bool> isSeen(mOpen.size());
        while (!isSeen[gate]) {
            isSeen[gate] = true;
            std::size_t next = gate;
            ForEachArgument(gate, [&](std::size_t argument) { next = mOpen[argument] > 0 ? argument : next; });
            gate = next;
        }
        const GateDefinition& found = mModel.gates[gate];
        return FailureAt(mModel.path, found.line, "the gate \"" + found.name + "\" is part of itself");
    }

    Model& mModel;
    std::vector<std::vector<std::size_t>> mParents;
    /// How many arguments of each gate are not in the order yet.
    std::vector<std::size_t> mOpen;
};

} // namespace

std::optional<Failure> ResolveReferences(Model& model)
{
    std::optional<Failure> failure;
    for (GateDefinition& gate : model.gates) {
        ForEachReference(gate.formula, [&](Formula& reference) { Resolve(model, reference, failure); });
    }
    return failure ? failure : GateOrder(model).Find();
}

} // namespace diagnosis::rule_set::open_psa
