#include "diagnosis/sweep/grounds.h"

namespace diagnosis {

const char* SweptSourceText(SweptSource source)
{
    switch (source) {
    case SweptSource::LOG:
        return "log";
    case SweptSource::TABLES:
        return "tables";
    case SweptSource::CAPTURED:
        break;
    }
    return "captured";
}

Grounds::Grounds(SweptSource source, bool isFloored)
    : mHasLog(source == SweptSource::LOG), mHasTables(source == SweptSource::TABLES),
      mHasCaptured(source == SweptSource::CAPTURED), mHasRepairDate(isFloored)
{
}

void Grounds::Add(const Grounds& other)
{
    mHasLog |= other.mHasLog;
    mHasTables |= other.mHasTables;
    mHasCaptured |= other.mHasCaptured;
    mHasRepairDate |= other.mHasRepairDate;
}

std::vector<std::string> Grounds::Words() const
{
    std::vector<std::string> words;
    const auto add = [&words](bool counts, const char* word) {
        if (counts) {
            words.emplace_back(word);
        }
    };
    add(mHasLog, SweptSourceText(SweptSource::LOG));
    add(mHasTables, SweptSourceText(SweptSource::TABLES));
    add(mHasCaptured, SweptSourceText(SweptSource::CAPTURED));
    add(mHasRepairDate, "repair date");
    return words;
}

std::string Grounds::Text() const
{
    std::string text;
    for (const std::string& word : Words()) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text.empty() ? "-" : text;
}

std::vector<std::string> LegendOf(const Grounds& all)
{
    std::vector<std::string> lines;
    if (all.AreCaptured()) {
        lines.emplace_back("captured: data without a history, taken for all moments as they were captured");
    }
    if (all.HaveRepairDate()) {
        lines.emplace_back("repair date: nothing before a repair counts; of each repair only the latest date is stored, and "
            "before that date it counts as not carried out");
    }
    return lines;
}

} // namespace diagnosis
