#ifndef ARBORIST_FRAME_EVIDENCE_H
#define ARBORIST_FRAME_EVIDENCE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "arborist/arborist_export.h"
#include "arborist/frame/check.h"
#include "arborist/frame/evidence_words.h"
#include "arborist/frame/tree_verdict.h"

// From C++20 on records can be compared.
#if defined(__cpp_impl_three_way_comparison)
#define ARBORIST_COMPARABLE(Record) bool operator==(const Record&) const = default;
#else
#define ARBORIST_COMPARABLE(Record)
#endif

/// The evidence of a detection, as records that own their texts and outlive the engine: an event's evidence has its
/// alternatives, these have their rules, and a rule has the part of its family.
///
/// The engine fills a record while it decides, and passes it to the DetectionObserver once it is complete. Without an
/// observer it creates no record.
namespace Evidence {

/// Seconds since the epoch with their local time, in the zone that was in force. The text is empty for 0, which means
/// none, and outside the years 0 to 9999.
struct Moment {
    /// Seconds since the epoch; 0 for none.
    std::int64_t seconds = 0;
    /// The same as "%Y-%m-%d %H:%M:%S" in local time.
    std::string local;

    ARBORIST_COMPARABLE(Moment)
};

/// The start time of a rule, and which of four moments, the latest, determined it.
struct Start {
    /// The latest of the four moments.
    Moment start;
    /// The start of the period, counted back from now.
    Moment period;
    /// The last factory reset; 0 if none counts for the rule.
    Moment reset;
    /// The last system update; 0 if none counts for the rule.
    Moment update;
    /// The last repair of the event; 0 for none.
    Moment repair;
    /// Which moment it is.
    Floor floor = Floor::PERIOD;
    /// The length of the period in days.
    std::int32_t periodDays = 0;
    /// "BeginFlag" of the rule: which moments count beside the period.
    std::string beginFlag;
    /// The repair with the latest date; empty if there is none.
    std::string repairId;
    /// A repair whose date could not be read, or why the event's own repair id could not: the start may be too early.
    /// Empty if all could be read.
    std::string unreadableRepair;

    ARBORIST_COMPARABLE(Start)
};

/// The filter that rejected a rule: Rule::reason says which.
struct Filter {
    /// The value of the device that was looked for; empty if it is not known.
    std::string deviceValue;
    /// What the rule accepts or, for a black list, refuses.
    std::string ruleText;

    ARBORIST_COMPARABLE(Filter)
};

/// One test of an alarm item's parameters. If a row must pass several, each is applied to the rows that passed those
/// before it.
struct Test {
    /// The member of "extra" that is tested.
    std::string key;
    /// How both values are read: "int", "long", "float", "double" or "string".
    std::string type;
    /// The comparison: "gt", "lt", "le", "ge", "eq" or "ne".
    std::string logic;
    /// The value of the rule.
    std::string value;
    /// The number of rows that the test was put to.
    std::uint64_t rowsTested = 0;
    /// The number of these that passed.
    std::uint64_t rowsPassed = 0;
    /// The part of rowsPassed that belongs to the last id of the range. Set only if that id alone decides.
    std::optional<std::uint64_t> rowsPassedByLastId = std::nullopt;

    ARBORIST_COMPARABLE(Test)
};

/// The counts of a window of an alarm rule.
struct WindowCount {
    /// Rows of the range since the start. Counting ends with the id that reached the threshold.
    std::uint64_t rowsFound = 0;
    /// Of these, rows of another version, which don't count.
    std::uint64_t rowsOfOtherVersion = 0;
    /// Rows that failed a test. Of several conditions, the smallest number.
    std::uint64_t rowsFailedTest = 0;
    /// The largest count, weight or daily peak of an id; 0 without rows. See lastIdDecides.
    std::int64_t reached = 0;
    /// The id that `reached` belongs to; 0 without rows.
    std::int64_t reachedById = 0;
    /// The unit of `reached`; NONE if no row was counted.
    Measure measure = Measure::NONE;
    /// True for a condition with several tests in a "daily_peak" or "latest" window: only the last id of the range
    /// decides. `reached` is then the smallest number of its rows that pass one of the tests; 0 without rows.
    bool lastIdDecides = false;
    /// Rows of the whole range, of any version, that lie in the period but before the start, which a reset, an update
    /// or a repair moved. Not set if the period determined the start, or if the log is damaged.
    std::optional<std::uint64_t> rowsBeforeStart = std::nullopt;
    /// Whole days from the first row of the log to now if the log begins after the window does. Nothing if it begins
    /// before, and for a damaged log, which can't tell.
    std::optional<std::int64_t> coveredDays = std::nullopt;

    ARBORIST_COMPARABLE(WindowCount)
};

/// One time window of one item of an alarm rule. An item whose id range is empty has no window: `kind` is empty then,
/// and the reason NO_IDS.
struct Window {
    /// Position of the item in its rule, from 0.
    std::size_t item = 0;
    /// The first event id of the range.
    std::int64_t firstId = 0;
    /// The last event id of the range, which belongs to it.
    std::int64_t lastId = 0;
    /// "duration", "daily_peak", "latest" or empty.
    std::string kind;
    /// The length of the window in days.
    std::int32_t periodDays = 0;
    /// What one id must reach.
    std::int64_t threshold = 0;
    /// Not set if the window was not counted.
    std::optional<Start> start;
    /// True if only rows of the current version count.
    bool versionFilter = false;
    /// What was counted.
    WindowCount count;
    /// True if the threshold was reached.
    bool hit = false;
    /// Why the window ended as it did.
    Reason reason = Reason::NONE;
    /// Why the count may be another one: NEGATIVE_WEIGHT, ROWS_UNSEEN, ROWS_AFTER_NOW, VERSION_UNKNOWN,
    /// REPAIR_UNREADABLE.
    std::vector<Reason> notes;
    /// The tests of its rows, in the order of the rule.
    std::vector<Test> tests;

    /// How much the best id lacked of the threshold; 0 for a hit and for a window that was not counted.
    std::int64_t Missing() const { return hit || !start || count.reached >= threshold ? 0 : threshold - count.reached; }

    ARBORIST_COMPARABLE(Window)
};

/// The part of an alarm rule: its windows.
struct Alarm {
    /// In the order of counting, up to the first one that reached its threshold.
    std::vector<Window> windows;

    ARBORIST_COMPARABLE(Alarm)
};

/// One comparison of two values.
struct Comparison {
    /// The id of the parameter in the rule.
    std::string paramId;
    /// The column of a command rule, or the result of a formula, that is compared.
    std::string key;
    /// How both values are read: "int", "long", "float", "double" or "string".
    std::string type;
    /// The comparison: "gt", "lt", "le", "ge", "eq" or "ne".
    std::string logic;
    /// The value of the device.
    std::string observed;
    /// The value of the rule set.
    std::string configured;
    /// "static", "dynamic", "systemParam", or empty if the rule's own text is the only source.
    std::string source;
    /// Name of the threshold or system parameter in the common part; empty for a "static" value.
    std::string sourceId;
    /// True if the comparison holds.
    bool holds = false;

    ARBORIST_COMPARABLE(Comparison)
};

/// A column of a command rule's single row, before and after scaling (the same text if nothing is scaled).
struct Column {
    /// The id of the parameter in the rule.
    std::string id;
    /// The name of the column.
    std::string key;
    /// How its value is read: "int", "long", "float", "double" or "string".
    std::string type;
    /// The value as the row has it.
    std::string raw;
    /// The value that is compared.
    std::string value;

    ARBORIST_COMPARABLE(Column)
};

/// The time between two columns of a command rule's row, by which its values are scaled to 30 days.
struct Interval {
    /// Empty if the rule doesn't name two columns.
    std::string startKey;
    /// The column with the end; empty as above.
    std::string endKey;
    /// Seconds since the epoch; 0 for a missing column.
    std::int64_t start = 0;
    /// The end, as above.
    std::int64_t end = 0;
    /// The whole days between them.
    std::uint64_t days = 0;
    /// False if nothing can be scaled: a column is 0, or they are one second apart.
    bool usable = false;

    ARBORIST_COMPARABLE(Interval)
};

/// A command rule's statement on one database, and the evaluation of its row.
struct Statement {
    /// Path of the file; empty for the derived database if it could not be opened.
    std::string database;
    /// The statement as it was run.
    std::string sql;
    /// True if the database could be opened.
    bool opened = false;
    /// Number of rows; for a statement that failed, those before the failure.
    std::uint64_t rows = 0;
    /// The database's message for a statement that failed; empty otherwise.
    std::string error;
    /// Set if the rule scales its values.
    std::optional<Interval> interval;
    /// The columns that the conditions name.
    std::vector<Column> columns;
    /// In the order in which they were made.
    std::vector<Comparison> comparisons;
    /// The result of the conditions on this database. With several databases each statement has a reason of its own.
    Reason reason = Reason::NONE;

    ARBORIST_COMPARABLE(Statement)
};

/// Why there is no copy of the databases of one kind.
struct MissingCopies {
    /// What stood in the way.
    NoCopy cause = NoCopy::NONE;
    /// The folder that was searched, as the rule set names it; with FOLDER_MISSING all that it names.
    std::vector<std::string> folders;
    /// The regular expression for the paths of the files.
    std::string pattern;

    ARBORIST_COMPARABLE(MissingCopies)
};

/// The number of databases of one kind ("defDBTable") in which a command rule found its fault.
struct Hits {
    /// The "defDBTable" that the rule refers to.
    std::string name;
    /// The number of copies that were queried.
    std::size_t databases = 0;
    /// The number of these whose row met the condition.
    std::int64_t hits = 0;
    /// The number of hits at which the rule fires; with 0 or less it needs none.
    std::int64_t needed = 0;
    /// Set if no database was copied: why not.
    std::optional<MissingCopies> missingCopies = std::nullopt;

    /// How many hits are missing; 0 if there are enough.
    std::int64_t Missing() const { return hits < needed ? needed - hits : 0; }

    ARBORIST_COMPARABLE(Hits)
};

/// The part of a command rule: its statements.
struct Command {
    /// Not set for a rule on copied databases, which are queried without a time limit.
    std::optional<Start> start;
    /// One for each database, in the order of running.
    std::vector<Statement> statements;
    /// For a rule on copied databases.
    std::optional<Hits> hits;

    ARBORIST_COMPARABLE(Command)
};

/// A file that a node rule reads.
struct NodeFile {
    /// The name in the formula that takes its value.
    std::string param;
    /// The path that the rule names.
    std::string path;
    /// False if it is missing, unreadable or too large.
    bool readable = false;
    /// Its content.
    std::string value;

    ARBORIST_COMPARABLE(NodeFile)
};

/// The formula of a node rule.
struct Formula {
    /// The formula of the rule.
    std::string expression;
    /// The formula with every grouping in parentheses, in the order of calculation; empty if ill-formed.
    std::string grouping;
    /// The value as text.
    std::string result;
    /// The name of the result, which conditions refer to.
    std::string resultKey;

    ARBORIST_COMPARABLE(Formula)
};

/// The part of a node rule: its files, its formula and its conditions.
struct Node {
    /// The files in the order of reading.
    std::vector<NodeFile> files;
    /// Set if a formula was calculated.
    std::optional<Formula> formula;
    /// In the order in which they were made.
    std::vector<Comparison> comparisons;

    ARBORIST_COMPARABLE(Node)
};

/// The arguments of the host's runner for a code rule, and its answer; no answer without a runner.
struct Code {
    /// The code that the host is to run.
    std::string detectCode;
    /// The ids of fault descriptions that are handed over.
    std::vector<std::string> faultDescriptionIds;
    /// The ids of suggestions that are handed over.
    std::vector<std::string> suggestionIds;
    /// The ids of repairs that are handed over.
    std::vector<std::string> repairIds;
    /// The text that the rule set gives the host along.
    std::string userDefinedInfo;
    /// True if the host found the fault.
    std::optional<bool> answer;

    ARBORIST_COMPARABLE(Code)
};

/// One rule as it was run for one event.
struct Rule {
    /// The name of the rule.
    std::string name;
    /// Its answer.
    Verdict verdict = Verdict::SKIPPED;
    /// The reason for the verdict. Each window and statement has a reason of its own.
    Reason reason = Reason::NONE;
    /// What else went wrong on the way, each once: a node file that is missing although the condition was met.
    std::vector<Reason> notes;
    /// What the answer rests on: the worst of reason, notes, windows and statements.
    Check check = Check::NONE;
    /// The file and the message of the first problem with the event log while the rule ran; empty without one.
    std::string logProblem;
    /// Set if a filter rejected it.
    std::optional<Filter> filter;
    /// The unknown name in the rule (NO_COMMON_PART, NO_SUCH_DATABASE); the method that is none (NOT_SQL).
    std::optional<std::string> badName;
    /// The part of its family, in the order of `Family`; empty for a rule that was skipped.
    std::variant<std::monostate, Alarm, Command, Node, Code> part;

    /// The family of `part`.
    Family GetFamily() const { return static_cast<Family>(part.index()); }
    /// Sets `part` to an empty part of this family.
    ARBORIST_EXPORT void SetFamily(Family family);

    /// Adds to `notes` what they don't have yet.
    void Note(Reason note)
    {
        if (std::find(notes.begin(), notes.end(), note) == notes.end()) {
            notes.push_back(note);
        }
    }

    ARBORIST_COMPARABLE(Rule)
};

/// One way for an event to be decided: one rule, or the rules of a "multipleRule", which must all fire.
struct Alternative {
    /// True for the rules of a "multipleRule".
    bool inGroup = false;
    /// In the order of running. Rules of a group that were not reached follow, with the reason GROUP_ENDED.
    std::vector<Rule> rules;

    ARBORIST_COMPARABLE(Alternative)
};

/// How an event with an entry in the event rules was decided.
struct Event {
    /// The id of the event.
    std::string id;
    /// The name of the event.
    std::string name;
    /// True if its rules made it true.
    bool fired = false;
    /// NONE if the reasons are those of its rules.
    Reason reason = Reason::NONE;
    /// In the order of running.
    std::vector<Alternative> alternatives;
    /// What the answer rests on.
    Check check = Check::NONE;

    ARBORIST_COMPARABLE(Event)
};

/// One event of a tree after the statuses were folded up.
struct FoldedEvent {
    /// 0 for the top event.
    std::size_t depth = 0;
    /// The kind of the event.
    EventType type = EventType::BASIC;
    /// The gate below it; NONE for a leaf.
    GateType gate = GateType::NONE;
    /// The id of the event.
    std::string id;
    /// The name of the event.
    std::string name;
    /// The text that the tree file gives the host along.
    std::string userDefined;
    /// The status after the fold.
    EventState status = EventState::UNKNOWN;
    /// True for an intermediate event with rules of its own, which doesn't follow its gate.
    bool observable = false;
    /// NONE for an intermediate event without rules of its own.
    Check check = Check::NONE;

    /// Whether it counts as true although its check is open.
    bool RestsOnDefault() const { return IsInError() && IsOpen(check); }
    /// Whether no gate belongs below it.
    bool IsLeaf() const { return type != EventType::INTERMEDIATE; }
    /// Whether it counts as true.
    bool IsInError() const { return Evidence::IsInError(status); }

    ARBORIST_COMPARABLE(FoldedEvent)
};

/// One entry of the list of root causes.
struct RootCause {
    /// The id of the first member of the cut set.
    std::string id;
    /// The cut set: the path of each member, ids from the top down joined by "/".
    std::vector<std::string> cutSet;
    /// Ids of the members and of all events above them, leaves first.
    std::vector<std::string> wayUp;

    ARBORIST_COMPARABLE(RootCause)
};

/// One of the two XML files of a rule set, after the attempt to read it.
struct RuleSetFile {
    /// Which file it is.
    RuleSetFileType type = RuleSetFileType::TREES;
    /// The result of reading it.
    RuleSetFileState state = RuleSetFileState::MISSING;
    /// Where it was looked for.
    std::string path;
    /// The XML reader's message for a malformed file; empty otherwise.
    std::string message;
    /// Line of the first error in a malformed file, from 1; 0 if not known.
    int line = 0;
    /// Trees of the tag (TREES), rules of the tag (RULES).
    std::size_t count = 0;

    ARBORIST_COMPARABLE(RuleSetFile)
};

/// External databases that a rule set names ("defDBTable").
struct ExternalDatabase {
    /// The name by which rules refer to them.
    std::string name;
    /// The regular expression for their paths. An invalid one ends the detection with a std::regex_error.
    std::string pattern;

    ARBORIST_COMPARABLE(ExternalDatabase)
};

/// A tree whose rules run next.
struct TreeHead {
    /// The id of the tree.
    std::string id;
    /// The version of the tree file.
    std::string version;
    /// The type of the tree.
    std::string type;

    ARBORIST_COMPARABLE(TreeHead)
};

/// The result of a tree.
struct TreeResult {
    /// The id of the tree.
    std::string id;
    /// True if it has a root cause.
    bool isFault = false;
    /// The verdict, and what it rests on.
    TreeVerdict verdict;

    ARBORIST_COMPARABLE(TreeResult)
};

/// A rule set after the attempt to load it.
struct RuleSet {
    /// The tree file, then the rule file; without files that were not looked for.
    std::vector<RuleSetFile> files;
    /// The external databases that its rules refer to.
    std::vector<ExternalDatabase> databases;
    /// Names of the derived tables that are filled with events of the log.
    std::vector<std::string> eventTables;

    ARBORIST_COMPARABLE(RuleSet)
};

} // namespace Evidence

#undef ARBORIST_COMPARABLE

#endif
