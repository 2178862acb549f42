#include "diagnosis/lint/base/near_names.h"

#include "diagnosis/lint/base/report.h"
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

std::string NearNames::Help(std::string_view name)
{
    const std::string near = Find(name);
    return near.empty() ? "" : "did you mean " + Quoted(near) + "?";
}

} // namespace diagnosis::lint
