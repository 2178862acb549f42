#include "arborist/stores/event_log/table_tree.h"

#include <cstddef>
#include <cstdint>
#include <limits>

#include "arborist/frame/stopping.h"
#include "arborist/stores/sql/page_file.h"
#include "arborist/stores/sql/sql_cursor.h"

namespace {

using FT::sql::PageFile;

// The file format of SQLite: the first byte of a page, and the places in it.
constexpr unsigned char INNER_PAGE = 5;
constexpr unsigned char LEAF_PAGE = 13;
constexpr std::size_t CELL_COUNT = 3;
constexpr std::size_t LAST_CHILD = 8;
constexpr std::size_t CELLS_OF_LEAF = 8;
constexpr std::size_t CELLS_OF_INNER_PAGE = 12;
constexpr std::size_t CELL_PLACE = 2; // an item of the list of cells
constexpr std::size_t LEAST_CELL = 6; // with its item
constexpr std::size_t CHILD_SIZE = 4;
// Bytes of a page that the longest row in one piece leaves free.
constexpr std::size_t LEAST_REST = 35;
constexpr unsigned char GOES_ON = 0x80;
constexpr unsigned int BITS = 7;
constexpr std::size_t LONGEST_NUMBER = 9;
constexpr std::ptrdiff_t LONGEST_LENGTH = 3; // of a row that fits into a page
// A tree with two children a page is no deeper, even if it fills the largest file.
constexpr int GREATEST_DEPTH = 20;

std::uint32_t TwoBytes(const unsigned char* place)
{
    return static_cast<std::uint32_t>(place[0] << 8U | place[1]);
}

std::uint32_t FourBytes(const unsigned char* place)
{
    return TwoBytes(place) << 16U | TwoBytes(place + 2);
}

// Reads a number of at most nine bytes and moves on behind it.
std::int64_t TakeNumber(const unsigned char*& place)
{
    std::uint64_t number = 0;
    for (std::size_t byte = 1; byte < LONGEST_NUMBER; ++byte) {
        number = number << BITS | (*place & (GOES_ON - 1U));
        if ((*place++ & GOES_ON) == 0) {
            return static_cast<std::int64_t>(number);
        }
    }
    return static_cast<std::int64_t>(number << 8U | *place++);
}

// Visits the pages of a tree from left to right.
class TreeWalk {
public:
    explicit TreeWalk(const PageFile& file) : mFile(file), mSize(file.GetUsableSize()) {}

    // The keys of a page must be greater than those before it, and not greater than the guide that leads to the page.
    // Then a search takes the one way to each key, wherever it starts: a guide is not less than any key on its left,
    // and less than each on its right.
    bool IsInOrder(std::uint32_t number, std::int64_t guide, int depth)
    {
        PageFile::Page page;
        if (depth > GREATEST_DEPTH || !mFile.Read(number, page)) {
            return false;
        }
        const bool isLeaf = page[0] == LEAF_PAGE;
        const Cells cells{page, isLeaf ? CELLS_OF_LEAF : CELLS_OF_INNER_PAGE, TwoBytes(&page[CELL_COUNT])};
        // SQLite refuses pages with more cells.
        if ((!isLeaf && page[0] != INNER_PAGE) || cells.begin + cells.count * LEAST_CELL > mSize) {
            return false;
        }
        return isLeaf ? IsLeafInOrder(cells, guide, depth) : IsInnerPageInOrder(cells, guide, depth);
    }

private:
    // The list of cells of a page.
    struct Cells {
        const PageFile::Page& page;
        std::size_t begin;
        std::size_t count;
    };

    // All leaves must lie at one depth, and must not be empty unless the table is.
    bool IsLeafInOrder(const Cells& cells, std::int64_t guide, int depth)
    {
        mDepth = mDepth == 0 ? depth : mDepth;
        bool isInOrder = depth == mDepth && (cells.count != 0 || depth == 1);
        for (std::size_t cell = 0; cell < cells.count && isInOrder; ++cell) {
            const unsigned char* const begin = Find(cells, cell);
            const unsigned char* place = begin;
            const auto length = begin == nullptr ? mSize : static_cast<std::uint64_t>(TakeNumber(place));
            // Searches and scans skip a longer number in different ways.
            if (length > mSize - LEAST_REST || place - begin > LONGEST_LENGTH) {
                return false;
            }
            const std::int64_t key = TakeNumber(place);
            isInOrder = place + length <= cells.page.data() + mSize && key > mLast && key <= guide;
            mLast = key;
        }
        return isInOrder;
    }

    bool IsInnerPageInOrder(const Cells& cells, std::int64_t guide, int depth)
    {
        StopPoint::Pass();
        for (std::size_t cell = 0; cell < cells.count; ++cell) {
            const unsigned char* place = Find(cells, cell);
            if (place == nullptr) {
                return false;
            }
            const std::uint32_t child = FourBytes(place);
            place += CHILD_SIZE;
            const std::int64_t key = TakeNumber(place);
            if (place > cells.page.data() + mSize || key > guide || !IsInOrder(child, key, depth + 1)) {
                return false;
            }
            mLast = key;
        }
        return cells.count != 0 && IsInOrder(FourBytes(&cells.page[LAST_CHILD]), guide, depth + 1);
    }

    // Null if the cell doesn't lie behind the list of cells and within the page.
    const unsigned char* Find(const Cells& cells, std::size_t cell) const
    {
        const std::size_t place = TwoBytes(&cells.page[cells.begin + cell * CELL_PLACE]);
        return place >= cells.begin + cells.count * CELL_PLACE && place + LEAST_CELL - CELL_PLACE <= mSize
            ? &cells.page[place] : nullptr;
    }

    const PageFile& mFile;
    std::size_t mSize;
    int mDepth = 0; // of the leaves
    std::int64_t mLast = std::numeric_limits<std::int64_t>::min();
};

// 0 if there is no such table.
std::uint32_t RootOf(const FT::sql::Sqlite3Db& database, const std::string& table)
{
    FT::sql::SqlCursor cursor(database,
        "select rootpage from sqlite_master where type = 'table' and name = '" + table + "' collate nocase");
    return cursor.Step() ? static_cast<std::uint32_t>(cursor.GetInteger(0)) : 0;
}

} // namespace

bool TableTree::IsInOrder(const FT::sql::Sqlite3Db& database, const std::string& table)
{
    constexpr std::uint32_t FIRST_ROOT = 2; // the first page has the schema
    const std::uint32_t root = RootOf(database, table);
    const PageFile file(database);
    return root >= FIRST_ROOT && file.GetUsableSize() != 0 &&
        TreeWalk(file).IsInOrder(root, std::numeric_limits<std::int64_t>::max(), 1);
}
