#ifndef ARBORIST_TESTS_DIAGNOSIS_RESULTS_DB_DAMAGED_TABLE_H
#define ARBORIST_TESTS_DIAGNOSIS_RESULTS_DB_DAMAGED_TABLE_H

#include <cstdint>
#include <fstream>
#include <string>

#include "diagnosis/sqlite/connection.h"

/// Damages the first page of a table and of each of its indexes in a database, so that reading it fails.
inline void DamageTable(const std::string& path, const std::string& table)
{
    diagnosis::Connection database;
    database.Open(path, diagnosis::Connection::Mode::READ_ONLY);
    auto size = database.Prepare("PRAGMA page_size");
    size->Step();
    auto pages = database.Prepare("SELECT rootpage FROM sqlite_master WHERE rootpage > 0 AND tbl_name = '" + table + "'");
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    while (pages->Step()) {
        file.seekp((pages->Integer(0) - 1) * size->Integer(0));
        file << "no page of a database";
    }
}

#endif
