#ifndef ARBORIST_STORES_COMMON_PART_TEXT_LIMITS_H
#define ARBORIST_STORES_COMMON_PART_TEXT_LIMITS_H

#include <string>
#include <unordered_map>

#include "arborist/stores/sql/sql_budget.h"

/// The limits of the SQL texts of a rule set, each by itself: a text that never ends takes nothing from any other, and
/// costs no more on a thousand files than on two.
class TextLimits {
public:
    explicit TextLimits(const FT::sql::SqlLimits& usual = {}) : mUsual(usual) {}

    /// Valid until the next LowerAfter.
    const FT::sql::SqlLimits& Of(const std::string& text) const;
    /// Halves the steps of this text if it was interrupted for taking too many; `budget` is that of the connection, on
    /// which it was the last.
    void LowerAfter(const std::string& text, const FT::sql::SqlBudget& budget);

private:
    FT::sql::SqlLimits mUsual;
    std::unordered_map<std::string, FT::sql::SqlLimits> mLowered;
};

#endif
