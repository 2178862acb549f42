#include "diagnosis/text/bounded_lines.h"

#include <algorithm>
#include <cstring>

namespace diagnosis {

bool BoundedLines::Next()
{
    mStart = mPassed;
    mIsTooLong = false;
    for (std::size_t looked = 0;;) {
        const char* const start = mBytes.data() + mAt;
        const void* const lineFeed =
            looked == mEnd - mAt ? nullptr : std::memchr(start + looked, '\n', mEnd - mAt - looked);
        if (lineFeed != nullptr) {
            Take(static_cast<std::size_t>(static_cast<const char*>(lineFeed) - start), true);
            return true;
        }
        looked = mEnd - mAt;
        if (looked > mLongest) {
            // Not kept: only its end is looked for.
            mIsTooLong = true;
            mPassed += looked;
            mAt = mEnd;
            looked = 0;
        }
        if (!ReadMore()) {
            const bool isLine = looked > 0 || mIsTooLong;
            if (isLine) {
                Take(looked, false);
            }
            return isLine && !mStream.bad();
        }
    }
}

// False if there is nothing more.
bool BoundedLines::ReadMore()
{
    static constexpr std::size_t LEAST = 1U << 17U;
    std::copy(mBytes.begin() + static_cast<std::ptrdiff_t>(mAt), mBytes.begin() + static_cast<std::ptrdiff_t>(mEnd),
        mBytes.begin());
    mEnd -= mAt;
    mAt = 0;
    if (mBytes.size() - mEnd < LEAST) {
        mBytes.resize(2 * mEnd + LEAST);
    }
    mStream.read(mBytes.data() + mEnd, static_cast<std::streamsize>(mBytes.size() - mEnd));
    const auto count = static_cast<std::size_t>(mStream.gcount());
    mEnd += count;
    return count > 0;
}

// The next `length` bytes are the line, or the end of one that is too long.
void BoundedLines::Take(std::size_t length, bool hasEnd)
{
    mIsTooLong = mIsTooLong || length > mLongest;
    mLine = mIsTooLong ? std::string_view() : std::string_view(mBytes.data() + mAt, length);
    mHasEnd = hasEnd;
    mAt += length + (hasEnd ? 1 : 0);
    mPassed += length + (hasEnd ? 1 : 0);
    ++mNumber;
}

} // namespace diagnosis
