#include "diagnosis/rule_set/open_psa/model.h"

#include <charconv>
#include <string_view>

#include "diagnosis/rule_set/open_psa/references.h"
#include "diagnosis/text/escaped_name.h"

namespace diagnosis::rule_set::open_psa {

namespace {

using rule_source::Children;
using rule_source::Element;
using rule_source::SourceFile;

std::string Quoted(std::string_view name)
{
    return "\"" + std::string(name) + "\"";
}

/// Reads the elements of one file into a model; stops at the first that it can't use.
class ModelReader {
public:
    explicit ModelReader(Model& model) : mModel(model) {}

    std::optional<Failure> Read(Element root)
    {
        if (root.Name() != "opsa-mef") {
            Fail(root, "the root must be \"opsa-mef\"");
        }
        for (const Element child : Children(root)) {
            if (child.Name() == "define-fault-tree") {
                ReadTree(child);
            } else if (child.Name() == "model-data") {
                ReadModelData(child);
            } else if (!IsRemark(child)) {
                Refuse(child);
            }
        }
        return mFailure;
    }

private:
    void Fail(Element element, const std::string& message)
    {
        if (!mFailure) {
            mFailure = FailureAt(mModel.path, element.Line(), message);
        }
    }

    void Refuse(Element element)
    {
        Fail(element, Quoted(element.Name()) + " can't be imported: a tree file has AND, OR, k of n, and basic events");
    }

    // The value of one of the "attributes" of a definition; empty without it.
    static std::string_view AttributeOf(Element element, std::string_view name)
    {
        for (const Element attribute : Children(element.FirstChild("attributes"), "attribute")) {
            if (attribute.Value("name") == name) {
                return attribute.Value("value");
            }
        }
        return {};
    }

    static bool IsRemark(Element element) { return element.Name() == "label" || element.Name() == "attributes"; }

    std::string NameOf(Element element)
    {
        const std::string name(element.Value("name"));
        if (name.empty()) {
            Fail(element, Quoted(element.Name()) + " lacks a name");
        }
        return name;
    }

    void ReadTree(Element element)
    {
        mModel.trees.push_back(NameOf(element));
        if (!mTreeLines.emplace(mModel.trees.back(), element.Line()).second) {
            FailTwice(element, mModel.trees.back(), mTreeLines[mModel.trees.back()]);
        }
        for (const Element child : Children(element)) {
            if (child.Name() == "define-gate") {
                ReadGate(child);
            } else if (child.Name() == "define-basic-event") {
                ReadBasicEvent(child);
            } else if (!IsRemark(child)) {
                Refuse(child);
            }
        }
    }

    void ReadModelData(Element element)
    {
        for (const Element child : Children(element)) {
            if (child.Name() == "define-basic-event") {
                ReadBasicEvent(child);
            } else if (child.Name() == "define-parameter") {
                ++mModel.withProbabilities;
            } else {
                Refuse(child);
            }
        }
    }

    void FailTwice(Element element, const std::string& name, int line)
    {
        Fail(element, Quoted(name) + " is defined already in line " + std::to_string(line));
    }

    void Define(Element element, const std::string& name)
    {
        const auto [found, isNew] = mLines.emplace(name, element.Line());
        if (!isNew) {
            FailTwice(element, name, found->second);
        }
    }

    void ReadGate(Element element)
    {
        GateDefinition gate;
        gate.name = NameOf(element);
        const std::string_view id = AttributeOf(element, "event-id");
        gate.eventId = id.empty() ? UnescapedName(gate.name) : std::string(id);
        gate.label = element.FirstChild("label").Text();
        gate.line = element.Line();
        gate.tree = mModel.trees.size() - 1;
        Define(element, gate.name);
        auto formulas = ReadFormulas(element);
        if (formulas.size() == 1) {
            gate.formula = std::move(formulas.front());
        } else {
            Fail(element, "the gate " + Quoted(gate.name) + " needs one formula");
        }
        mModel.gatesByName.emplace(gate.name, mModel.gates.size());
        mModel.gates.push_back(std::move(gate));
    }

    // An expression beside label and attributes is a probability.
    void ReadBasicEvent(Element element)
    {
        const std::string name = NameOf(element);
        Define(element, name);
        BasicEventDefinition& basic = mModel.basicEvents[name];
        basic.label = element.FirstChild("label").Text();
        basic.line = element.Line();
        bool hasProbability = false;
        for (const Element child : Children(element)) {
            hasProbability = hasProbability || !IsRemark(child);
        }
        mModel.withProbabilities += hasProbability ? 1 : 0;
        basic.isUndeveloped = AttributeOf(element, "flavor") == "undeveloped";
    }

    std::vector<Formula> ReadFormulas(Element element)
    {
        std::vector<Formula> formulas;
        for (const Element child : Children(element)) {
            if (!IsRemark(child)) {
                formulas.push_back(ReadFormula(child));
            }
        }
        return formulas;
    }

    // As deep as the XML library lets elements be nested.
    Formula ReadFormula(Element element)
    {
        const std::string_view word = element.Name();
        const bool isReference = word == "gate" || word == "basic-event" || word == "event";
        if (isReference) {
            return ReadReference(element);
        }
        Formula formula;
        formula.line = element.Line();
        formula.kind = word == "and" ? Formula::Kind::AND : word == "or" ? Formula::Kind::OR : Formula::Kind::AT_LEAST;
        if (word != "and" && word != "or" && word != "atleast") {
            Refuse(element);
            return formula;
        }
        formula.arguments = ReadFormulas(element);
        if (formula.arguments.empty()) {
            Fail(element, Quoted(word) + " has no arguments");
        }
        if (formula.kind == Formula::Kind::AT_LEAST) {
            ReadLeast(element, formula);
        }
        return formula;
    }

    void ReadLeast(Element element, Formula& formula)
    {
        const std::string_view text = element.Value("min");
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), formula.least);
        const bool isNumber = error == std::errc() && end == text.data() + text.size();
        if (!isNumber || formula.least < 1 || formula.least > formula.arguments.size()) {
            Fail(element, "\"min\" must be a number from 1 to that of the arguments, "
                    + std::to_string(formula.arguments.size()));
        }
    }

    // Whether an "event" is a gate is decided once all names are known.
    Formula ReadReference(Element element)
    {
        const std::string_view word = element.Name() == "event" ? element.Value("type") : element.Name();
        if (!word.empty() && word != "gate" && word != "basic-event") {
            Fail(element, "an event of the type " + Quoted(word) + " can't be imported");
        }
        Formula formula;
        formula.kind = word == "gate" ? Formula::Kind::GATE : Formula::Kind::BASIC_EVENT;
        formula.name = NameOf(element);
        formula.line = element.Line();
        formula.isOfAnyKind = word.empty();
        return formula;
    }

    Model& mModel;
    std::map<std::string, int> mLines;
    std::map<std::string, int> mTreeLines;
    std::optional<Failure> mFailure;
};

} // namespace

Failure FailureAt(const std::string& path, int line, const std::string& message)
{
    return {FailureCode::BAD_MODEL, path + (line > 0 ? ":" + std::to_string(line) : "") + ": " + message};
}

std::optional<Failure> ReadModel(const std::string& path, Model& model)
{
    model.path = path;
    const auto file = SourceFile::Read(path);
    if (!file->IsLoaded()) {
        return FailureAt(path, file->ProblemLine(), file->Problem());
    }
    if (auto failure = ModelReader(model).Read(file->Root())) {
        return failure;
    }
    return ResolveReferences(model);
}

} // namespace diagnosis::rule_set::open_psa
