#include <memory>

#include "diagnosis/capture/bundle_capture.h"
#include "diagnosis/capture/bundle_contents.h"
#include "diagnosis/redaction/redaction_file.h"
#include "diagnosis/results/bundle_json.h"
#include "diagnosis/results/capture_json.h"
#include "diagnosis/text/printable.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/bundle_text.h"
#include "tools/arborist/render/redaction_text.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct BundleOptions {
    std::string bundle;
    std::string target;
    /// The redaction file; empty for none.
    std::string redaction;
    CaptureOptions capture;
    LogOptions log;
    CodeRunnerOptions codeRunner;
    bool asJson = false;
    bool isStrict = false;
};

// Reads the redaction file, if there is one. On failure prints the reason and returns false.
bool HasRedaction(BundleOptions& options)
{
    if (options.redaction.empty()) {
        return true;
    }
    const auto redaction = std::make_shared<Redaction>();
    options.capture.redaction = redaction;
    auto failure = ReadRedactionFile(options.redaction, *redaction);
    if (!failure && redaction->bundleKeys.empty() && redaction->nodes.empty() && redaction->log.empty()) {
        failure = Failure{FailureCode::BAD_REDACTION, options.redaction + ": lists nothing that a bundle has"};
    }
    if (failure) {
        PrintError(failure->message);
    }
    return !failure;
}

ExitStatus Pack(BundleOptions options)
{
    if (!IsLogOpen(options.log) || !HasRedaction(options)) {
        return ExitStatus::WRONG_USE;
    }
    options.capture.codeRunner = MakeCodeRunner(options.codeRunner);
    const auto report = CaptureBundle(MakeBundlePath(options.bundle), options.target, options.capture);
    if (options.asJson) {
        PrintResult(CaptureJson(options.bundle, options.target, report) + "\n");
        return report.failure ? report.failure->status : ExitStatus::SUCCESS;
    }
    PrintProblems(options.bundle, report.warnings, report.failure);
    if (report.failure) {
        return report.failure->status;
    }
    PrintResult(report.redaction ? RedactionText(*report.redaction) : "");
    if (options.capture.overrides.isLive) {
        for (const std::string& name : report.names) {
            PrintResult(Printable(name) + "\n");
        }
    }
    PrintResult(Printable(options.target) + ": " + std::to_string(report.files) + " files, "
        + std::to_string(report.bytes) + " bytes\n");
    return ExitStatus::SUCCESS;
}

ExitStatus Info(const BundleOptions& options)
{
    if (!IsLogOpen(options.log)) {
        return ExitStatus::WRONG_USE;
    }
    const auto contents = LookIntoBundle(MakeBundlePath(options.bundle), options.capture.overrides);
    if (options.asJson) {
        PrintResult(BundleJson(contents) + "\n");
    } else {
        PrintProblems(options.bundle, contents.warnings, contents.failure);
        PrintResult(BundleText(contents));
    }
    return contents.failure ? contents.failure->status : ExitStatus::SUCCESS;
}

ExitStatus Verify(const BundleOptions& options)
{
    if (!IsLogOpen(options.log)) {
        return ExitStatus::WRONG_USE;
    }
    const auto findings = CheckBundle(
        LookIntoBundle(MakeBundlePath(options.bundle), options.capture.overrides, BundleLook::FOR_MISTAKES));
    ExitStatus status = ExitStatus::SUCCESS;
    for (const BundleFinding& finding : findings) {
        status = MoreSerious(status, options.isStrict ? finding.strictStatus : finding.status);
    }
    PrintResult(options.asJson ? CheckJson(options.bundle, status == ExitStatus::SUCCESS, findings) + "\n"
                               : CheckText(options.bundle, findings, Colour(AreResultsColoured())));
    return status;
}

Command AddCommand(Command bundle, const std::string& name, const std::string& description,
    const std::shared_ptr<BundleOptions>& options)
{
    Command command = bundle.AddCommand(name, description);
    command.Add("BUNDLE", options->bundle, "Folder or zip with a bundle.json").Required();
    AddOverrides(command, options->capture.overrides);
    AddRules(command, options->capture.overrides);
    AddLogOptions(command, options->log);
    return command;
}

void AddPackCommand(Command bundle, ExitStatus& status)
{
    auto options = std::make_shared<BundleOptions>();
    Command pack = AddCommand(bundle, "pack", "Capture a device: all that a diagnosis looks at, in one bundle", options);
    pack.Add("-o,--output", options->target, "Zip to make (the name ends in .zip), or folder")
        .Takes("OUT").Required().NotEmpty();
    pack.AddFlag("--window", options->capture.isWindowOnly,
        "Of the event log only what the longest window of the rules reaches");
    pack.Add("--redact", options->redaction, "Replace what this JSON file lists by keyed hashes, and tell what was replaced")
        .Takes("FILE").NotEmpty();
    pack.AddFlag("--json", options->asJson, "One JSON object");
    AddCodeRunnerOptions(pack, options->codeRunner);
    pack.Footer("The answers of --code-runner are recorded.\nExamples:\n  arborist bundle pack examples/laptop -o laptop.zip\n"
                 "  arborist bundle pack examples/linux-host --live -o this-machine.zip\n"
                 "  arborist bundle pack examples/laptop --redact redaction.json -o for-others.zip\n"
                 "  arborist bundle pack . --window --code-runner ./tests.sh -o /tmp/device-7");
    pack.OnCall([options, &status] { status = Pack(*options); });
}

} // namespace

void AddBundleCommand(Command app, ExitStatus& status)
{
    Command bundle = app.AddCommand("bundle", "Bundles: capture a device, look into a capture, check it");
    bundle.RequireCommand();
    bundle.Footer("Example:\n  arborist bundle pack examples/laptop -o laptop.zip");
    AddPackCommand(bundle, status);

    auto infoOptions = std::make_shared<BundleOptions>();
    Command info = AddCommand(bundle, "info", "Tell what a bundle holds", infoOptions);
    info.AddFlag("--json", infoOptions->asJson, "One JSON object");
    info.Footer("Example:\n  arborist bundle info laptop.zip");
    info.OnCall([infoOptions, &status] { status = Info(*infoOptions); });

    auto verifyOptions = std::make_shared<BundleOptions>();
    Command verify = AddCommand(bundle, "verify", "Check whether a bundle can be run", verifyOptions);
    verify.AddFlag("--json", verifyOptions->asJson, "One JSON object");
    verify.AddFlag("--strict", verifyOptions->isStrict, "What is missing, and what a detection would warn of, counts as an error, too");
    verify.Footer("Example:\n  arborist bundle verify laptop.zip");
    verify.OnCall([verifyOptions, &status] { status = Verify(*verifyOptions); });
}

} // namespace diagnosis::command
