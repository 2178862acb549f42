#ifndef ARBORIST_TESTS_DIAGNOSIS_RESULTS_DB_DAMAGED_TABLE_H
#define ARBORIST_TESTS_DIAGNOSIS_RESULTS_DB_DAMAGED_TABLE_H

#include <string>

/// Damages the first page of a table and of each of its indexes in a database, so that reading it fails.
void DamageTable(const std::string& path, const std::string& table);

/// Adds rows with the numbers from 1,000 on to each table of a results database, so many that they take several pages.
void FillTables(const std::string& path);

/// Damages the last page of rows of a table and of each of its indexes: whoever reads all rows finds it, nobody else.
void DamageLastRows(const std::string& path, const std::string& table);

/// Makes one of the tables run, failure and cut_set_member of a results database one without an end: its pages lead to each
/// other so often that reading its rows takes longer than anybody waits, though the file has no more than a few pages.
void MakeEndless(const std::string& path, const std::string& table);

#endif
