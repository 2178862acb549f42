#ifndef ARBORIST_DIAGNOSIS_SWEEP_CLOCK_STATEMENTS_H
#define ARBORIST_DIAGNOSIS_SWEEP_CLOCK_STATEMENTS_H

#include <string_view>

namespace diagnosis {

/// Why the answer of a statement on derived tables may change without any change of their rows:
///
/// - "reads_clock": it reads the current time, or a random number;
/// - "fixed_table": it reads the time in a table of one fixed row, which is always the current time;
/// - "own_time": it gives the name occurrence_time to something that it calculates, which the engine's time limit then
///   compares.
///
/// Null for all others. Judges by the words of the statement, and rather takes one too many. `readsFixedTable` says
/// whether it names such a table.
const char* ClockUseOf(std::string_view sql, bool readsFixedTable);

} // namespace diagnosis

#endif
