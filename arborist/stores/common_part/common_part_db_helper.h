#ifndef ARBORIST_STORES_COMMON_PART_COMMON_PART_DB_HELPER_H
#define ARBORIST_STORES_COMMON_PART_COMMON_PART_DB_HELPER_H

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "arborist/model/common_part.h"

class EventIdList;
class TextLimits;

namespace DerivedTables {
struct Table;
}

/// Builds the databases that command rules query: the derived database, with a table of events for each threshold bean,
/// and copies of external databases, on which it runs the SQL of the rule set.
///
/// Only reads the event log and the external files. Iterates over the entries of the rule set; DerivedTables and
/// ExternalDatabases do the work. Init, each of the two ways to build a table, and CreateTable lock one mutex each from
/// begin to end, so that each runs in one thread at a time; no mutex is locked inside another. Keeps no state between
/// calls.
class CommonPartDbHelper {
public:
    CommonPartDbHelper(const CommonPartDbHelper&) = delete;
    CommonPartDbHelper& operator=(const CommonPartDbHelper&) = delete;

    static CommonPartDbHelper& GetInstance();

    /// Creates the directory of the derived database if it is missing. False, with a line, if that fails.
    bool Init();

    /// Drops, creates and fills the table of each threshold bean that selects events, in list order. A bean that fails
    /// logs a line and the next one follows; a bean with two ids of 0 ends the call. Returns the result of the last
    /// bean that was built; false if there was none, and for a null common part.
    /// With `looksAtTables` also sets the state of each bean's table, which takes one more query for each.
    bool IsSuccessCreateJankDb(const std::string& eventDbPath, const std::shared_ptr<CommonPart>& commonPart,
        bool looksAtTables = false);

    /// Searches the directories of each table bean, copies or unpacks the matching files into the directory
    /// Settings::APP_DATABASE_DIR, lists the copies in the bean and runs the bean's SQL on each. A failure logs a line
    /// and doesn't end the call. Throws std::regex_error for a name pattern that is no regular expression.
    void CopyDbAndCreateTable(const std::shared_ptr<CommonPart>& commonPart);

private:
    CommonPartDbHelper() = default;
    ~CommonPartDbHelper() = default;

    // `state` may be null.
    bool IsSuccessCreatePerfDb(const DerivedTables::Table& table, const EventIdList& ids,
        const std::string& eventDbPath, ThresholdOrLumbraBean::TableState* state);
    bool IsSuccessCreateLumbraPlusDb(const DerivedTables::Table& table, ThresholdOrLumbraBean::TableState* state);
    // False if a statement failed on a file, which was not listed before.
    bool IsCreateDbByFileComplete(const std::vector<std::string>& files,
        const DefDbTableBean::CreateTableList& createTables, TextLimits& limits);
    bool CreateTable(const std::string& dbPath, const std::string& sql, TextLimits& limits);

    std::mutex initMutex;
    std::mutex perfDbMutex;
    std::mutex plusDbMutex;
    std::mutex createTableMutex;
};

#endif
