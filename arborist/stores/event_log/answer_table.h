#ifndef ARBORIST_STORES_EVENT_LOG_ANSWER_TABLE_H
#define ARBORIST_STORES_EVENT_LOG_ANSWER_TABLE_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "arborist/stores/event_log/requests.h"
#include "arborist/stores/event_log/row_bits.h"

/// The answers to one question for a run of rows: one bit for yes or no, four bytes for a number. If needed, another
/// bit marks rows that must be asked again each time. A row that was not set answers 0.
class AnswerColumn {
public:
    AnswerColumn(std::uint32_t firstRow, std::uint32_t endRow, bool isNumber);

    std::uint32_t GetEndRow() const { return mEndRow; }
    bool IsNumber() const { return mIsNumber; }

    void Set(std::uint32_t row, std::int32_t answer)
    {
        if (mIsNumber) {
            mNumbers[row - mFirstRow] = answer;
        } else if (answer != 0) {
            mYes.Set(row);
        }
    }
    std::int32_t Get(std::uint32_t row) const
    {
        return mIsNumber ? mNumbers[row - mFirstRow] : static_cast<std::int32_t>(mYes.Has(row));
    }

    void SetAskAgain(std::uint32_t row);
    bool IsAskedAgain(std::uint32_t row) const { return !mAgain.IsEmpty() && mAgain.Has(row); }
    /// True if a row must be asked again.
    bool HasAskedAgain() const { return !mAgain.IsEmpty(); }

    /// The bits for yes of 64 rows; see RowBits::GetWord.
    RowBits::Word GetYes(std::uint32_t word) const { return mYes.GetWord(word); }

    /// Bytes that a column takes, including the bits of rows to ask again.
    static std::size_t SizeFor(std::uint32_t rows, bool isNumber);

private:
    std::uint32_t mFirstRow;
    std::uint32_t mEndRow;
    bool mIsNumber;
    RowBits mYes;
    std::vector<std::int32_t> mNumbers;
    RowBits mAgain; // empty as long as no row is marked
};

/// The answers from one reading of the texts: the columns of each question, which don't overlap.
class AnswerTable {
public:
    /// Has no answers of rows before `since`.
    explicit AnswerTable(std::int64_t since) : mSince(since) {}

    std::int64_t GetSince() const { return mSince; }
    std::shared_ptr<AnswerColumn> Add(Requests::Number question, std::uint32_t firstRow, std::uint32_t endRow,
        bool isNumber);
    /// The column that has all rows from `firstRow` to before `endRow`; null if there is none.
    std::shared_ptr<const AnswerColumn> Find(
        Requests::Number question, std::uint32_t firstRow, std::uint32_t endRow) const;

private:
    std::int64_t mSince;
    std::map<Requests::Number, std::map<std::uint32_t, std::shared_ptr<AnswerColumn>>> mColumns; // by first row
};

#endif
