#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_RESULT_LINE_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_RESULT_LINE_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diagnosis/results_db/line_pieces.h"

namespace diagnosis::results_db {

/// The records below have the members of docs/detect.schema.json, which describes them.

struct ResultWarning {
    std::string code;
    std::string message;
    /// Of the check of lint that finds the mistake.
    std::string lint;
    std::string rule;
    std::string event;
    std::string file;
    std::int64_t line = 0;
};

struct ResultRepair {
    std::string id;
    std::string extra;
    std::string operation;
};

struct ResultCause {
    std::string id;
    std::string name;
    std::string userDefined;
    std::string faultDescription;
    std::vector<std::string> suggestions;
    std::vector<ResultRepair> repairs;
    /// Paths of the members: ids from the top event, joined by "/".
    std::vector<std::string> cutSet;
};

struct ResultOpenCheck {
    std::string event;
    std::string rule;
    std::string check;
    std::string reason;
    std::string detail;
    bool restsOnDefault = false;
};

/// How many checks of a tree ended in each way.
struct ResultChecks {
    std::int64_t total = 0;
    std::int64_t decided = 0;
    std::int64_t notApplicable = 0;
    std::int64_t notSelected = 0;
    std::int64_t notChecked = 0;
    std::int64_t noData = 0;
    std::int64_t error = 0;
};

/// One tree of a line.
struct ResultTree {
    std::string id;
    std::string version;
    /// "fault", "undecided", "no_fault" or "not_applicable".
    std::string verdict;
    bool isFault = false;
    bool isComplete = false;
    ResultChecks checks;
    std::vector<ResultOpenCheck> open;
    std::int64_t possibleCauses = 0;
    bool arePossibleCausesTruncated = false;
    std::vector<ResultCause> causes;
};

/// What the explanation of a line says of the rules of one event.
struct ResultEvidence {
    std::string treeId;
    std::string event;
    /// The object, byte by byte as in the line.
    std::string json;
};

/// Why a bundle was not diagnosed.
struct ResultError {
    std::string code;
    std::string message;
    /// Whether running the bundle again may help.
    bool retry = false;
};

/// A repair that the bundle has on record.
struct ResultRepaired {
    std::string id;
    /// As the record has it: "YYYY-MM-DD HH:MM:SS".
    std::string date;
};

/// A line of "arborist detect --json". Lines with equal warnings or trees may share them.
struct ResultLine {
    std::string bundle;
    bool ok = false;
    ResultError error;
    std::string device;
    std::string engine;
    std::string ruleSet;
    /// "YYYY-MM-DD HH:MM:SS", or empty.
    std::string now;
    double seconds = 0;
    std::vector<std::shared_ptr<const ResultWarning>> warnings;
    std::vector<std::shared_ptr<const ResultTree>> trees;
    std::vector<ResultRepaired> repaired;
    /// Empty unless asked for.
    std::vector<ResultEvidence> evidence;
};

/// Reads the text of a line; `withEvidence` also takes the evidence of its explanation. Members that are not known are
/// ignored, as later versions add some. Returns nothing for anything but a line of the schema "arborist.detect.1", and sets
/// `problem` to the reason.
std::optional<ResultLine> ReadResultLine(std::string_view text, bool withEvidence, std::string& problem);

/// Reads many lines, with the answers of ReadResultLine. The lines of a fleet repeat each other's trees and warnings:
/// equal texts are parsed once.
class ResultLineReader {
public:
    explicit ResultLineReader(bool withEvidence) : mWithEvidence(withEvidence) {}

    std::optional<ResultLine> Read(std::string_view text, std::string& problem);

private:
    std::optional<ResultLine> ReadPieces();

    bool mWithEvidence;
    LinePieces mPieces;
    KnownPieces<ResultLine> mFrames;
    KnownPieces<ResultWarning> mWarnings;
    KnownPieces<ResultTree> mTrees;
};

} // namespace diagnosis::results_db

#endif
