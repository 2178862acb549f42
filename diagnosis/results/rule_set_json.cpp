#include "diagnosis/results/rule_set_json.h"

#include "diagnosis/results/detection_json.h"
#include "diagnosis/rule_set/inventory.h"
#include "diagnosis/rule_set/reach.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

namespace {

using rule_set::Change;
using rule_set::Entry;
using rule_set::Fact;
using rule_set::Item;
using rule_set::Link;
using rule_set::Obstacle;
using rule_set::Place;
using rule_set::ReachedCause;
using rule_set::ReachedTree;
using rule_set::ReadRuleSet;
using rule_set::Shown;

constexpr char IMPORT_SCHEMA[] = "arborist.rules.import.1";

void WritePlace(const Place& place, JsonWriter& json)
{
    json.Text("file", place.file);
    json.Number("line", place.line);
}

void WriteIfAny(const char* key, const std::string& text, JsonWriter& json)
{
    if (!text.empty()) {
        json.Text(key, text);
    }
}

void WriteLinks(const std::vector<Link>& links, JsonWriter& json)
{
    json.Key("links").BeginArray();
    for (const Link& link : links) {
        json.BeginObject().Text("relation", link.relation).Text("kind", rule_set::KindWord(link.kind));
        json.Text("name", link.name);
        WriteIfAny("detail", link.detail, json);
        WritePlace(link.place, json);
        json.EndObject();
    }
    json.EndArray();
}

void WriteEntry(const Entry& entry, JsonWriter& json)
{
    json.BeginObject().Text("kind", rule_set::KindWord(entry.kind)).Text("name", entry.name);
    WriteIfAny("detail", entry.detail, json);
    WritePlace(entry.place, json);
    WriteLinks(entry.links, json);
    json.EndObject();
}

void WriteItem(const Item& item, JsonWriter& json)
{
    json.BeginObject().Text("name", item.name);
    WritePlace(item.place, json);
    json.Key("facts").BeginArray();
    for (const Fact& fact : item.facts) {
        json.BeginObject().Text("key", fact.key).Text("value", fact.value);
        json.Number("line", fact.line);
        json.EndObject();
    }
    json.EndArray().EndObject();
}

void WriteShown(const std::string& tag, const Shown& shown, JsonWriter& json)
{
    json.BeginObject().Text("tag", tag).Text("kind", rule_set::KindWord(shown.kind)).Text("name", shown.name);
    json.Key("items").BeginArray();
    for (const Item& item : shown.items) {
        WriteItem(item, json);
    }
    json.EndArray();
    WriteLinks(shown.links, json);
    json.EndObject();
}

void WriteFactPlace(const char* key, const Place& place, JsonWriter& json)
{
    if (place.line > 0) {
        json.Key(key).BeginObject();
        WritePlace(place, json);
        json.EndObject();
    }
}

void WriteChange(const Change& change, JsonWriter& json)
{
    json.BeginObject().Text("change", rule_set::ChangeWord(change.what)).Text("tag", change.tag);
    json.Text("kind", rule_set::KindWord(change.kind)).Text("name", change.name);
    if (!change.key.empty()) {
        json.Text("key", change.key).Text("before", change.before).Text("after", change.after);
    }
    WriteFactPlace("beforePlace", change.beforePlace, json);
    WriteFactPlace("afterPlace", change.afterPlace, json);
    json.EndObject();
}

void WriteObstacle(const Obstacle& obstacle, JsonWriter& json)
{
    json.BeginObject().Text("event", obstacle.event);
    WritePlace(obstacle.eventPlace, json);
    json.Text("reason", obstacle.reason);
    WriteIfAny("rule", obstacle.rule, json);
    WriteIfAny("filter", obstacle.filter, json);
    WriteFactPlace("rulePlace", obstacle.rulePlace, json);
    json.EndObject();
}

void WriteCause(const ReachedCause& cause, JsonWriter& json)
{
    json.BeginObject().Text("event", cause.event);
    WritePlace(cause.place, json);
    json.Bool("reachable", cause.isReachable).Key("obstacles").BeginArray();
    for (const Obstacle& obstacle : cause.obstacles) {
        WriteObstacle(obstacle, json);
    }
    json.EndArray().EndObject();
}

void WriteReach(const std::string& tag, const std::vector<ReachedTree>& trees, JsonWriter& json)
{
    for (const ReachedTree& tree : trees) {
        json.BeginObject().Text("tag", tag).Text("tree", tree.tree);
        WritePlace(tree.place, json);
        json.Key("rootCauses").BeginArray();
        for (const ReachedCause& cause : tree.causes) {
            WriteCause(cause, json);
        }
        json.EndArray().EndObject();
    }
}

void WriteDevice(const lint::DeviceProfile& device, JsonWriter& json)
{
    json.Text("product", device.product).Text("platform", device.platform).Text("deviceType", device.deviceType);
    json.Key("scenes").BeginArray();
    for (const int scene : device.scenes) {
        json.Number(scene);
    }
    json.EndArray();
}

} // namespace

std::string InventoryJson(const ReadRuleSet& rules)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.rules.list.1").Text("rules", rules.folder).Key("tags").BeginArray();
    for (const auto& tag : rules.tags) {
        json.BeginObject().Text("tag", tag->tag).Key("items").BeginArray();
        for (const Entry& entry : rule_set::InventoryOf(*tag)) {
            WriteEntry(entry, json);
        }
        json.EndArray().EndObject();
    }
    json.EndArray().EndObject();
    return json.Line();
}

std::string ShowJson(const ReadRuleSet& rules, const std::string& name)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.rules.show.1").Text("rules", rules.folder).Text("name", name);
    json.Key("found").BeginArray();
    for (const auto& tag : rules.tags) {
        for (const Shown& shown : rule_set::Show(*tag, name)) {
            WriteShown(tag->tag, shown, json);
        }
    }
    json.EndArray().EndObject();
    return json.Line();
}

std::string CountsJson(const ReadRuleSet& rules)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.rules.stats.1").Text("rules", rules.folder).Key("tags").BeginArray();
    for (const auto& tag : rules.tags) {
        json.BeginObject().Text("tag", tag->tag).Key("counts").BeginArray();
        for (const auto& [name, count] : rule_set::CountsOf(*tag)) {
            json.BeginObject().Text("of", name).Count("count", count).EndObject();
        }
        json.EndArray().EndObject();
    }
    json.EndArray().EndObject();
    return json.Line();
}

std::string DifferenceJson(const ReadRuleSet& before, const ReadRuleSet& after, const std::vector<Change>& changes)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.rules.diff.1").Text("before", before.folder).Text("after", after.folder);
    json.Bool("equal", changes.empty()).Key("changes").BeginArray();
    for (const Change& change : changes) {
        WriteChange(change, json);
    }
    json.EndArray().EndObject();
    return json.Line();
}

std::string ReachJson(const ReadRuleSet& rules, const std::vector<lint::DeviceProfile>& devices)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.rules.reach.1").Text("rules", rules.folder);
    json.Key("devices").BeginArray();
    for (const lint::DeviceProfile& device : devices) {
        json.BeginObject();
        WriteDevice(device, json);
        json.Key("trees").BeginArray();
        for (const auto& tag : rules.tags) {
            WriteReach(tag->tag, rule_set::ReachOf(*tag, device), json);
        }
        json.EndArray().EndObject();
    }
    json.EndArray().EndObject();
    return json.Line();
}

std::string ImportJson(
    const std::string& file, const rule_set::open_psa::ImportedTrees& imported, const std::string& output)
{
    JsonWriter json;
    json.BeginObject().Text("schema", IMPORT_SCHEMA).Text("file", file);
    json.Key("trees").Number(static_cast<std::int64_t>(imported.trees));
    json.Key("probabilitiesLeftOut").Number(static_cast<std::int64_t>(imported.withProbabilities));
    json.Text(output.empty() ? "text" : "output", output.empty() ? imported.text : output);
    return json.EndObject().Line();
}

std::string ImportFailureJson(const std::string& file, const Failure& failure)
{
    JsonWriter json;
    json.BeginObject().Text("schema", IMPORT_SCHEMA).Text("file", file);
    WriteError(json, failure);
    return json.EndObject().Line();
}

std::string RulesFailureJson(const std::string& command, const std::string& folder, const Failure& failure)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.rules." + command + ".1").Text("rules", folder);
    WriteError(json, failure);
    return json.EndObject().Line();
}

std::string LintFailureJson(const Failure& failure)
{
    JsonWriter json;
    json.BeginObject();
    WriteError(json, failure);
    return json.EndObject().Line();
}

} // namespace diagnosis
