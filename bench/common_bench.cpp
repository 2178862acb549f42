// Derived tables, their extraction from the event log, and command rules, each against the same statements by hand.

#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#include <json/reader.h>
#include <json/value.h>
#include <sqlite3.h>

#include "arborist/evaluation/command_rule_engine.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/settings.h"
#include "arborist/model/common_part.h"
#include "arborist/model/rule.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "arborist/stores/common_part/derived_table_writer.h"
#include "arborist/stores/common_part/event_selection.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_operator.h"
#include "bench/compare.h"

namespace {

std::vector<Json::Value> Fetch(const EventIdList& ids, const std::string& path)
{
    std::vector<Json::Value> rows;
    EventSelection::GetLumbraDataByFilter(ids, path, rows);
    return rows;
}

constexpr std::int64_t NOW = 1700000000;
constexpr int ROUNDS = 7;
constexpr int TABLE_ROWS = 100000;
constexpr int LOG_ROWS = 1000000;
constexpr int RULES = 1000;

constexpr char CREATE_TABLE[] =
    "CREATE TABLE T (_ID integer primary key autoincrement, app string NOT NULL DEFAULT '', "
    "count int NOT NULL DEFAULT 0, frames int NOT NULL DEFAULT 0, name string NOT NULL DEFAULT '', ratio double, "
    "size long NOT NULL DEFAULT 0, state string NOT NULL DEFAULT '', occurrence_time int NOT NULL DEFAULT 0);";

// One open connection as in a hand-written program: default settings, one error check.
class Connection {
public:
    explicit Connection(const std::string& path) { sqlite3_open(path.c_str(), &mConnection); }
    ~Connection() { sqlite3_close(mConnection); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void Run(const std::string& sql, int (*callback)(void*, int, char**, char**) = nullptr, void* context = nullptr)
    {
        if (sqlite3_exec(mConnection, sql.c_str(), callback, context, nullptr) != SQLITE_OK) {
            std::fprintf(stderr, "%s\n", sqlite3_errmsg(mConnection));
            std::abort();
        }
    }

private:
    sqlite3* mConnection = nullptr;
};

std::vector<std::shared_ptr<Param>> Columns()
{
    std::vector<std::shared_ptr<Param>> params;
    for (const auto& [key, type] : std::vector<std::pair<const char*, const char*>>{{"app", "string"},
             {"count", "int"}, {"frames", "int"}, {"name", "string"}, {"ratio", "double"}, {"size", "long"},
             {"state", "string"}, {"occurrence_time", "int"}}) {
        params.push_back(std::make_shared<Param>(Param{key, type, key, ""}));
    }
    return params;
}

Json::Value RowOf(int number)
{
    Json::Value row;
    row["app"] = "app" + std::to_string(number % 50);
    row["count"] = number;
    row["frames"] = number * 7;
    row["name"] = "some text " + std::to_string(number);
    row["ratio"] = number / 3.0;
    row["size"] = static_cast<Json::Int64>(number) * 100000;
    row["state"] = "state" + std::to_string(number % 1000);
    row["occurrence_time"] = static_cast<Json::Int64>(NOW - number);
    return row;
}

std::string InsertOf(int number)
{
    return "insert into T (app, count, frames, name, occurrence_time, ratio, size, state) values ('app" +
        std::to_string(number % 50) + "', " + std::to_string(number) + ", " + std::to_string(number * 7) +
        ", 'some text " + std::to_string(number) + "', " + std::to_string(NOW - number) + ", " +
        std::to_string(number / 3.0) + ", " + std::to_string(static_cast<long long>(number) * 100000) + ", 'state" +
        std::to_string(number % 1000) + "')";
}

void DerivedTable(const std::string& directory)
{
    std::vector<Json::Value> rows;
    std::vector<std::string> inserts;
    for (int number = 0; number < TABLE_ROWS; ++number) {
        rows.push_back(RowOf(number));
        inserts.push_back(InsertOf(number));
    }
    const std::string ours = directory + "/ours.db";
    const std::string baseline = directory + "/baseline.db";
    const auto times = bench::Alternate(
        ROUNDS,
        [&] {
            std::filesystem::remove(ours);
            FT::sql::SqlDatabase database;
            database.Open(ours);
            database.Restrict(FT::sql::SqlAccess::OWN_FILE);
            FT::sql::SqlOperator(database.GetHandle()).ExecuteNoCallback(CREATE_TABLE);
            DerivedTableWriter(database, "T", Columns(), CREATE_TABLE).Write(rows);
        },
        [&] {
            std::filesystem::remove(baseline);
            Connection connection(baseline);
            connection.Run(CREATE_TABLE);
            connection.Run("BEGIN");
            for (const std::string& insert : inserts) {
                connection.Run(insert);
            }
            connection.Run("COMMIT");
        });
    bench::Report("derived table [100000 rows, 8 columns, a transaction each]", times, 2.5);
}

void WriteLog(const std::string& path)
{
    Connection connection(path);
    connection.Run("CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
                   "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, "
                   "version_id integer);"
                   "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);"
                   "CREATE INDEX flow_of_event ON event_info_flow (event_pid); BEGIN");
    const std::string numbers = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
        std::to_string(LOG_ROWS) + ") ";
    connection.Run(numbers +
        "INSERT INTO event_info SELECT i, 1000 + i % 10, '{\"app\":\"app' || i % 50 || '\",\"count\":' || i || "
        "',\"frames\":' || i * 7 || ',\"name\":\"some text ' || i || '\",\"ratio\":' || i / 3.0 || ',\"size\":' || "
        "i * 1000 || ',\"state\":\"state' || i % 1000 || '\"}', 1 FROM n");
    connection.Run(numbers + "INSERT INTO event_info_flow SELECT i, i, " + std::to_string(NOW) + " - i FROM n");
    connection.Run("COMMIT");
}

// Copies the text and its length for each row, as the texts to parse must outlive the statement.
int KeepText(void* context, int, char** texts, char**)
{
    static_cast<std::vector<std::string>*>(context)->push_back(texts[0]);
    return 0;
}

void Extraction(const std::string& directory)
{
    const std::string log = directory + "/log.db";
    WriteLog(log);
    EventIdList ids;
    ids.Append(1003, 1003);
    const std::string sql =
        "SELECT event_info.extra, event_info_flow.occurrence_time FROM event_info LEFT OUTER JOIN event_info_flow ON "
        "event_info_flow.event_pid = event_info._ID WHERE  ( event_info.event_id = 1003) AND "
        "event_info_flow.occurrence_time > " + std::to_string(NOW - 2592000);
    const auto times = bench::Alternate(
        ROUNDS, [&] { bench::Keep(Fetch(ids, log).size()); },
        [&] {
            std::vector<std::string> texts;
            Connection connection(log);
            connection.Run(sql, KeepText, &texts);
            const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
            std::vector<Json::Value> values;
            std::string error;
            for (const std::string& text : texts) {
                values.emplace_back();
                reader->parse(text.data(), text.data() + text.size(), &values.back(), &error);
            }
            bench::Keep(values.size());
        });
    bench::Report("extraction [100000 of 1000000 rows]", times, 1.3);
}

std::shared_ptr<CommandRule> RuleOf(int number)
{
    auto rule = std::make_shared<CommandRule>();
    rule->analysisMethod.type = "SQL";
    rule->analysisMethod.sqlItem.sql = "select count(*), max(count) from T where count > " + std::to_string(number);
    rule->commonPartName = "T";
    rule->params = {{"1", std::make_shared<Param>(Param{"rows", "int", "1", ""})},
        {"2", std::make_shared<Param>(Param{"most", "int", "2", ""})}};
    auto condition = std::make_shared<OrLogic>();
    condition->SetType(std::string(RuleChecker::SINGLE_LOGIC));
    condition->SetLogic(std::string(RuleChecker::LOGIC_GT));
    condition->SetLogicType("static");
    condition->SetParamId("2");
    condition->SetValue("1000000");
    rule->analysisMethod.sqlItem.conditionList = {condition};
    return rule;
}

int KeepRow(void* context, int count, char** texts, char**)
{
    auto* row = static_cast<std::vector<std::string>*>(context);
    for (int column = 0; column < count; ++column) {
        row->emplace_back(texts[column] == nullptr ? "" : texts[column]);
    }
    return 0;
}

void CommandRules(const std::string& directory, int tableRows)
{
    const std::string folder = directory + "/Comms/Lumbra/zxdetectrepair/databases";
    std::filesystem::create_directories(folder);
    const std::string path = folder + "/JankEventDb.db";
    std::filesystem::remove(path);
    {
        Connection connection(path);
        connection.Run(CREATE_TABLE);
        connection.Run("BEGIN");
        for (int number = 0; number < tableRows; ++number) {
            connection.Run(InsertOf(number));
        }
        connection.Run("COMMIT");
    }
    auto bean = std::make_shared<ThresholdOrLumbraBean>();
    bean->SetName("T");
    auto block = std::make_shared<CommonPart::CombineCommonPart>();
    block->SetThresholdLumbraList({bean});
    auto part = std::make_shared<CommonPart>();
    part->SetCombineCommon(block);
    std::vector<std::shared_ptr<Rule>> rules;
    std::vector<std::string> statements;
    for (int number = 0; number < RULES; ++number) {
        const auto rule = RuleOf(number);
        rules.push_back(rule);
        statements.push_back(
            rule->analysisMethod.sqlItem.sql + " and occurrence_time >" + std::to_string(NOW - 2592000));
    }
    const auto helper = std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr);
    const auto times = bench::Alternate(
        ROUNDS,
        [&] {
            CommandRuleEngine engine(part, helper);
            for (const auto& rule : rules) {
                bench::Keep(engine.IsFaultHappened(rule, "event"));
            }
        },
        [&] {
            Connection connection(path);
            for (const std::string& statement : statements) {
                std::vector<std::string> row;
                connection.Run(statement, KeepRow, &row);
                bench::Keep(row.size());
            }
        });
    bench::Report("command rules [1000 rules, table of " + std::to_string(tableRows) + " rows]", times, 1.5);
}

} // namespace

int main()
{
    bench::SilenceLog();
    const std::string directory =
        (std::filesystem::temp_directory_path() / ("common_bench." + std::to_string(getpid()))).string();
    std::filesystem::create_directories(directory);
    SetFaultTreeProperty(Settings::PROGRAM_DATA_DIR, directory);
    SetFaultTreeProperty(Settings::CURRENT_TIME, std::to_string(NOW));
    DerivedTable(directory);
    Extraction(directory);
    CommandRules(directory, 100);
    CommandRules(directory, 2000);
    std::filesystem::remove_all(directory);
    return 0;
}
