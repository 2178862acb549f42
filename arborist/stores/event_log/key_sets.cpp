#include "arborist/stores/event_log/key_sets.h"

#include <algorithm>

KeySets::KeySets()
{
    NumberOf({});
}

std::uint32_t KeySets::NumberOf(const Keys& keys)
{
    const auto [found, isNew] = mNumbers.try_emplace(keys, static_cast<std::uint32_t>(mSets.size()));
    if (isNew) {
        mSets.push_back(keys);
    }
    return found->second;
}

std::uint32_t KeySets::Union(std::uint32_t first, std::uint32_t second)
{
    const auto known = mUnions.find({first, second});
    if (known != mUnions.end()) {
        return known->second;
    }
    Keys keys = mSets[first];
    for (const std::string& key : mSets[second]) {
        if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
            keys.push_back(key);
        }
    }
    const std::uint32_t number = keys.size() > MOST_KEYS ? second : NumberOf(keys);
    mUnions.emplace(std::pair(first, second), number);
    return number;
}
