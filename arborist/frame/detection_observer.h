#ifndef ARBORIST_FRAME_DETECTION_OBSERVER_H
#define ARBORIST_FRAME_DETECTION_OBSERVER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "arborist/arborist_export.h"
#include "arborist/model/event_status.h"

/// Told, while a detection runs, of everything that decides its result, in the order in which it happens.
///
/// A host derives from it, overrides what it wants to hear and hands the object to Arborist::SetObserver. The calls
/// come on the thread that called the library. Records and the texts in them live for the length of one call: copy
/// what is to be kept. An observer sees; nothing that it does changes a result or a log line. It must not call back
/// into the Arborist that it observes.
class ARBORIST_EXPORT DetectionObserver {
public:
    /// The family of a rule, which is also the kind of its checker.
    enum class Family { NONE, ALARM, COMMAND, NODE, CODE };

    /// How a rule ended: its checker answered, or it was passed over and counts as false.
    enum class Verdict { FIRED, NOT_FIRED, SKIPPED };

    /// Why a rule, a window or a condition ended as it did. ReasonText gives the word for each.
    enum class Reason {
        NONE,
        // Before a checker is asked.
        INTERACTION_EVENT, ///< the event is left to the host (detect mode "2")
        NO_EVENT_RULE, ///< the event rules have no entry for the event: it is never asked, and no call tells of it
        NO_RULE_NAMES, ///< the event's entry names no rule
        NO_SUCH_RULE, ///< the name stands for no rule of the set
        FILTERED_BLACK_PRODUCT, ///< the product is on the rule's black list
        FILTERED_PRODUCT, ///< the product is not among the rule's
        FILTERED_SCENE, ///< the scene is not among the rule's, or the rule names none
        FILTERED_PLATFORM, ///< the platform is not among the rule's
        FILTERED_DEVICE_TYPE, ///< the device type is not among the rule's
        NO_CHECKER, ///< no checker for this class of rule
        GROUP_ENDED, ///< an earlier rule of the same "multipleRule" was false
        // Alarm rules.
        NO_ITEMS, ///< the rule has no "alarmId"
        NO_IDS, ///< an item's id range is empty, which ends the rule
        WINDOW_ABSENT, ///< the item has no window of this kind
        WINDOW_EMPTY, ///< period and threshold are both 0
        WINDOW_SHORT, ///< less than the threshold was found
        WINDOW_REACHED, ///< the threshold was reached
        LOG_UNAVAILABLE, ///< the event log is missing or can't be opened
        // Command rules.
        NO_EVENT_ID, ///< the event has the empty id
        NO_COMMON_PART, ///< the named common part entry doesn't exist
        NOT_SQL, ///< the analysis method is not "SQL"
        NO_SUCH_DATABASE, ///< the referenced "defDBTable" doesn't exist
        DATABASE_UNAVAILABLE, ///< the database can't be opened
        ROW_COUNT_NOT_ONE, ///< the query failed or gave another number of rows than one
        NO_INTERVAL, ///< the columns between which values are scaled give no time to scale by
        NO_THRESHOLD, ///< the value to compare with is empty, in the rule or in the common part
        HITS_SHORT, ///< too few of the referenced databases hit
        HITS_REACHED, ///< enough of the referenced databases hit
        // Node rules.
        NO_NODES, ///< the rule names no node file or no parameter
        NODE_UNREADABLE, ///< a node file is missing, unreadable or over the limit
        // Code rules.
        NO_RUNNER, ///< the host gave no runner
        RUNNER_ANSWERED, ///< the host's runner decided
        // Conditions, of any family.
        NO_CONDITION, ///< no condition of a known kind
        UNKNOWN_CONDITION, ///< a condition of an unknown kind
        NO_VALUE, ///< a value to compare is missing or empty
        CONDITION_MET, ///< a condition held
        CONDITION_NOT_MET, ///< no condition held
    };

    /// The word of a reason as explanations print it ("filtered_scene"); empty for NONE.
    static const char* ReasonText(Reason reason);
    /// "alarm", "command", "node", "code"; empty for NONE.
    static const char* FamilyText(Family family);

    /// One of the two XML files of the rule set, after the attempt to read it.
    struct RuleSetFile {
        enum class Kind { TREES, RULES };
        enum class State { LOADED, MISSING, MALFORMED };
        Kind kind;
        State state;
        std::string_view path;
        /// What the XML reader says of a malformed file; empty otherwise.
        std::string_view message;
        /// Line of the first fault in a malformed file, from 1; 0 when not known.
        int line;
        /// Trees of the tag (TREES), rules of the tag (RULES).
        std::size_t count;
    };

    /// The thresholds of one entry of the shared data ("thresholdsOrLumbraData"), before any rule is asked.
    struct ThresholdsSeen {
        std::string_view commonPart;
        /// How many attributes of the device the entry asks for, and how many thresholds it has.
        std::size_t systemParams;
        std::size_t thresholds;
        /// False when one of the four attributes is empty (or there is no device): none of them has a value then.
        bool areSet;
    };

    /// Databases beside the event log that are about to be looked for and copied ("defDBTable").
    struct ExternalDatabaseSeen {
        std::string_view name;
        /// The regular expression for their paths. One that is none ends the detection with a std::regex_error.
        std::string_view pattern;
    };

    struct TreeStarted {
        std::string_view treeId;
        std::string_view version;
        std::string_view type;
    };

    /// An event with an entry in the event rules is about to be decided.
    struct EventAsked {
        std::string_view eventId;
        std::string_view eventName;
    };

    /// A rule is about to be asked for an event.
    struct RuleAsked {
        std::string_view eventId;
        std::string_view ruleName;
        Family family;
        /// Alternative within the event, from 0, and the rule's place within a "multipleRule", from 0.
        std::size_t alternative;
        std::size_t place;
        bool inGroup;
    };

    /// The filter that turned a rule away; a RuleDecided with the reason follows.
    struct FilterSeen {
        std::string_view ruleName;
        Reason reason;
        std::string_view deviceValue;
        std::string_view ruleText;
    };

    /// A name that leads nowhere (NO_COMMON_PART, NO_SUCH_DATABASE) or a method that is none (NOT_SQL); a RuleDecided
    /// with the reason follows.
    struct NameSeen {
        Reason reason;
        std::string_view name;
    };

    /// From what moment on a check looks at the log, and what set that moment.
    struct StartTimeSeen {
        enum class Floor { PERIOD, RESET, UPDATE, REPAIR };
        /// Seconds since the epoch.
        std::int64_t start;
        std::int64_t periodStart;
        std::int64_t resetTime;
        std::int64_t updateTime;
        std::int64_t repairTime;
        Floor floor;
        std::int32_t periodDays;
        std::string_view beginFlag;
        /// The repair whose date counted; empty when none did.
        std::string_view repairId;
    };

    /// One test of an alarm item's parameters, after one count of a window; the AlarmWindowSeen behind it tells of the
    /// window. Where several tests must hold for one row, each is held against the rows that passed those before it.
    struct AlarmTestSeen {
        std::string_view key;
        std::string_view type;
        std::string_view logic;
        std::string_view value;
        std::uint64_t rowsTested;
        std::uint64_t rowsPassed;
    };

    /// One time window of one item of an alarm rule, after it was counted; the StartTimeSeen before it tells its start.
    /// Of an item whose id range is empty, which has no window (NO_IDS), `window` is empty and the ids are its bounds.
    struct AlarmWindowSeen {
        std::size_t item;
        std::int64_t firstId;
        std::int64_t lastId;
        /// "duration", "daily_peak", "latest" or empty.
        std::string_view window;
        std::int32_t periodDays;
        std::int64_t threshold;
        std::int64_t start;
        bool versionFilter;
        /// Rows of the range since the start, up to the id that reached the threshold; those of another version; those
        /// that failed a test, of the condition under which the fewest did.
        std::uint64_t rowsFound;
        std::uint64_t rowsOfOtherVersion;
        std::uint64_t rowsFailedTest;
        /// The best count, weight or daily peak that one id of the range reached, and that id.
        std::int64_t reached;
        std::int64_t reachedById;
        bool hit;
        Reason reason;
        /// What `reached` is: "rows", "weights" (the sum of what the rows say of themselves), or the best day's,
        /// "daily_rows" and "daily_weights"; empty where no row was counted.
        std::string_view measure = {};
    };

    /// One value held against another.
    struct ComparisonSeen {
        std::string_view paramId;
        std::string_view key;
        std::string_view type;
        std::string_view logic;
        std::string_view observed;
        std::string_view configured;
        /// "static", "dynamic", "systemParam", or empty where the rule's own text is the only source.
        std::string_view source;
        bool holds;
        /// Name of the threshold or system parameter in the common part; empty for a "static" value.
        std::string_view sourceId = {};
    };

    struct NodeFileSeen {
        std::string_view param;
        std::string_view path;
        bool readable;
        std::string_view value;
    };

    struct FormulaSeen {
        std::string_view expression;
        /// The formula with every grouping spelled out in parentheses, as it was worked out; empty when ill-formed.
        std::string_view grouping;
        std::string_view result;
        std::string_view resultKey;
    };

    /// A command rule's statement after it ran.
    struct QuerySeen {
        std::string_view database;
        std::string_view sql;
        bool opened;
        /// Rows that came back, of a statement that failed those before it did.
        std::uint64_t rows;
        /// What the database says of a statement that failed; empty otherwise.
        std::string_view error = {};
    };

    /// The time between two columns of a command rule's row, by which its values are scaled to 30 days.
    struct IntervalSeen {
        /// Empty where the rule doesn't name two columns.
        std::string_view startKey;
        std::string_view endKey;
        /// Seconds since the epoch; 0 for a column that isn't there.
        std::int64_t start;
        std::int64_t end;
        std::uint64_t days;
        /// False when nothing can be scaled: a column is 0, or they are one second apart.
        bool usable;
    };

    /// A column of a command rule's one row, before and after scaling (the same text where nothing is scaled).
    struct ParameterSeen {
        std::string_view id;
        std::string_view key;
        std::string_view type;
        std::string_view raw;
        std::string_view value;
    };

    /// How many databases of one kind ("defDBTable") held the faults that a command rule looks for in each.
    struct HitsSeen {
        std::string_view name;
        std::size_t databases;
        std::int64_t hits;
        /// With so many the rule fires; 0 and less ask for none.
        std::int64_t needed;
    };

    struct CodeRunSeen {
        std::string_view detectCode;
        const std::vector<std::string>& faultDescriptionIds;
        const std::vector<std::string>& suggestionIds;
        const std::vector<std::string>& repairIds;
        std::string_view userDefinedInfo;
        bool answer;
    };

    struct RuleDecided {
        std::string_view eventId;
        std::string_view ruleName;
        Family family;
        Verdict verdict;
        Reason reason;
    };

    struct EventDecided {
        std::string_view eventId;
        bool fired;
        Reason reason;
    };

    /// One event of a tree after the statuses were folded up; they come in pre-order, so that `depth` gives the shape.
    struct EventFolded {
        enum class Kind { BASIC, INTERMEDIATE, UNDEVELOPED };
        enum class GateKind { NONE, OR, AND };
        /// 0 for the top event.
        std::size_t depth;
        Kind kind;
        GateKind gate;
        std::string_view id;
        std::string_view name;
        std::string_view userDefined;
        EventStatus status;
        /// For an intermediate event: it has rules of its own and doesn't follow its gate.
        bool observable;
    };

    struct RootCauseSeen {
        std::string_view id;
        /// The cut set: the path of each member, ids from the top down joined by "/".
        const std::vector<std::string>& cutSet;
        /// Ids of the members and of all events above them, leaf first.
        const std::vector<std::string>& wayUp;
    };

    struct TreeFinished {
        std::string_view treeId;
        bool isFault;
    };

    virtual ~DetectionObserver();

    virtual void OnRuleSetFile(const RuleSetFile& file);
    virtual void OnThresholds(const ThresholdsSeen& thresholds);
    virtual void OnExternalDatabase(const ExternalDatabaseSeen& database);
    virtual void OnTreeStarted(const TreeStarted& tree);
    virtual void OnEventAsked(const EventAsked& event);
    virtual void OnRuleAsked(const RuleAsked& rule);
    virtual void OnFilter(const FilterSeen& filter);
    virtual void OnName(const NameSeen& name);
    virtual void OnStartTime(const StartTimeSeen& startTime);
    virtual void OnAlarmTest(const AlarmTestSeen& test);
    virtual void OnAlarmWindow(const AlarmWindowSeen& window);
    virtual void OnNodeFile(const NodeFileSeen& node);
    virtual void OnFormula(const FormulaSeen& formula);
    virtual void OnQuery(const QuerySeen& query);
    virtual void OnInterval(const IntervalSeen& interval);
    virtual void OnParameter(const ParameterSeen& parameter);
    virtual void OnComparison(const ComparisonSeen& comparison);
    virtual void OnHits(const HitsSeen& hits);
    virtual void OnCodeRun(const CodeRunSeen& run);
    virtual void OnRuleDecided(const RuleDecided& rule);
    virtual void OnEventDecided(const EventDecided& event);
    virtual void OnEventFolded(const EventFolded& event);
    virtual void OnRootCause(const RootCauseSeen& rootCause);
    virtual void OnTreeFinished(const TreeFinished& tree);
};

#endif
