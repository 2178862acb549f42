#ifndef ARBORIST_DIAGNOSIS_TEXT_BOUNDED_LINES_H
#define ARBORIST_DIAGNOSIS_TEXT_BOUNDED_LINES_H

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace diagnosis {

/// The longest line of a file of JSON Lines that is read. A reader holds one line in memory, which a file without line
/// ends would otherwise fill.
inline constexpr std::size_t LONGEST_LINE = std::size_t{64} << 20;
/// What is wrong with a longer one.
inline constexpr char LINE_TOO_LONG[] = "the line is longer than 64 MiB";

/// The lines of a stream, one after the other, in memory for one line of the longest length that is allowed. Reads ahead.
class BoundedLines {
public:
    explicit BoundedLines(std::istream& stream, std::size_t longest = LONGEST_LINE)
        : mStream(stream), mLongest(longest)
    {
    }

    /// Moves to the next line. False at the end, and where the stream can't be read.
    bool Next();
    /// The line without its line feed, valid until Next; empty if it is too long.
    std::string_view Line() const { return mLine; }
    bool IsTooLong() const { return mIsTooLong; }
    /// False for a last line without line feed.
    bool HasEnd() const { return mHasEnd; }
    /// The number of the line, from 1, and the place of its first byte.
    std::size_t Number() const { return mNumber; }
    std::uint64_t Start() const { return mStart; }

private:
    bool ReadMore();
    void Take(std::size_t length, bool hasEnd);

    std::istream& mStream;
    std::size_t mLongest;
    /// What was read and is not passed yet lies from mAt to mEnd.
    std::vector<char> mBytes;
    std::size_t mAt = 0;
    std::size_t mEnd = 0;
    std::string_view mLine;
    bool mIsTooLong = false;
    bool mHasEnd = true;
    std::size_t mNumber = 0;
    std::uint64_t mStart = 0;
    std::uint64_t mPassed = 0;
};

} // namespace diagnosis

#endif
