#include "diagnosis/results_db/result_line.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include <json/value.h>

#include "diagnosis/results_db/line_members.h"
#include "diagnosis/results_db/local_moment.h"
#include "diagnosis/text/json_text.h"

namespace diagnosis::results_db {

namespace {

constexpr char SCHEMA_NAME[] = "arborist.detect.1";
ResultWarning ReadWarning(Members object)
{
    ResultWarning warning;
    warning.code = object.Text("code");
    warning.message = object.Text("message");
    warning.lint = object.Text("id");
    warning.rule = object.Text("rule");
    warning.event = object.Text("event");
    warning.file = object.Text("file");
    warning.line = object.Count("line");
    return warning;
}

ResultCause ReadCause(Members object)
{
    ResultCause cause;
    cause.id = object.Text("id");
    cause.name = object.Text("name");
    cause.userDefined = object.Text("userDefined");
    cause.faultDescription = object.Text("faultDescription");
    cause.suggestions = object.Texts("suggestions");
    object.ForEach("repairs", [&cause](Members repair) {
        cause.repairs.push_back({repair.Text("id"), repair.Text("extra"), repair.Text("operation")});
    });
    cause.cutSet = object.Texts("cutSet");
    return cause;
}

ResultChecks ReadChecks(Members object)
{
    ResultChecks checks;
    checks.total = object.Count("total");
    checks.decided = object.Count("decided");
    checks.notApplicable = object.Count("not_applicable");
    checks.notSelected = object.Count("not_selected");
    checks.notChecked = object.Count("not_checked");
    checks.noData = object.Count("no_data");
    checks.error = object.Count("error");
    return checks;
}

ResultTree ReadTree(Members object)
{
    ResultTree tree;
    tree.id = object.Text("treeId");
    tree.version = object.Text("version");
    tree.verdict = object.Word("verdict", {"fault", "undecided", "no_fault", "not_applicable"});
    tree.isFault = object.Bool("isFault");
    tree.isComplete = object.Bool("complete");
    tree.checks = ReadChecks(object.Object("checks"));
    object.ForEach("open", [&tree](Members open) {
        tree.open.push_back({open.Text("event"), open.Text("rule"), open.Text("check"), open.Text("reason"),
            open.Text("detail"), open.Bool("restsOnDefault")});
    });
    object.ForEach("possibleCauses", [&tree](const Members&) { ++tree.possibleCauses; });
    tree.arePossibleCausesTruncated = object.Bool("possibleCausesTruncated");
    object.ForEach("rootCauses", [&tree](Members cause) { tree.causes.push_back(ReadCause(std::move(cause))); });
    return tree;
}

// The evidence of the explanation, each as its bytes in the line.
std::vector<ResultEvidence> ReadEvidence(std::string_view text, Members line)
{
    std::vector<ResultEvidence> all;
    line.ForEach("explanation", [&](Members tree) {
        const std::string treeId = tree.Text("treeId");
        tree.ForEach("evidence", [&](Members evidence) {
            all.push_back({treeId, evidence.Text("event"), std::string(evidence.In(text))});
        });
    });
    return all;
}

// What makes a line comparable.
void ReadOrigin(Members object, ResultLine& line, std::string& problem)
{
    line.device = object.Text("device");
    line.engine = object.Text("engine");
    line.ruleSet = object.Text("ruleSet");
    line.now = object.Text("now");
    line.seconds = object.Seconds("seconds");
    if (problem.empty() && !line.now.empty() && !LocalMoment(line.now)) {
        problem = "now must be \"YYYY-MM-DD HH:MM:SS\" or empty";
    }
}

void ReadMembers(Members object, ResultLine& line, std::string& problem)
{
    object.Word("schema", {SCHEMA_NAME});
    line.bundle = object.Text("bundle");
    line.ok = object.Bool("ok");
    object.ForEach("warnings", [&line](Members warning) {
        line.warnings.push_back(std::make_shared<const ResultWarning>(ReadWarning(std::move(warning))));
    });
    object.ForEach("results", [&line](Members tree) {
        line.trees.push_back(std::make_shared<const ResultTree>(ReadTree(std::move(tree))));
    });
    Members error = object.Object("error");
    line.error = {error.Text("code"), error.Text("message"), error.Bool("retry")};
    ReadOrigin(object, line, problem);
    if (object.Has("repaired")) {
        object.ForEach("repaired", [&line](Members repair) {
            line.repaired.push_back({repair.Text("id"), repair.Text("date")});
        });
    }
}

// The record of one object; null if it is none.
template <typename Record, Record (*Read)(Members)>
std::shared_ptr<const Record> ReadPiece(std::string_view text)
{
    std::string problem;
    const auto value = ParseJson(text, problem);
    if (!value) {
        return nullptr;
    }
    auto record = std::make_shared<const Record>(Read(Members(*value, "", problem)));
    return problem.empty() ? record : nullptr;
}

// Puts the values that were cut out of a frame into its record. False if one can't be used.
bool FillIn(const LinePieces& pieces, ResultLine& line)
{
    line.bundle = pieces.bundle.value_or(line.bundle);
    line.device = pieces.device.value_or(line.device);
    line.now = pieces.now.value_or(line.now);
    if (pieces.seconds) {
        const std::string_view text = *pieces.seconds;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), line.seconds);
        if (error != std::errc() || end != text.data() + text.size() || line.seconds > MOST_SECONDS) {
            return false;
        }
    }
    return line.now.empty() || LocalMoment(line.now);
}

} // namespace

std::optional<ResultLine> ReadResultLine(std::string_view text, bool withEvidence, std::string& problem)
{
    const auto value = ParseJson(text, problem);
    if (!value) {
        return std::nullopt;
    }
    ResultLine line;
    Members object(*value, "", problem);
    ReadMembers(object, line, problem);
    if (withEvidence && object.Has("explanation")) {
        line.evidence = ReadEvidence(text, object);
    }
    return problem.empty() ? std::optional(std::move(line)) : std::nullopt;
}

std::optional<ResultLine> ResultLineReader::Read(std::string_view text, std::string& problem)
{
    // Evidence is kept as its bytes in the line, so a line with evidence can't be cut.
    if (!mWithEvidence && CutLine(text, mPieces)) {
        if (auto line = ReadPieces()) {
            return line;
        }
    }
    // Reads the whole line, also for a message that has the place in it.
    problem.clear();
    return ReadResultLine(text, mWithEvidence, problem);
}

std::optional<ResultLine> ResultLineReader::ReadPieces()
{
    const auto frame = mFrames.Find(mPieces.frame, [](std::string_view text) {
        std::string problem;
        auto line = ReadResultLine(text, false, problem);
        const bool isFrame = line && line->warnings.empty() && line->trees.empty();
        return isFrame ? std::make_shared<const ResultLine>(std::move(*line)) : nullptr;
    });
    if (frame == nullptr) {
        return std::nullopt;
    }
    std::optional<ResultLine> line = *frame;
    if (!FillIn(mPieces, *line)) {
        return std::nullopt;
    }
    const auto readAll = [](const std::vector<std::string_view>& texts, auto& known, auto& records, auto read) {
        return std::all_of(texts.begin(), texts.end(), [&](std::string_view text) {
            records.push_back(known.Find(text, read));
            return records.back() != nullptr;
        });
    };
    const bool areRead = readAll(mPieces.warnings, mWarnings, line->warnings, &ReadPiece<ResultWarning, ReadWarning>)
        && readAll(mPieces.results, mTrees, line->trees, &ReadPiece<ResultTree, ReadTree>);
    return areRead ? std::move(line) : std::nullopt;
}

} // namespace diagnosis::results_db
