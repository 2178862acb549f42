#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_EXPLANATION_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_EXPLANATION_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "arborist/frame/detection_observer.h"

namespace diagnosis {

/// Why a detection came to its results, as the engine told it while it ran: trees of events, the rules of each event
/// in the order asked, and what each rule looked at. Plain records that hold copies; they outlive the engine. Times
/// come with their local text, made in the time zone of the bundle.

using Reason = DetectionObserver::Reason;

/// Seconds since the epoch with their local time; the text is empty for 0, which stands for none.
struct ExplainedMoment {
    std::int64_t seconds = 0;
    std::string local;

    bool operator==(const ExplainedMoment&) const = default;
};

/// From what moment on a rule looked at the log, and what set that moment.
struct ExplainedStart {
    ExplainedMoment start;
    ExplainedMoment period;
    ExplainedMoment reset;
    ExplainedMoment update;
    ExplainedMoment repair;
    /// Which of the four won.
    DetectionObserver::StartTimeSeen::Floor floor{};
    std::int32_t periodDays = 0;
    std::string beginFlag;
    /// The repair that has the latest date; empty when none has one.
    std::string repairId;

    bool operator==(const ExplainedStart&) const = default;
};

/// A filter that turned the rule away.
struct ExplainedFilter {
    std::string deviceValue;
    std::string ruleText;

    bool operator==(const ExplainedFilter&) const = default;
};

/// A test of an alarm's parameters, with the rows that it was put to.
struct ExplainedTest {
    std::string key;
    std::string type;
    std::string logic;
    std::string value;
    std::uint64_t rowsTested = 0;
    std::uint64_t rowsPassed = 0;

    bool operator==(const ExplainedTest&) const = default;
};

/// One time window of one item of an alarm rule.
struct ExplainedWindow {
    std::size_t item = 0;
    std::int64_t firstId = 0;
    std::int64_t lastId = 0;
    /// "duration", "daily_peak" or "latest"; empty for an item whose id range is empty.
    std::string window;
    std::int32_t periodDays = 0;
    std::int64_t threshold = 0;
    /// Nothing where the window was not counted.
    std::optional<ExplainedStart> start;
    bool versionFilter = false;
    std::uint64_t rowsFound = 0;
    std::uint64_t rowsOfOtherVersion = 0;
    std::uint64_t rowsFailedTest = 0;
    /// The best count, weight or daily peak that one id reached, and that id; both 0 without rows.
    std::int64_t reached = 0;
    std::int64_t reachedById = 0;
    /// "rows", "weights", "daily_rows", "daily_weights"; empty without rows.
    std::string measure;
    bool hit = false;
    Reason reason{};
    std::vector<ExplainedTest> tests;

    /// How much the best id was short of the threshold; 0 for a hit and for a window that was not counted.
    std::int64_t Missing() const;

    bool operator==(const ExplainedWindow&) const = default;
};

/// One value held against another.
struct ExplainedComparison {
    std::string paramId;
    std::string key;
    std::string type;
    std::string logic;
    std::string observed;
    std::string configured;
    /// "static", "dynamic", "systemParam"; empty where the rule's own text is the only source.
    std::string source;
    /// Name in the common part of a threshold that comes from there.
    std::string sourceId;
    bool holds = false;

    bool operator==(const ExplainedComparison&) const = default;
};

/// A column of a command rule's one row, before and after scaling.
struct ExplainedParameter {
    std::string id;
    std::string key;
    std::string type;
    std::string raw;
    std::string value;

    bool operator==(const ExplainedParameter&) const = default;
};

/// The time by which a row's values were scaled to 30 days.
struct ExplainedInterval {
    std::string startKey;
    std::string endKey;
    std::int64_t start = 0;
    std::int64_t end = 0;
    std::uint64_t days = 0;
    bool usable = false;

    bool operator==(const ExplainedInterval&) const = default;
};

/// A command rule's statement on one database, and what was made of its row.
struct ExplainedQuery {
    /// Empty for the derived database when it could not be opened.
    std::string database;
    std::string sql;
    bool opened = false;
    std::uint64_t rows = 0;
    std::string error;
    std::optional<ExplainedInterval> interval;
    std::vector<ExplainedParameter> parameters;
    std::vector<ExplainedComparison> comparisons;

    bool operator==(const ExplainedQuery&) const = default;
};

struct ExplainedNodeFile {
    std::string param;
    std::string path;
    bool readable = false;
    std::string value;

    bool operator==(const ExplainedNodeFile&) const = default;
};

struct ExplainedFormula {
    std::string expression;
    /// With every grouping spelled out as it was worked out; empty when ill-formed.
    std::string grouping;
    std::string result;
    std::string resultKey;

    bool operator==(const ExplainedFormula&) const = default;
};

/// How many databases of one kind hit, and how many must.
struct ExplainedHits {
    std::string name;
    std::size_t databases = 0;
    std::int64_t hits = 0;
    std::int64_t needed = 0;

    /// How many hits are missing; 0 where there are enough.
    std::int64_t Missing() const { return hits < needed ? needed - hits : 0; }

    bool operator==(const ExplainedHits&) const = default;
};

/// What the host was asked for a code rule, and its answer.
struct ExplainedCodeRun {
    std::string detectCode;
    std::vector<std::string> faultDescriptionIds;
    std::vector<std::string> suggestionIds;
    std::vector<std::string> repairIds;
    std::string userDefinedInfo;
    bool answer = false;

    bool operator==(const ExplainedCodeRun&) const = default;
};

/// One rule as it was asked for one event. Which members are filled follows from the family and the reason.
struct ExplainedRule {
    std::string name;
    DetectionObserver::Family family{};
    DetectionObserver::Verdict verdict{};
    Reason reason{};
    /// Alternative within the event, from 0, and the place within a "multipleRule".
    std::size_t alternative = 0;
    std::size_t place = 0;
    bool inGroup = false;
    std::optional<ExplainedFilter> filter;
    /// The name in the rule that leads nowhere, or the method that is none.
    std::optional<std::string> badName;
    std::vector<ExplainedWindow> windows;
    /// Of a command rule; see ExplainedWindow::start for alarm rules.
    std::optional<ExplainedStart> start;
    std::vector<ExplainedQuery> queries;
    /// Of a command rule that is put to several databases.
    std::optional<ExplainedHits> hits;
    std::vector<ExplainedNodeFile> nodeFiles;
    std::optional<ExplainedFormula> formula;
    /// Of a node rule; those of a command rule stand with their query.
    std::vector<ExplainedComparison> comparisons;
    std::optional<ExplainedCodeRun> codeRun;

    bool operator==(const ExplainedRule&) const = default;
};

/// How one event was decided by its rules. An event that stands in several places shares it as long as nothing differs.
struct ExplainedEvidence {
    std::string eventId;
    bool fired = false;
    /// NONE where the rules speak for themselves.
    Reason reason{};
    std::vector<ExplainedRule> rules;

    bool operator==(const ExplainedEvidence&) const = default;
};

/// One event where it stands in a tree.
struct ExplainedEvent {
    using Folded = DetectionObserver::EventFolded;

    static constexpr std::size_t NONE = SIZE_MAX;

    std::size_t depth = 0;
    Folded::Kind kind{};
    Folded::GateKind gate{};
    std::string id;
    std::string name;
    /// After the fold.
    EventStatus status{};
    /// An intermediate event with rules of its own, which doesn't follow its gate.
    bool observable = false;
    /// Place of the event above in ExplainedTree::events; NONE at the top.
    std::size_t parent = NONE;
    /// First place behind all events below this one.
    std::size_t end = 0;
    /// Place in ExplainedTree::evidence; NONE for an event without rules.
    std::size_t evidence = NONE;

    bool IsLeaf() const { return kind != Folded::Kind::INTERMEDIATE; }
    bool IsInError() const { return IsError(status); }
};

/// One entry of the list of root causes that the detection reports.
struct ExplainedCause {
    /// The id that the result names.
    std::string id;
    /// Places of the cut set's members in ExplainedTree::events; NONE for a member that no path leads to.
    std::vector<std::size_t> members;
};

struct ExplainedTree {
    std::string id;
    /// The tree's own; results have that of the tree file.
    std::string version;
    bool isFault = false;
    /// In pre-order: the first event below a gate stands right behind it.
    std::vector<ExplainedEvent> events;
    std::vector<ExplainedEvidence> evidence;
    /// In the order of deduction, repeated as in the result.
    std::vector<ExplainedCause> causes;

    /// Places of the events right below one, in order.
    std::vector<std::size_t> ChildrenOf(std::size_t event) const;
    /// Places from the top event down to this one.
    std::vector<std::size_t> PathTo(std::size_t event) const;
    /// Ids from the top down to this event.
    std::vector<std::string> PathIds(std::size_t event) const;
    const ExplainedEvidence* EvidenceOf(const ExplainedEvent& event) const;
};

struct Explanation {
    /// In the order of the results.
    std::vector<ExplainedTree> trees;
};

/// Why an event has its status although no rule speaks for it: INTERACTION_EVENT and the like, NO_EVENT_RULE for a
/// basic event that the event rules don't name; otherwise NONE.
Reason ReasonOfEvent(const ExplainedTree& tree, const ExplainedEvent& event);

/// "TRUE", "FALSE" or "SKIP".
const char* VerdictWord(DetectionObserver::Verdict verdict);
/// "period", "reset", "update" or "repair".
const char* FloorWord(DetectionObserver::StartTimeSeen::Floor floor);

} // namespace diagnosis

#endif
