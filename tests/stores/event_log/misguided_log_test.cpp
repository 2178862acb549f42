// Logs with damage that SQLite reads over: a search may miss a row that a scan finds, and nothing fails.

#include "arborist/stores/event_log/file_check.h"
#include "tests/stores/event_log/hostile_log.h"
#include "tests/support/case_name.h"
#include "tests/support/random_cases.h"

namespace {

constexpr std::size_t PAGE = 1024;
constexpr int ROWS = 2000;
constexpr char FILE_NAME[] = "data/Comms/Lumbra/workDir/0/log.db";

// The file format: the first byte of an inner page of a table, and the places of what follows it.
constexpr char INNER_PAGE = 5;
constexpr std::size_t CELL_COUNT = 3;
constexpr std::size_t CELLS = 12;
constexpr std::size_t CHILD_SIZE = 4;

// What to change in a page.
enum class Change {
    BYTE, ///< any
    GUIDE, ///< a number by which an inner page tells searches where to go
};

struct MisguidedLog {
    const char* name;
    Change change;
    const char* sql;
    int cases;
};
void PrintTo(const MisguidedLog& log, std::ostream* out) { *out << log.name; }

class MisguidedLogRandomTest : public HostileLogTest, public testing::WithParamInterface<MisguidedLog> {
protected:
    void WriteLog()
    {
        EventLogBuilder builder;
        builder.Schema("PRAGMA page_size = 1024; CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
            "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id integer);"
            "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);");
        for (int row = 0; row < ROWS; ++row) {
            // Ids whose rows lie side by side, and ids whose rows lie apart.
            const std::int64_t id = row % 3 == 0 ? row / 3 % 5 : 5 + row / 100 % 4;
            builder.Row({row, id, row % 2 == 0 ? "1.0" : "2.0", "{\"a\":" + std::to_string(row % 1000) + "}"});
        }
        builder.Sql(GetParam().sql).WriteTo(mPath);
    }

    void ChangePage(std::string& file, std::size_t begin)
    {
        if (GetParam().change == Change::GUIDE) {
            Misguide(file, begin);
        } else {
            file[begin + mCases.Below(PAGE)] = static_cast<char>(mCases.Below(256));
        }
    }

    // Lowers the last byte of a number.
    void Misguide(std::string& file, std::size_t begin)
    {
        const auto twoBytes = [&](std::size_t place) {
            return static_cast<unsigned char>(file[place]) * 256U + static_cast<unsigned char>(file[place + 1]);
        };
        const std::size_t count = file[begin] == INNER_PAGE ? twoBytes(begin + CELL_COUNT) : 0;
        if (count == 0) {
            return;
        }
        std::size_t place = begin + twoBytes(begin + CELLS + mCases.Below(count) * 2) + CHILD_SIZE;
        while (static_cast<signed char>(file[place]) < 0) {
            ++place;
        }
        file[place] = static_cast<char>(file[place] / 2);
    }

    // False if SQLite would read what happens to lie in memory behind a page: then no two queries need to agree.
    bool IsDefined() const
    {
        FT::sql::SqlDatabase database;
        database.Open(mPath);
        return FileCheck::OfFile(database.GetHandle()).message.find("out of range") == std::string::npos;
    }

    RandomCases mCases{GetParam().cases};
};

TEST_P(MisguidedLogRandomTest, AnswerAsOneQueryForEachId)
{
    WriteLog();
    const std::string whole = mDir.Read(FILE_NAME);
    for (int number = 0; number < mCases.GetCount() && !HasFailure(); ++number) {
        const std::size_t page = 1 + mCases.Below(whole.size() / PAGE - 1);
        SCOPED_TRACE(testing::Message() << "seed " << mCases.GetSeed() << ", case " << number << ", page " << page + 1);
        std::string file = whole;
        ChangePage(file, page * PAGE);
        mDir.Write(FILE_NAME, file);
        if (file != whole && IsDefined()) {
            ExpectOneAnswer(ROWS / 3, mCases.OnceIn(2), mCases.OnceIn(2));
        }
    }
}

constexpr char NOTHING[] = "select 1";
// Rows of the flow without their events, which no reading looks up and searches pass by.
constexpr char GAPS[] = "delete from event_info where _ID % 13 = 0 or _ID between 500 and 560";
constexpr char INDEX[] = "create index i on event_info(event_id)";

INSTANTIATE_TEST_SUITE_P(Table, MisguidedLogRandomTest, testing::Values(
    MisguidedLog{"AnyByte", Change::BYTE, NOTHING, 200}, MisguidedLog{"AnyByteWithGaps", Change::BYTE, GAPS, 200},
    MisguidedLog{"AnyByteWithIndex", Change::BYTE, INDEX, 200}, MisguidedLog{"Guides", Change::GUIDE, NOTHING, 2000},
    MisguidedLog{"GuidesWithGaps", Change::GUIDE, GAPS, 2000},
    MisguidedLog{"GuidesWithIndex", Change::GUIDE, INDEX, 1000}), CaseName());

} // namespace
