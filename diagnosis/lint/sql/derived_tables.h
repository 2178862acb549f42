#ifndef ARBORIST_DIAGNOSIS_LINT_SQL_DERIVED_TABLES_H
#define ARBORIST_DIAGNOSIS_LINT_SQL_DERIVED_TABLES_H

#include <cstddef>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <unordered_map>

#include "diagnosis/lint/sql/sql_outline.h"
#include "diagnosis/rule_source/common_part.h"
#include "diagnosis/sqlite/connection.h"

namespace diagnosis::lint {

/// The name in lower case: SQLite ignores case in names.
std::string LowerName(std::string_view name);

/// The derived tables of a common part, empty and in memory, for preparing queries that are never run.
///
/// Creates only the tables that a query names, as SQLite checks all existing tables for each new one.
class DerivedTables {
public:
    explicit DerivedTables(const rule_source::CommonPart& common);

    /// A database with the tables that these pieces of a query name, and possibly others. Null if one of them can't be
    /// created, or if there are more than a query can join. Valid until the next call.
    Connection* For(std::span<const SqlToken> tokens);

    /// The entries whose tables were created.
    const std::set<const rule_source::ThresholdBean*>& Created() const { return mCreated; }

    /// SQLite's message if the table of an entry can't be created; otherwise empty. Tries it on a database of its own.
    static std::string ErrorOf(const rule_source::ThresholdBean& bean);

private:
    static constexpr std::size_t MOST_TABLES = 64;

    bool Make(const std::string& name, const rule_source::ThresholdBean& bean);

    /// By name in lower case. Of several with one name the last, as building it drops the table of the others.
    std::unordered_map<std::string, const rule_source::ThresholdBean*> mBeans;
    std::unique_ptr<Connection> mDatabase;
    /// The tables of `mDatabase`.
    std::set<std::string> mMade;
    std::set<const rule_source::ThresholdBean*> mCreated;
};

} // namespace diagnosis::lint

#endif
