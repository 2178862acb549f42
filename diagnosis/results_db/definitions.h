#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_DEFINITIONS_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_DEFINITIONS_H

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace diagnosis::results_db {

/// The content of a row as one text: rows of other content have other texts.
class RowKey {
public:
    RowKey& Text(std::string_view text)
    {
        Number(static_cast<std::int64_t>(text.size()));
        mKey.append(text);
        return *this;
    }
    RowKey& Number(std::int64_t number)
    {
        mKey.append(reinterpret_cast<const char*>(&number), sizeof number);
        return *this;
    }
    const std::string& Get() const { return mKey; }

private:
    std::string mKey;
};

/// The rows of one table of definitions, each content once, by their number.
///
/// Keys are ordered by their hash first, as comparing numbers is faster than comparing texts. A file that forges equal
/// hashes loses that gain and nothing else.
class Definitions {
public:
    /// Takes a row that the table has already.
    void Know(const RowKey& key, std::int64_t id)
    {
        mIds.emplace(Hashed(key), id);
        mLast = std::max(mLast, id);
    }

    /// The number of the row; a new one is passed to `add` first.
    template <typename Add>
    std::int64_t Find(const RowKey& key, Add add)
    {
        const auto [place, isNew] = mIds.try_emplace(Hashed(key), mLast + 1);
        if (isNew) {
            add(++mLast);
        }
        return place->second;
    }

private:
    using HashedKey = std::pair<std::size_t, std::string>;

    static HashedKey Hashed(const RowKey& key) { return {std::hash<std::string>()(key.Get()), key.Get()}; }

    std::map<HashedKey, std::int64_t> mIds;
    std::int64_t mLast = 0;
};

} // namespace diagnosis::results_db

#endif
