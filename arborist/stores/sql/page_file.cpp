#include "arborist/stores/sql/page_file.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string_view>

#include <sqlite3.h>

#include "arborist/stores/sql/sql_cursor.h"

namespace FT::sql {
namespace {

// The header of the file: what it begins with, and the places of what follows.
constexpr std::string_view MAGIC{"SQLite format 3\0", 16};
constexpr std::size_t PAGE_SIZE = 16;
constexpr std::size_t WRITE_VERSION = 18;
constexpr std::size_t READ_VERSION = 19;
constexpr std::size_t RESERVED = 20;
constexpr std::size_t HEADER_SIZE = 24;

constexpr unsigned char WITH_JOURNAL = 1;
constexpr std::size_t LEAST_PAGE = 512;
constexpr std::size_t GREATEST_PAGE = 65536; // told as 1

bool ReadBytes(sqlite3_file* file, unsigned char* bytes, std::size_t count, std::uint64_t place)
{
    return file->pMethods != nullptr && // a database in memory has none
        file->pMethods->xRead(file, bytes, static_cast<int>(count), static_cast<sqlite3_int64>(place)) == SQLITE_OK;
}

} // namespace

PageFile::PageFile(const Sqlite3Db& database)
{
    if (database.connection == nullptr ||
        sqlite3_file_control(database.connection, "main", SQLITE_FCNTL_FILE_POINTER, &mFile) != SQLITE_OK) {
        return;
    }
    std::array<unsigned char, HEADER_SIZE> header{};
    if (!ReadBytes(mFile, header.data(), header.size(), 0) || !std::equal(MAGIC.begin(), MAGIC.end(), header.begin()) ||
        header[WRITE_VERSION] != WITH_JOURNAL || header[READ_VERSION] != WITH_JOURNAL) {
        return;
    }
    const std::size_t told = header[PAGE_SIZE] * std::size_t{256} + header[PAGE_SIZE + 1];
    const std::size_t size = told == 1 ? GREATEST_PAGE : told;
    if (std::has_single_bit(size) && size >= LEAST_PAGE) {
        mPageSize = size;
        mUsableSize = size - header[RESERVED];
        SqlCursor pages(database, "PRAGMA page_count");
        mPageCount = pages.Step() ? pages.GetInteger(0) : 0;
    }
}

bool PageFile::Read(std::uint32_t number, Page& page) const
{
    page.resize(mPageSize + PADDING);
    return number != 0 && number <= mPageCount &&
        ReadBytes(mFile, page.data(), mPageSize, (number - std::uint64_t{1}) * mPageSize);
}

} // namespace FT::sql
