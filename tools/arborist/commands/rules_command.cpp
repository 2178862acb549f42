#include <memory>

#include "diagnosis/lint/device_profiles.h"
#include "diagnosis/results/rule_set_json.h"
#include "diagnosis/rule_set/inventory.h"
#include "diagnosis/rule_set/read_rule_set.h"
#include "diagnosis/text/near_match.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/rules_making.h"
#include "tools/arborist/render/rule_set_text.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

using rule_set::ReadRuleSet;
using rule_set::Selection;

struct RulesOptions {
    /// The command: "list".
    std::string command;
    Selection selection;
    /// The other folder of a comparison.
    std::string other;
    std::string name;
    std::vector<std::string> devices;
    bool asJson = false;
};

Colour ResultColour()
{
    return Colour(AreResultsColoured());
}

// Prints why the command can't be carried out, with --json also as an object on standard output.
ExitStatus Failed(const Failure& failure, const RulesOptions& options)
{
    if (options.asJson) {
        PrintResult(RulesFailureJson(options.command, options.selection.folder, failure) + "\n");
    }
    return FailureStatus(failure);
}

ExitStatus List(const RulesOptions& options)
{
    ReadRuleSet rules;
    if (const auto failure = ReadInto(options.selection, rules)) {
        return Failed(*failure, options);
    }
    PrintResult(options.asJson ? InventoryJson(rules) + "\n" : InventoryText(rules, ResultColour()));
    return ExitStatus::SUCCESS;
}

ExitStatus Stats(const RulesOptions& options)
{
    ReadRuleSet rules;
    if (const auto failure = ReadInto(options.selection, rules)) {
        return Failed(*failure, options);
    }
    PrintResult(options.asJson ? CountsJson(rules) + "\n" : CountsText(rules, ResultColour()));
    return ExitStatus::SUCCESS;
}

std::string Unknown(const ReadRuleSet& rules, const std::string& name)
{
    std::vector<std::string> names;
    for (const auto& tag : rules.tags) {
        const auto more = rule_set::NamesOf(*tag);
        names.insert(names.end(), more.begin(), more.end());
    }
    return rules.folder + ": no tree, event, rule, shared data, database or repair is named \"" + name + "\""
        + DidYouMean(name, names);
}

ExitStatus Show(const RulesOptions& options)
{
    ReadRuleSet rules;
    if (const auto failure = ReadInto(options.selection, rules)) {
        return Failed(*failure, options);
    }
    std::string text;
    for (const auto& tag : rules.tags) {
        for (const rule_set::Shown& shown : rule_set::Show(*tag, options.name)) {
            text += (rules.tags.size() > 1 ? tag->tag + ": " : "") + ShownText(shown, ResultColour());
        }
    }
    if (options.asJson || !text.empty()) {
        PrintResult(options.asJson ? ShowJson(rules, options.name) + "\n" : text);
    }
    if (text.empty()) {
        PrintError(Unknown(rules, options.name));
        return ExitStatus::FAULT_FOUND;
    }
    return ExitStatus::SUCCESS;
}

ExitStatus Diff(const RulesOptions& options)
{
    ReadRuleSet before;
    ReadRuleSet after;
    Selection other = options.selection;
    other.folder = options.other;
    for (const auto& failure : {ReadInto(options.selection, before), ReadInto(other, after)}) {
        if (failure) {
            return Failed(*failure, options);
        }
    }
    const auto changes = rule_set::DifferencesOf(before, after);
    PrintResult(options.asJson ? DifferenceJson(before, after, changes) + "\n" : DifferenceText(changes, ResultColour()));
    return changes.empty() ? ExitStatus::SUCCESS : ExitStatus::FAULT_FOUND;
}

std::optional<Failure> ReadDevices(const std::vector<std::string>& files, std::vector<lint::DeviceProfile>& devices)
{
    for (const std::string& file : files) {
        std::string problem;
        const auto more = lint::ReadDeviceProfiles(file, problem);
        if (!more) {
            return Failure{FailureCode::BAD_DEVICE, problem};
        }
        devices.insert(devices.end(), more->begin(), more->end());
    }
    return std::nullopt;
}

ExitStatus Reach(const RulesOptions& options)
{
    ReadRuleSet rules;
    std::vector<lint::DeviceProfile> devices;
    for (const auto& failure : {ReadDevices(options.devices, devices), ReadInto(options.selection, rules)}) {
        if (failure) {
            return Failed(*failure, options);
        }
    }
    std::string text;
    for (const lint::DeviceProfile& device : devices) {
        text += ReachText(rules, device, ResultColour());
    }
    PrintResult(options.asJson ? ReachJson(rules, devices) + "\n" : text);
    return ExitStatus::SUCCESS;
}

using Run = ExitStatus (*)(const RulesOptions& options);

/// Adds a command without its own options and arguments.
Command Add(Command rules, const std::string& name, const std::string& description,
    const std::shared_ptr<RulesOptions>& options, Run run, ExitStatus& status)
{
    options->command = name;
    Command command = rules.AddCommand(name, description);
    command.Add("--prefix", options->selection.prefix, "The files are named with this and \"_\" in front").Takes("PREFIX");
    command.AddFlag("--json", options->asJson, "One JSON object");
    command.OnCall([options, &status, run] { status = run(*options); });
    return command;
}

void AddFolder(Command command, RulesOptions& options)
{
    command.Add("RULES_DIR", options.selection.folder, "Folder with FaultTrees.xml and FaultTreeRules.xml").Required();
}

void AddTag(Command command, RulesOptions& options)
{
    command.Add("--tag", options.selection.tag, "Look at this tag alone").Takes("TAG");
}

// A command that only takes a folder, with an example of its use.
void AddPlainCommand(Command rules, const std::string& name, const std::string& description, Run run, ExitStatus& status)
{
    auto options = std::make_shared<RulesOptions>();
    Command plain = Add(rules, name, description, options, run, status);
    AddFolder(plain, *options);
    AddTag(plain, *options);
    plain.Footer("Example:\n  arborist rules " + name + " examples/laptop/rules");
}

void AddShowCommand(Command rules, ExitStatus& status)
{
    auto options = std::make_shared<RulesOptions>();
    Command show = Add(rules, "show", "Show a rule, event, tree, shared data or repair, and everything that touches it", options,
        Show, status);
    AddFolder(show, *options);
    show.Add("NAME", options->name, "Its name or id").Required();
    AddTag(show, *options);
    show.Footer("Exits with 1 if nothing has the name.\n"
                "Example:\n  arborist rules show examples/laptop/rules BATTERY_WORN");
}

void AddDiffCommand(Command rules, ExitStatus& status)
{
    auto options = std::make_shared<RulesOptions>();
    Command diff = Add(rules, "diff", "List where two rule sets differ in what the engine reads", options, Diff, status);
    diff.Add("A", options->selection.folder, "Folder of the rule set before").Required();
    diff.Add("B", options->other, "Folder of the rule set after").Required();
    AddTag(diff, *options);
    diff.Footer("Exits with 0 if they mean the same, with 1 if they differ.\n"
                "Example:\n  arborist rules diff old/rules new/rules");
}

void AddReachCommand(Command rules, ExitStatus& status)
{
    auto options = std::make_shared<RulesOptions>();
    Command reach = Add(rules, "reach", "List the root causes that the filters let a device report", options, Reach, status);
    AddFolder(reach, *options);
    reach.Add("--device", options->devices, "Profiles of devices, as for lint, or a bundle.json").Takes("FILE").Required();
    AddTag(reach, *options);
    reach.Footer("Example:\n  arborist rules reach examples/laptop/rules --device examples/laptop/bundle.json");
}

} // namespace

void AddRulesCommand(Command app, ExitStatus& status)
{
    Command rules = app.AddCommand("rules", "Rule sets: list, show, compare");
    rules.RequireCommand();
    rules.Footer("Example:\n  arborist rules list examples/laptop/rules");
    AddPlainCommand(rules, "list", "List trees, events, rules and shared data, and who names whom", List, status);
    AddShowCommand(rules, status);
    AddPlainCommand(rules, "stats", "Count what a rule set has", Stats, status);
    AddDiffCommand(rules, status);
    AddReachCommand(rules, status);
    AddRulesMakingCommands(rules, status);
}

} // namespace diagnosis::command
