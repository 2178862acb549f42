#include "arborist/stores/event_log/answer_table.h"

#include <iterator>

AnswerColumn::AnswerColumn(std::uint32_t firstRow, std::uint32_t endRow, bool isNumber)
    : mFirstRow(firstRow), mEndRow(endRow), mIsNumber(isNumber)
{
    if (isNumber) {
        mNumbers.resize(endRow - firstRow);
    } else {
        mYes = RowBits(firstRow, endRow);
    }
}

void AnswerColumn::SetAskAgain(std::uint32_t row)
{
    if (mAgain.IsEmpty()) {
        mAgain = RowBits(mFirstRow, mEndRow);
    }
    mAgain.Set(row);
}

std::size_t AnswerColumn::SizeFor(std::uint32_t rows, bool isNumber)
{
    constexpr std::size_t BITS_OF_BYTE = 8;
    const std::size_t bits = rows / BITS_OF_BYTE + sizeof(RowBits::Word);
    return sizeof(AnswerColumn) + bits + (isNumber ? rows * sizeof(std::int32_t) : bits);
}

std::shared_ptr<AnswerColumn> AnswerTable::Add(
    Requests::Number question, std::uint32_t firstRow, std::uint32_t endRow, bool isNumber)
{
    auto column = std::make_shared<AnswerColumn>(firstRow, endRow, isNumber);
    mColumns[question].emplace(firstRow, column);
    return column;
}

std::shared_ptr<const AnswerColumn> AnswerTable::Find(
    Requests::Number question, std::uint32_t firstRow, std::uint32_t endRow) const
{
    const auto columns = mColumns.find(question);
    if (columns == mColumns.end()) {
        return nullptr;
    }
    const auto next = columns->second.upper_bound(firstRow);
    if (next == columns->second.begin() || std::prev(next)->second->GetEndRow() < endRow) {
        return nullptr;
    }
    return std::prev(next)->second;
}
