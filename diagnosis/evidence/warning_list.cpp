#include "diagnosis/evidence/warning_list.h"

#include <algorithm>

namespace diagnosis {

void WarningList::Add(const Warning& warning, std::size_t count)
{
    const auto known = mPlaces.find({warning.code, warning.message});
    if (known != mPlaces.end()) {
        mEntries[known->second].count += count;
        return;
    }
    if (++mNumbers[warning.code] <= LARGEST_NUMBER) {
        mPlaces[{warning.code, warning.message}] = mEntries.size();
        mEntries.push_back({warning, count});
    }
}

void WarningList::Add(const std::vector<Warning>& warnings)
{
    for (const Warning& warning : warnings) {
        Add(warning);
    }
}

void WarningList::AddNumbers(const WarningList& others)
{
    for (const auto& [code, number] : others.mNumbers) {
        mNumbers[code] += number - std::min(number, LARGEST_NUMBER);
    }
}

std::vector<Warning> WarningList::Told() const
{
    return ToldWith(true);
}

std::vector<Warning> WarningList::ToldOnce() const
{
    return ToldWith(false);
}

std::vector<Warning> WarningList::ToldWith(bool hasTimes) const
{
    std::vector<Warning> warnings;
    for (const Entry& entry : mEntries) {
        const std::string times = hasTimes && entry.count > 1 ? " (" + std::to_string(entry.count) + " times)" : "";
        warnings.push_back(entry.warning);
        warnings.back().message += times;
    }
    for (const auto& [code, number] : mNumbers) {
        if (number > LARGEST_NUMBER) {
            warnings.push_back({code, "and " + std::to_string(number - LARGEST_NUMBER) + " more of this kind"});
        }
    }
    return warnings;
}

} // namespace diagnosis
