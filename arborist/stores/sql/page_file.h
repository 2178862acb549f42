#ifndef ARBORIST_STORES_SQL_PAGE_FILE_H
#define ARBORIST_STORES_SQL_PAGE_FILE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "arborist/stores/sql/sql_database.h"

struct sqlite3_file;

namespace FT::sql {

/// The pages of a database as they lie in its file, for whoever must look at what SQL doesn't show.
///
/// Use it only within a transaction that has read something: its lock keeps the file as it is. In WAL mode pages may be
/// newer in another file; then nothing can be read.
class PageFile {
public:
    using Page = std::vector<unsigned char>;

    explicit PageFile(const Sqlite3Db& database);

    /// Bytes of a page that SQLite fills; 0 if no page can be read.
    std::size_t GetUsableSize() const { return mUsableSize; }
    /// Reads a page of the database, numbered from 1. PADDING bytes follow it.
    bool Read(std::uint32_t number, Page& page) const;

    /// A number can be read at any place of a page without looking for the end of the page.
    static constexpr std::size_t PADDING = 32;

private:
    sqlite3_file* mFile = nullptr;
    std::size_t mPageSize = 0;
    std::size_t mUsableSize = 0;
    std::int64_t mPageCount = 0;
};

} // namespace FT::sql

#endif
