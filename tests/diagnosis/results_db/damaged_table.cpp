#include "tests/diagnosis/results_db/damaged_table.h"

#include <cstdint>
#include <fstream>
#include <vector>

#include "diagnosis/sqlite/connection.h"

namespace {

/// A row as it lies in a page: its number, which a table without row ids doesn't have, and the kinds of its columns, in
/// front of which their number stands: 0 is NULL, 8 the number 0, 13 the empty text.
struct RowForm {
    std::string rowId;
    std::string row;
};

RowForm FormOf(const std::string& table)
{
    static const std::string NOWHERE = "\x7F";
    if (table == "failure") {
        return {NOWHERE, std::string("\x05\x00\x0D\x0D\x08", 5)};
    }
    return table == "cut_set_member" ? RowForm{"", "\x04\x08\x08\x0D"} : RowForm{NOWHERE, std::string("\x04\x00\x0D\x0D", 4)};
}

/// Pages of a database file, numbered from 1, in the form that the documentation of SQLite describes.
class Pages {
public:
    explicit Pages(const std::string& path) : mFile(path, std::ios::binary | std::ios::in | std::ios::out)
    {
        diagnosis::Connection database;
        database.Open(path, diagnosis::Connection::Mode::READ_ONLY);
        auto size = database.Prepare("PRAGMA page_size");
        size->Step();
        mSize = size->Integer(0);
        auto count = database.Prepare("PRAGMA page_count");
        count->Step();
        mCount = count->Integer(0);
    }

    // The last page of rows below a page: pages without rows of their own name it at one place.
    std::int64_t LastBelow(std::int64_t page)
    {
        static constexpr int RIGHTMOST = 8;
        for (std::string bytes = Read(page); bytes[0] == 2 || bytes[0] == 5; bytes = Read(page)) {
            page = 0;
            for (int place = 0; place < 4; ++place) {
                page = page * 256 + static_cast<unsigned char>(bytes[static_cast<std::size_t>(RIGHTMOST + place)]);
            }
        }
        return page;
    }

    std::string Read(std::int64_t page)
    {
        std::string bytes(static_cast<std::size_t>(mSize), '\0');
        mFile.seekg((page - 1) * mSize);
        mFile.read(bytes.data(), mSize);
        return bytes;
    }

    void Write(std::int64_t page, const std::string& bytes)
    {
        mFile.seekp((page - 1) * mSize);
        mFile << bytes;
    }

    void Damage(std::int64_t page) { Write(page, "no page of a database"); }

    // Appends a page of a table, and returns its number; see PageOf.
    std::int64_t Append(std::int64_t below, const RowForm& form)
    {
        Write(++mCount, PageOf(below, form));
        mFile.seekp(PAGE_COUNT);
        mFile << Number(mCount, 4);
        return mCount;
    }

    // A page that has the same row a hundred times, or names the page below it as often; `below` is 0 for the former.
    std::string PageOf(std::int64_t below, const RowForm& form) const
    {
        static constexpr int CELLS = 100;
        const bool isLowest = below == 0;
        const std::string length = Number(static_cast<std::int64_t>(form.row.size()), 1);
        const std::string rowCell = length + form.rowId + form.row;
        const std::string cell = isLowest ? rowCell : Number(below, 4) + (form.rowId.empty() ? rowCell : form.rowId);
        const std::int64_t start = mSize - CELLS * static_cast<std::int64_t>(cell.size());
        std::string page = Number((isLowest ? 8 : 0) + (form.rowId.empty() ? 2 : 5), 1) + Number(0, 2) + Number(CELLS, 2)
            + Number(start, 2) + Number(0, 1) + (isLowest ? "" : Number(below, 4));
        std::string content;
        for (int number = 0; number < CELLS; ++number) {
            page += Number(start + static_cast<std::int64_t>(content.size()), 2);
            content += cell;
        }
        page.resize(static_cast<std::size_t>(start));
        return page + content;
    }

private:
    static constexpr std::int64_t PAGE_COUNT = 28;

    static std::string Number(std::int64_t number, int bytes)
    {
        std::string text;
        for (int place = bytes - 1; place >= 0; --place) {
            text += static_cast<char>((number >> (8 * place)) & 0xFF);
        }
        return text;
    }

    std::fstream mFile;
    std::int64_t mSize = 0;
    std::int64_t mCount = 0;
};

// The first pages of a table and its indexes.
std::vector<std::int64_t> FirstPagesOf(const std::string& path, const std::string& table, const std::string& type = "%")
{
    diagnosis::Connection database;
    database.Open(path, diagnosis::Connection::Mode::READ_ONLY);
    auto rows = database.Prepare("SELECT rootpage FROM sqlite_master WHERE rootpage > 0 AND tbl_name = '" + table
        + "' AND type LIKE '" + type + "'");
    std::vector<std::int64_t> pages;
    while (rows->Step()) {
        pages.push_back(rows->Integer(0));
    }
    return pages;
}

} // namespace

void FillTables(const std::string& path)
{
    diagnosis::Connection database;
    database.Open(path, diagnosis::Connection::Mode::CREATE);
    auto tables = database.Prepare("SELECT m.name, (SELECT group_concat('i') FROM pragma_table_info(m.name))"
        " FROM sqlite_master AS m WHERE type = 'table'");
    std::string sql = "BEGIN;";
    while (tables->Step()) {
        sql += "WITH RECURSIVE n(i) AS (SELECT 1000 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) INSERT INTO "
            + tables->Text(0) + " SELECT " + tables->Text(1) + " FROM n;";
    }
    tables.reset();
    database.Execute(sql + "COMMIT");
}

void DamageTable(const std::string& path, const std::string& table)
{
    for (const std::int64_t page : FirstPagesOf(path, table)) {
        Pages(path).Damage(page);
    }
}

void DamageLastRows(const std::string& path, const std::string& table)
{
    for (const std::int64_t page : FirstPagesOf(path, table)) {
        Pages pages(path);
        pages.Damage(pages.LastBelow(page));
    }
}

void MakeEndless(const std::string& path, const std::string& table)
{
    static constexpr int LEVELS = 15;
    const RowForm form = FormOf(table);
    Pages pages(path);
    std::int64_t below = pages.Append(0, form);
    for (int level = 0; level < LEVELS; ++level) {
        below = pages.Append(below, form);
    }
    pages.Write(FirstPagesOf(path, table, "table").front(), pages.PageOf(below, form));
}
