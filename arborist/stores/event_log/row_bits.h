#ifndef ARBORIST_STORES_EVENT_LOG_ROW_BITS_H
#define ARBORIST_STORES_EVENT_LOG_ROW_BITS_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

/// One bit for each row of a run. A word has the same rows in every run, so that two runs are combined word by word.
///
/// Not std::vector<bool>, which gives no access to its words and would count and combine bit by bit.
class RowBits {
public:
    using Word = std::uint64_t;
    static constexpr std::uint32_t WORD_BITS = 64;

    RowBits() = default;
    /// For the rows from `firstRow` to before `endRow`; no bit is set.
    RowBits(std::uint32_t firstRow, std::uint32_t endRow)
        : mFirstWord(firstRow / WORD_BITS), mWords(endRow <= firstRow ? 0 : WordsIn(firstRow, endRow))
    {
    }

    static std::size_t WordsIn(std::uint32_t firstRow, std::uint32_t endRow)
    {
        return (endRow - 1) / WORD_BITS - firstRow / WORD_BITS + 1;
    }

    bool IsEmpty() const { return mWords.empty(); }
    bool Has(std::uint32_t row) const { return (GetWord(row / WORD_BITS) >> row % WORD_BITS & 1U) != 0; }
    void Set(std::uint32_t row) { mWords[row / WORD_BITS - mFirstWord] |= Word{1} << row % WORD_BITS; }

    std::uint32_t GetFirstWord() const { return mFirstWord; }
    std::uint32_t GetEndWord() const { return mFirstWord + static_cast<std::uint32_t>(mWords.size()); }
    /// The bits of the rows from `number` * WORD_BITS on; the first row is the lowest bit.
    Word GetWord(std::uint32_t number) const { return mWords[number - mFirstWord]; }
    void SetWord(std::uint32_t number, Word word) { mWords[number - mFirstWord] = word; }

    /// Calls `take` with each row whose bit is set, in ascending order.
    template <typename Take>
    void ForEach(Take take) const
    {
        for (std::uint32_t number = GetFirstWord(); number < GetEndWord(); ++number) {
            for (Word word = GetWord(number); word != 0; word &= word - 1) {
                take(number * WORD_BITS + static_cast<std::uint32_t>(std::countr_zero(word)));
            }
        }
    }

private:
    std::uint32_t mFirstWord = 0;
    std::vector<Word> mWords;
};

#endif
