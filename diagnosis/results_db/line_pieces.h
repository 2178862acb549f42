#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_LINE_PIECES_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_LINE_PIECES_H

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace diagnosis::results_db {

/// A line of results in pieces: the objects in its lists "warnings" and "results", the values that differ from bundle to
/// bundle, and the line without them: with empty lists and texts, and the number 0.
struct LinePieces {
    std::string frame;
    /// Valid as long as the line.
    std::vector<std::string_view> warnings;
    std::vector<std::string_view> results;
    /// Texts without escapes, and a number without exponent; a value of another form stays in the frame.
    std::optional<std::string_view> bundle;
    std::optional<std::string_view> device;
    std::optional<std::string_view> now;
    std::optional<std::string_view> seconds;
};

/// Cuts a line into pieces. If frame and pieces are JSON, so is the line, and says what they say. False if it can't be
/// cut; it may be sound all the same.
bool CutLine(std::string_view line, LinePieces& pieces);

/// Records of pieces that were read before, by their text; forgets all of them when their texts take too much memory.
template <typename Record>
class KnownPieces {
public:
    /// The record of this text. A new one is read by `read(text)`, and not kept if that gives null.
    template <typename Read>
    std::shared_ptr<const Record> Find(std::string_view text, Read read)
    {
        // Ordered by hash first, so that a comparison is one of numbers; see Definitions.
        const std::size_t hash = std::hash<std::string_view>()(text);
        if (const auto known = mRecords.find(std::pair(hash, text)); known != mRecords.end()) {
            return known->second;
        }
        auto record = read(text);
        if (record != nullptr) {
            Keep(hash, text, record);
        }
        return record;
    }

private:
    static constexpr std::size_t MOST_BYTES = 32U << 20U;

    void Keep(std::size_t hash, std::string_view text, const std::shared_ptr<const Record>& record)
    {
        if (mBytes + text.size() > MOST_BYTES) {
            mRecords.clear();
            mBytes = 0;
        }
        mBytes += text.size();
        mRecords.emplace(std::pair(hash, std::string(text)), record);
    }

    // Compares pairs of a hash and a text, of either kind.
    struct Less {
        using is_transparent = void;
        template <typename One, typename Other>
        bool operator()(const One& one, const Other& other) const
        {
            return one.first != other.first ? one.first < other.first
                                            : std::string_view(one.second) < std::string_view(other.second);
        }
    };

    std::map<std::pair<std::size_t, std::string>, std::shared_ptr<const Record>, Less> mRecords;
    std::size_t mBytes = 0;
};

} // namespace diagnosis::results_db

#endif
