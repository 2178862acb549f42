#ifndef ARBORIST_STORES_EVENT_LOG_KEY_SETS_H
#define ARBORIST_STORES_EVENT_LOG_KEY_SETS_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// Numbers sets of member names, so that each event id can have its own at the cost of a number. 0 is the empty set.
class KeySets {
public:
    using Keys = std::vector<std::string>;

    /// More names than this don't make a set: they take turns instead.
    static constexpr std::size_t MOST_KEYS = 32;

    KeySets();

    /// The reference lives as long as the object.
    const Keys& Get(std::uint32_t number) const { return mSets[number]; }
    std::uint32_t NumberOf(const Keys& keys);
    /// The set that has the names of the first, in their order, and then those of the second that are not among them;
    /// the second alone when that would be more than MOST_KEYS.
    std::uint32_t Union(std::uint32_t first, std::uint32_t second);

private:
    std::deque<Keys> mSets;
    std::map<Keys, std::uint32_t> mNumbers;
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> mUnions;
};

#endif
