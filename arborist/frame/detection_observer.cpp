#include "arborist/frame/detection_observer.h"

DetectionObserver::~DetectionObserver() = default;

const char* DetectionObserver::ReasonText(Reason reason)
{
    switch (reason) {
    case Reason::NONE:
        return "";
    case Reason::INTERACTION_EVENT:
        return "interaction_event";
    case Reason::NO_EVENT_RULE:
        return "no_event_rule";
    case Reason::NO_RULE_NAMES:
        return "no_rule_names";
    case Reason::NO_SUCH_RULE:
        return "no_such_rule";
    case Reason::FILTERED_BLACK_PRODUCT:
        return "filtered_black_product";
    case Reason::FILTERED_PRODUCT:
        return "filtered_product";
    case Reason::FILTERED_SCENE:
        return "filtered_scene";
    case Reason::FILTERED_PLATFORM:
        return "filtered_platform";
    case Reason::FILTERED_DEVICE_TYPE:
        return "filtered_device_type";
    case Reason::NO_CHECKER:
        return "no_checker";
    case Reason::GROUP_ENDED:
        return "group_ended";
    case Reason::NO_ITEMS:
        return "no_items";
    case Reason::NO_IDS:
        return "no_ids";
    case Reason::WINDOW_ABSENT:
        return "window_absent";
    case Reason::WINDOW_EMPTY:
        return "window_empty";
    case Reason::WINDOW_SHORT:
        return "window_short";
    case Reason::WINDOW_REACHED:
        return "window_reached";
    case Reason::LOG_UNAVAILABLE:
        return "log_unavailable";
    case Reason::NO_EVENT_ID:
        return "no_event_id";
    case Reason::NO_COMMON_PART:
        return "no_common_part";
    case Reason::NOT_SQL:
        return "not_sql";
    case Reason::NO_SUCH_DATABASE:
        return "no_such_database";
    case Reason::DATABASE_UNAVAILABLE:
        return "database_unavailable";
    case Reason::ROW_COUNT_NOT_ONE:
        return "row_count_not_one";
    case Reason::NO_INTERVAL:
        return "no_interval";
    case Reason::NO_THRESHOLD:
        return "no_threshold";
    case Reason::HITS_SHORT:
        return "hits_short";
    case Reason::HITS_REACHED:
        return "hits_reached";
    case Reason::NO_NODES:
        return "no_nodes";
    case Reason::NODE_UNREADABLE:
        return "node_unreadable";
    case Reason::NO_RUNNER:
        return "no_runner";
    case Reason::RUNNER_ANSWERED:
        return "runner_answered";
    case Reason::NO_CONDITION:
        return "no_condition";
    case Reason::UNKNOWN_CONDITION:
        return "unknown_condition";
    case Reason::NO_VALUE:
        return "no_value";
    case Reason::CONDITION_MET:
        return "condition_met";
    case Reason::CONDITION_NOT_MET:
        return "condition_not_met";
    }
    return "";
}

const char* DetectionObserver::FamilyText(Family family)
{
    switch (family) {
    case Family::NONE:
        return "";
    case Family::ALARM:
        return "alarm";
    case Family::COMMAND:
        return "command";
    case Family::NODE:
        return "node";
    case Family::CODE:
        return "code";
    }
    return "";
}

// An observer hears only what it overrides.
void DetectionObserver::OnRuleSetFile(const RuleSetFile&) {}
void DetectionObserver::OnThresholds(const ThresholdsSeen&) {}
void DetectionObserver::OnExternalDatabase(const ExternalDatabaseSeen&) {}
void DetectionObserver::OnTreeStarted(const TreeStarted&) {}
void DetectionObserver::OnEventAsked(const EventAsked&) {}
void DetectionObserver::OnRuleAsked(const RuleAsked&) {}
void DetectionObserver::OnFilter(const FilterSeen&) {}
void DetectionObserver::OnName(const NameSeen&) {}
void DetectionObserver::OnStartTime(const StartTimeSeen&) {}
void DetectionObserver::OnAlarmTest(const AlarmTestSeen&) {}
void DetectionObserver::OnAlarmWindow(const AlarmWindowSeen&) {}
void DetectionObserver::OnNodeFile(const NodeFileSeen&) {}
void DetectionObserver::OnFormula(const FormulaSeen&) {}
void DetectionObserver::OnQuery(const QuerySeen&) {}
void DetectionObserver::OnInterval(const IntervalSeen&) {}
void DetectionObserver::OnParameter(const ParameterSeen&) {}
void DetectionObserver::OnComparison(const ComparisonSeen&) {}
void DetectionObserver::OnHits(const HitsSeen&) {}
void DetectionObserver::OnCodeRun(const CodeRunSeen&) {}
void DetectionObserver::OnRuleDecided(const RuleDecided&) {}
void DetectionObserver::OnEventDecided(const EventDecided&) {}
void DetectionObserver::OnEventFolded(const EventFolded&) {}
void DetectionObserver::OnRootCause(const RootCauseSeen&) {}
void DetectionObserver::OnTreeFinished(const TreeFinished&) {}
