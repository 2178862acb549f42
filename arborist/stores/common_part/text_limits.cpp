#include "arborist/stores/common_part/text_limits.h"

const FT::sql::SqlLimits& TextLimits::Of(const std::string& text) const
{
    const auto lowered = mLowered.find(text);
    return lowered == mLowered.end() ? mUsual : lowered->second;
}

void TextLimits::LowerAfter(const std::string& text, const FT::sql::SqlBudget& budget)
{
    if (budget.HasTakenAllSteps()) {
        mLowered.try_emplace(text, mUsual).first->second.steps /= 2;
    }
}
