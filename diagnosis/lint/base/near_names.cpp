#include "diagnosis/lint/base/near_names.h"

#include <algorithm>

#include "diagnosis/text/near_match.h"

namespace diagnosis::lint {

void NearNames::Add(std::string_view name)
{
    mNames.emplace_back(name);
    mLetters += name.size();
}

std::string NearNames::Find(std::string_view name)
{
    if (mFill) {
        std::exchange(mFill, nullptr)(*this);
    }
    mLettersLooked += mLetters * name.size();
    return mLettersLooked > MOST_LETTERS ? "" : NearMatch(std::string(name), mNames);
}

std::string NearIdIn(const rule_source::ParamTable& table, std::string_view id)
{
    static constexpr std::size_t MOST_IDS = 100;
    NearNames near;
    for (std::size_t place = 0; place < std::min(MOST_IDS, table.Params().size()); ++place) {
        near.Add(table.Params()[place].id);
    }
    return near.Find(id);
}

} // namespace diagnosis::lint
