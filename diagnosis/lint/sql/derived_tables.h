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

/// A name in lower case, as SQLite compares names.
std::string LowerName(std::string_view name);

/// The derived tables of a common part, empty and in memory: queries are prepared on them, and never run.
///
/// SQLite looks at all tables for each new one, so that only those are made that a query names.
class DerivedTables {
public:
    explicit DerivedTables(const rule_source::CommonPart& common);

    /// A database with the tables that these pieces of a query name, and maybe others. Null where one of them can't be
    /// made, or where there are more than a query can join. Valid until the next call.
    Connection* For(std::span<const SqlToken> tokens);

    /// What SQLite says against the table of an entry; empty where it can be made.
    static std::string ErrorOf(const rule_source::ThresholdBean& bean);

private:
    static constexpr std::size_t MOST_TABLES = 64;

    bool Make(const std::string& name, const rule_source::ThresholdBean& bean);

    /// By name in lower case: of several the last one, which drops the tables of the others.
    std::unordered_map<std::string, const rule_source::ThresholdBean*> mBeans;
    std::unique_ptr<Connection> mDatabase;
    std::set<std::string> mMade;
};

} // namespace diagnosis::lint

#endif
