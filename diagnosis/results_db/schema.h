#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_SCHEMA_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_SCHEMA_H

#include <cstdint>

namespace diagnosis::results_db {

/// PRAGMA application_id of a results database: the letters "ARBr".
inline constexpr std::int64_t APPLICATION_ID = 0x41524272;
/// PRAGMA user_version: the number of the schema below. A database of another number is refused.
inline constexpr std::int64_t SCHEMA_VERSION = 1;

/// Creates the tables and views of an empty results database; docs/results.md describes them.
///
/// A fleet repeats itself: what a rule set says of a tree, a cause or an open check is one row of a table `..._def`, to
/// which each bundle refers by a number. The views put names and texts back.
///
/// | Table | One row for | Columns worth a word |
/// |---|---|---|
/// | run | an engine and a rule set that lines name | rule_set is "" where the rule files could not be read |
/// | bundle | a line | now: the moment of the detection as seconds since 1970 of its local time, without zone (so that datetime(now, 'unixepoch') is what the line says), NULL where unknown; microseconds: wall time |
/// | failure | a bundle that was not diagnosed | retry: whether running it again may help |
/// | tree_def | an id and version of a tree | |
/// | outcome_def | what a tree can come to | verdict, complete, and the checks counted |
/// | tree | a tree of a bundle | refers to its tree_def and outcome_def |
/// | cause_def | a root cause: tree, event, texts and cut set, each different one once | cut_set: the sorted paths of the members, joined by " & " |
/// | cut_set_member | a member of the cut set of a cause_def | path: ids from the top event, joined by "/"; place: 0, 1, ... in the order of the line |
/// | repair | a repair that a cause_def suggests | place: 0, 1, ... in the order of the rule set |
/// | repaired | a repair that a bundle has on record | date: as bundle.now, NULL where it is no moment; place: 0, 1, ... in the order of the line |
/// | root_cause | a root cause that a bundle has | in no order: the line has that of the deduction |
/// | check_def | an open check: tree, event, rule, check, reason, detail | |
/// | open_check | a check that was open in a bundle | |
/// | warning_def | a warning: code, message, and where the rule set has the mistake | |
/// | warning | a warning of a bundle | |
///
/// EVIDENCE_SCHEMA adds one more on demand. The views are bundles, trees, root_causes, open_checks,
/// warnings, repairs (one row for a root cause of a bundle and a repair), top_causes, undecided_by_reason,
/// failed_by_code.
extern const char* const SCHEMA;

/// Adds the table of evidence to a results database, unless it has it:
///
/// | Table | One row for | Columns worth a word |
/// |---|---|---|
/// | evidence | an event of a bundle whose rules were asked | evidence: its object in the line's explanation, as JSON text; place: 0, 1, ... in the order of the line |
extern const char* const EVIDENCE_SCHEMA;

} // namespace diagnosis::results_db

#endif
