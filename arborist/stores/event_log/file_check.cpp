#include "arborist/stores/event_log/file_check.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "arborist/stores/event_log/table_tree.h"
#include "arborist/stores/sql/sql_cursor.h"

namespace {

using FileCheck::Result;
using FT::sql::SqlCursor;

constexpr char SOUND[] = "ok";
// After so many messages SQLite stops checking.
constexpr std::size_t MOST_MESSAGES = 100;

constexpr std::string_view HEADING[] = {"*** in database"};
// Odd values in rows. SQLite looks for them after the tables' trees, and before their indexes.
constexpr std::string_view ODD_VALUES[] = {" value in ", "CHECK constraint failed"};
// A wrong sum of unused space, which no reading looks at.
constexpr std::string_view HARMLESS[] = {"Fragmentation of"};
// Damage that every reading meets as an error. A message that another version of SQLite words differently counts as
// disorder, which only makes reading slower.
constexpr std::string_view UNREADABLE[] = {"unable to get the page", "btreeInitPage() returns", "invalid page number",
    "failed to get page", "Child page depth differs", "database disk image is malformed"};

template <std::size_t COUNT>
bool HasAnyOf(const std::string_view (&parts)[COUNT], std::string_view message)
{
    return std::any_of(std::begin(parts), std::end(parts),
        [message](std::string_view part) { return message.find(part) != std::string_view::npos; });
}

using State = Result::State;

// Takes SQLite's messages one by one.
class Messages {
public:
    // SQLite checks the order of keys in a table, and not that of an index.
    explicit Messages(bool areOfOneTable) : mAreOfOneTable(areOfOneTable) {}

    // Several messages may be lines of one text.
    void Take(std::string_view lines)
    {
        while (!lines.empty()) {
            const std::size_t end = std::min(lines.find('\n'), lines.size());
            TakeLine(lines.substr(0, end));
            lines.remove_prefix(std::min(end + 1, lines.size()));
        }
    }
    const Result& GetResult() const { return mResult; }

private:
    void TakeLine(std::string_view line)
    {
        const bool isOddValue = HasAnyOf(ODD_VALUES, line);
        if (line.empty() || line == SOUND || HasAnyOf(HEADING, line) || (mAreOfOneTable && isOddValue)) {
            return;
        }
        ++mCount;
        const State state = mCount >= MOST_MESSAGES ? State::DISORDER : isOddValue ? State::SOUND : StateOf(line);
        mResult = FileCheck::WorseOf(std::move(mResult), {state, std::string(line)});
    }

    State StateOf(std::string_view line) const
    {
        if (!mAreOfOneTable) {
            return State::DISORDER;
        }
        return HasAnyOf(HARMLESS, line) ? State::SOUND
            : HasAnyOf(UNREADABLE, line) ? State::UNREADABLE_PAGES : State::DISORDER;
    }

    bool mAreOfOneTable;
    std::size_t mCount = 0;
    Result mResult;
};

Result ResultOf(const FT::sql::Sqlite3Db& database, const std::string& statement, bool isOneTable)
{
    Messages messages(isOneTable);
    SqlCursor check(database, statement);
    while (check.Step()) {
        messages.Take(check.GetText(0));
    }
    messages.Take(check.GetError()); // if it could not read all rows
    return messages.GetResult();
}

} // namespace

Result FileCheck::OfFile(const FT::sql::Sqlite3Db& database)
{
    return ResultOf(database, "PRAGMA integrity_check", false);
}

Result FileCheck::OfTable(const FT::sql::Sqlite3Db& database, const std::string& table)
{
    return TableTree::IsInOrder(database, table) ? Result{}
                                                 : ResultOf(database, "PRAGMA quick_check(" + table + ")", true);
}

Result FileCheck::WorseOf(Result one, Result other)
{
    return one.state < other.state ? std::move(other) : std::move(one);
}
