#include "tools/arborist/commands/rules_making.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>

#include "diagnosis/results/rule_set_json.h"
#include "diagnosis/rule_set/new_rule_set.h"
#include "diagnosis/rule_set/open_psa/import.h"
#include "diagnosis/rule_set/read_rule_set.h"
#include "diagnosis/rule_set/schema.h"
#include "diagnosis/scratch/new_file.h"
#include "diagnosis/text/printable.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

using rule_set::ReadRuleSet;
using rule_set::Selection;

ExitStatus New(const std::string& folder)
{
    std::vector<std::string> paths;
    if (const auto failure = rule_set::MakeRuleSet(folder, paths)) {
        return FailureStatus(*failure);
    }
    for (const std::string& path : paths) {
        PrintResult(Printable(folder + "/" + path) + "\n");
    }
    return ExitStatus::SUCCESS;
}

struct ImportOptions {
    std::string file;
    std::string tag = "Imported";
    std::string folder;
    bool asJson = false;
};

// Words that may be the name of an element.
std::string TagProblem(const std::string& tag)
{
    const auto isLetter = [](char letter) { return std::isalpha(static_cast<unsigned char>(letter)) != 0 || letter == '_'; };
    const bool isName = !tag.empty() && isLetter(tag.front()) && std::all_of(tag.begin(), tag.end(), [&](char letter) {
        return isLetter(letter) || std::isdigit(static_cast<unsigned char>(letter)) != 0 || letter == '-' || letter == '.';
    });
    return isName ? "" : "a tag is a letter or \"_\", and then letters, digits, \"_\", \"-\" and \".\"";
}

std::string TreeFileIn(const std::string& folder)
{
    return folder + "/FaultTrees.xml";
}

// Keeps a tree file that is there: an author may have worked on it.
std::optional<Failure> WriteTreeFile(const std::string& text, const std::string& folder)
{
    const std::string path = TreeFileIn(folder);
    std::error_code error;
    const auto problem =
        std::filesystem::exists(path, error) ? std::optional(path + ": is there already") : WriteNewFile(path, text);
    return problem ? std::optional(Failure{FailureCode::NOT_WRITTEN, *problem}) : std::nullopt;
}

std::optional<Failure> Import(const ImportOptions& options, rule_set::open_psa::ImportedTrees& imported)
{
    if (auto failure = rule_set::open_psa::Import(options.file, options.tag, imported)) {
        return failure;
    }
    if (imported.withProbabilities > 0) {
        PrintError(options.file + ": the probabilities of " + std::to_string(imported.withProbabilities)
            + (imported.withProbabilities == 1 ? " definition is" : " definitions are") + " left out: a tree file has none");
    }
    return options.folder.empty() ? std::nullopt : WriteTreeFile(imported.text, options.folder);
}

std::string ImportText(const rule_set::open_psa::ImportedTrees& imported, const std::string& folder)
{
    return folder.empty() ? imported.text
                          : Printable(TreeFileIn(folder)) + ": " + std::to_string(imported.trees)
            + (imported.trees == 1 ? " tree\n" : " trees\n");
}

ExitStatus Import(const ImportOptions& options)
{
    rule_set::open_psa::ImportedTrees imported;
    if (const auto failure = Import(options, imported)) {
        if (options.asJson) {
            PrintResult(ImportFailureJson(options.file, *failure) + "\n");
        }
        return FailureStatus(*failure);
    }
    PrintResult(options.asJson
            ? ImportJson(options.file, imported, options.folder.empty() ? "" : TreeFileIn(options.folder)) + "\n"
            : ImportText(imported, options.folder));
    return ExitStatus::SUCCESS;
}

struct SchemaOptions {
    Selection selection;
    /// "trees" or "rules", for RELAX NG; empty for XML Schema.
    std::string relaxNg;
};

ExitStatus Schema(const SchemaOptions& options)
{
    if (!options.relaxNg.empty()) {
        PrintResult(rule_set::RelaxNgOf(
            options.relaxNg == "trees" ? rule_set::RuleFileKind::TREES : rule_set::RuleFileKind::RULES));
        return ExitStatus::SUCCESS;
    }
    ReadRuleSet rules;
    if (!options.selection.folder.empty()) {
        if (const auto failure = ReadInto(options.selection, rules)) {
            return FailureStatus(*failure);
        }
    }
    PrintResult(rule_set::XmlSchemaOf(rules.files, options.selection.tag));
    return ExitStatus::SUCCESS;
}

void AddNewCommand(Command rules, ExitStatus& status)
{
    auto folder = std::make_shared<std::string>();
    Command made = rules.AddCommand("new", "Make a small rule set with its test and a bundle, to start from");
    made.Add("DIR", *folder, "Folder to make; if there is one, it must be empty").Required().NotEmpty();
    made.Footer("Example:\n  arborist rules new heat");
    made.OnCall([folder, &status] { status = New(*folder); });
}

void AddImportCommand(Command rules, ExitStatus& status)
{
    auto options = std::make_shared<ImportOptions>();
    Command import = rules.AddCommand("import", "Turn fault trees in the Open-PSA exchange format into a tree file");
    import.Add("FILE", options->file, "File with AND, OR and k of n over gates and basic events").Required();
    import.Add("--tag", options->tag, "Tag of the trees").Takes("TAG").Check(TagProblem).ShowDefault();
    import.Add("-o,--output", options->folder, "Folder for FaultTrees.xml; standard output without it").Takes("DIR");
    import.AddFlag("--json", options->asJson, "One JSON object");
    import.Footer("Example:\n  arborist rules import model.xml --tag Device --output rules");
    import.OnCall([options, &status] { status = Import(*options); });
}

void AddSchemaCommand(Command rules, ExitStatus& status)
{
    auto options = std::make_shared<SchemaOptions>();
    Command schema = rules.AddCommand("schema", "Print a schema of the rule files for editors and validators");
    schema.Add("RULES_DIR", options->selection.folder, "Take names that may be any from this rule set");
    schema.Add("--prefix", options->selection.prefix, "The files are named with this and \"_\" in front").Takes("PREFIX");
    const Option tag = schema.Add("--tag", options->selection.tag, "An XML Schema of both files for this tag")
        .Takes("TAG").NotEmpty();
    schema.Add("--relax-ng", options->relaxNg, "A RELAX NG schema of one file for all tags")
        .Takes("FILE").OneOf({"trees", "rules"}).Excludes(tag);
    schema.Footer("Examples:\n  arborist rules schema --tag Laptop examples/laptop/rules > laptop.xsd\n"
                  "  arborist rules schema --relax-ng trees > trees.rng");
    schema.OnCall([options, &status] {
        if (options->selection.tag.empty() && options->relaxNg.empty()) {
            FailMissing("--tag");
        }
        status = Schema(*options);
    });
}

} // namespace

void AddRulesMakingCommands(Command rules, ExitStatus& status)
{
    AddNewCommand(rules, status);
    AddImportCommand(rules, status);
    AddSchemaCommand(rules, status);
}

ExitStatus FailureStatus(const Failure& failure)
{
    PrintError(failure.message);
    return failure.status;
}

} // namespace diagnosis::command
