#include "diagnosis/results/explanation_json.h"

#include <cstdio>
#include <utility>

#include "diagnosis/analysis/gate_logic.h"
#include "diagnosis/analysis/minimal_sets.h"
#include "diagnosis/analysis/next_checks.h"
#include "diagnosis/results/detection_json.h"
#include "diagnosis/results/event_json.h"
#include "diagnosis/results/rule_json.h"
#include "diagnosis/results/verdict_json.h"

namespace diagnosis {

namespace {

// Null for a number that can't be reached.
void WriteFewest(JsonWriter& json, const FewestChecks& fewest)
{
    for (const auto& [key, number] : {std::pair("toProve", fewest.toProve), std::pair("toRuleOut", fewest.toRuleOut)}) {
        json.Key(key);
        number == FewestChecks::NEVER ? json.Null() : json.Number(number);
    }
}

void WriteMissingSources(JsonWriter& json, const TreeReports& trees)
{
    const MissingSources missing = FindMissingSources(trees);
    json.Key("missing").BeginObject().Count("undecided", missing.undecided).Key("sources").BeginArray();
    for (const MissingSource& source : missing.sources) {
        json.BeginObject().Text("reason", Evidence::ReasonText(source.reason)).Text("detail", source.detail);
        json.Count("checks", source.checks).Count("decides", source.decides).EndObject();
    }
    json.EndArray().EndObject();
}

/// Writes one tree of an explanation as an object.
class TreeJson {
public:
    TreeJson(JsonWriter& json, const TreeReport& report, const ExplanationView& view)
        : mJson(json), mReport(report), mTree(report.tree), mView(view)
    {
    }

    void Write()
    {
        mJson.BeginObject().Text("treeId", mReport.Id());
        mJson.Text("version", mReport.result->mVersion).Bool("isFault", mReport.IsFault());
        WriteVerdict(mJson, mReport.verdict);
        if (!mView.brief) {
            WriteEvents();
            WriteEvidence();
        }
        WriteCauses();
        if (!mView.brief && !mView.IsNarrow()) {
            WriteCutOffs();
        }
        if (mView.nearMisses > 0) {
            WriteNearMisses();
        }
        if (mView.minimal) {
            WriteMinimalSets();
        }
        if (mView.next > 0) {
            WriteNext();
        }
        mJson.EndObject();
    }

private:
    void WriteEvents()
    {
        if (mView.IsNarrow()) {
            mJson.Key("events").BeginArray();
            for (const std::size_t place : ShownEvents(mTree, mView)) {
                mJson.BeginObject();
                WriteEvent(place);
                mJson.Key("path").Texts(mTree.PathIds(place)).EndObject();
            }
            mJson.EndArray();
        } else if (!mTree.events.empty()) {
            mJson.Key("tree");
            WritePreOrder(mJson, mTree.events, [this](std::size_t place) { WriteEvent(place); });
        }
    }

    void WriteEvent(std::size_t place)
    {
        const RecordedEvent& event = mTree.events[place];
        WriteFoldedEvent(mJson, event);
        mJson.Text("reason", Evidence::ReasonText(ReasonOfEvent(mTree, event)));
        if (!event.IsLeaf()) {
            WriteLogic(place);
        }
        if (event.evidence != RecordedEvent::NONE) {
            mJson.Count("evidence", event.evidence);
        }
    }

    void WriteLogic(std::size_t place)
    {
        const GateLogic logic = GateLogicOf(mTree, place);
        mJson.Key("logic").BeginObject().Text("outcome", Evidence::StateText(logic.outcome));
        mJson.Count("below", logic.below);
        mJson.Count("inError", logic.inError);
        mJson.Text("decidedBy", logic.decider == RecordedEvent::NONE ? "" : mTree.events[logic.decider].id);
        mJson.EndObject();
    }

    // Writes the whole list even for a narrowed view, as other members refer to positions in it.
    void WriteEvidence()
    {
        mJson.Key("evidence").BeginArray();
        for (const Evidence::Event& evidence : mTree.evidence) {
            mJson.BeginObject().Text("event", evidence.id).Bool("fired", evidence.fired);
            mJson.Text("reason", Evidence::ReasonText(evidence.reason));
            mJson.Text("check", Evidence::CheckText(evidence.check));
            mJson.Key("rules").BeginArray();
            for (const PlacedRule& placed : RulesOf(evidence)) {
                if (IsShown(placed.rule, mView)) {
                    WriteRule(mJson, placed);
                }
            }
            mJson.EndArray().EndObject();
        }
        mJson.EndArray();
    }

    void WriteCauses()
    {
        mJson.Key("rootCauses").BeginArray();
        for (const DistinctCause& cause : ShownCauses(mTree, mView)) {
            mJson.BeginObject();
            const RecordedCause& first = mTree.causes[cause.first];
            if (first.result != nullptr) {
                WriteRootCauseTexts(mJson, *first.result);
            }
            mJson.Count("times", cause.times);
            mJson.Key("cutSet").BeginArray();
            for (const std::size_t member : first.members) {
                if (member != RecordedEvent::NONE) {
                    WriteMember(member);
                }
            }
            mJson.EndArray().EndObject();
        }
        mJson.EndArray();
    }

    void WriteMember(std::size_t place)
    {
        const RecordedEvent& event = mTree.events[place];
        mJson.BeginObject().Text("id", event.id).Text("status", Evidence::StateText(event.status));
        mJson.Key("path").Texts(mTree.PathIds(place));
        if (event.evidence != RecordedEvent::NONE) {
            mJson.Count("evidence", event.evidence);
        }
        mJson.EndObject();
    }

    void WriteMembers(const char* key, const std::vector<std::size_t>& places)
    {
        mJson.Key(key).BeginArray();
        for (const std::size_t place : places) {
            WriteMember(place);
        }
        mJson.EndArray();
    }

    void WriteCutOffs()
    {
        mJson.Key("cutOffs").BeginArray();
        for (const CutOff& cutOff : CutOffsOf(mTree)) {
            mJson.BeginObject().Text("id", mTree.events[cutOff.event].id);
            mJson.Key("path").Texts(mTree.PathIds(cutOff.event));
            WriteMembers("leaves", cutOff.leaves);
            mJson.EndObject();
        }
        mJson.EndArray();
    }

    void WriteNearMisses()
    {
        const NearMisses nearMisses = ShownNearMisses(mTree, mView);
        mJson.Key("nearMisses").BeginObject();
        mJson.Count("leftOut", nearMisses.leftOut);
        mJson.Bool("complete", nearMisses.isComplete);
        mJson.Key("sets").BeginArray();
        for (const NearMiss& nearMiss : nearMisses.sets) {
            mJson.BeginObject();
            WriteMembers("missing", nearMiss.missing);
            WriteMembers("present", nearMiss.present);
            mJson.EndObject();
        }
        mJson.EndArray().EndObject();
    }

    void WriteMinimalSets()
    {
        const MinimalSets minimal = FindMinimalSets(mTree);
        mJson.Key("minimal").BeginObject();
        mJson.Count("listed", minimal.listed);
        mJson.Count("distinct", minimal.distinct);
        mJson.Key("sets").BeginArray();
        for (const DistinctCause& set : minimal.sets) {
            mJson.BeginObject().Key("ids").Texts(set.ids);
            mJson.Count("times", set.times);
            mJson.EndObject();
        }
        mJson.EndArray().Key("shares").BeginArray();
        for (const EventShare& share : minimal.shares) {
            mJson.BeginObject().Text("id", share.id);
            mJson.Count("sets", share.sets);
            char number[32];
            std::snprintf(number, sizeof number, "%.6f", share.share);
            mJson.Key("share").Raw(number).EndObject();
        }
        mJson.EndArray().Key("repairs").BeginObject().Key("ids").Texts(minimal.repairs.ids);
        mJson.Bool("smallest", minimal.repairs.isSmallest).EndObject().EndObject();
    }

    // Null for a tree that is not undecided.
    void WriteNext()
    {
        mJson.Key("next");
        if (!mReport.IsUndecided()) {
            mJson.Null();
            return;
        }
        const NextChecks next = FindNextChecks(mReport, mView.next);
        mJson.BeginObject();
        WriteFewest(mJson, next.fewest);
        mJson.Bool("aboutCause", next.aim == NextChecks::Aim::CAUSE).Bool("atMost", next.isAtMost);
        mJson.Key("checks").BeginArray();
        for (const NextCheck& check : next.checks) {
            WriteNextCheck(check);
        }
        mJson.EndArray().EndObject();
    }

    void WriteNextCheck(const NextCheck& check)
    {
        const Evidence::OpenCheck* const open = OpenCheckOf(mReport, mTree.events[check.event].id);
        mJson.BeginObject().Text("event", mTree.events[check.event].id);
        mJson.Text("rule", open == nullptr ? "" : open->ruleName);
        mJson.Text("reason", open == nullptr ? "" : Evidence::ReasonText(open->reason));
        mJson.Text("detail", open == nullptr ? "" : open->detail);
        mJson.Key("path").Texts(mTree.PathIds(check.event));
        WriteFewest(mJson, check.before);
        mJson.EndObject();
    }

    JsonWriter& mJson;
    const TreeReport& mReport;
    const RecordedTree& mTree;
    const ExplanationView& mView;
};

} // namespace

void WriteExplainedTrees(JsonWriter& json, const TreeReports& trees, const ExplanationView& view)
{
    json.BeginArray();
    for (const TreeReport& tree : trees) {
        TreeJson(json, tree, view).Write();
    }
    json.EndArray();
}

std::string ExplanationJson(const DetectionReport& report, const ExplanationView& view)
{
    JsonWriter json;
    json.BeginObject();
    WriteHead(json, "arborist.explain.1", report.bundle, !report.failure, report.warnings);
    json.Key("results");
    WriteExplainedTrees(json, report.trees, view);
    if (view.next > 0) {
        WriteMissingSources(json, report.trees);
    }
    if (report.failure) {
        WriteError(json, *report.failure);
    }
    return json.EndObject().Line();
}

} // namespace diagnosis
