#include "diagnosis/rule_source/params.h"

#include <algorithm>

namespace diagnosis::rule_source {

void ParamTable::Add(Element params)
{
    for (const Element element : Children(params, "param")) {
        if (element.Has("id") && element.Has("key") && element.Has("type")) {
            mParams.push_back({element, element.Value("id"), element.Value("key"), element.Value("type")});
        } else {
            mIncomplete.push_back(element);
        }
    }
}

void ParamTable::Finish()
{
    std::stable_sort(mParams.begin(), mParams.end(),
        [](const Param& one, const Param& other) { return one.id < other.id; });
    std::vector<Param> kept;
    kept.reserve(mParams.size());
    for (const Param& param : mParams) {
        const bool isRepeated = !kept.empty() && kept.back().id == param.id;
        (isRepeated ? mRepeated : kept).push_back(param);
    }
    mParams = std::move(kept);
}

const Param* ParamTable::Find(std::string_view id) const
{
    const auto place = std::lower_bound(mParams.begin(), mParams.end(), id,
        [](const Param& param, std::string_view wanted) { return param.id < wanted; });
    return place != mParams.end() && place->id == id ? &*place : nullptr;
}

const Param* ParamTable::FindKey(std::string_view key) const
{
    const auto place =
        std::find_if(mParams.begin(), mParams.end(), [key](const Param& param) { return param.key == key; });
    return place == mParams.end() ? nullptr : &*place;
}

} // namespace diagnosis::rule_source
