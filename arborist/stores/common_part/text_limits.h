#ifndef ARBORIST_STORES_COMMON_PART_TEXT_LIMITS_H
#define ARBORIST_STORES_COMMON_PART_TEXT_LIMITS_H

#include <string>
#include <unordered_map>

#include "arborist/stores/sql/sql_database.h"

/// The limits of the SQL texts of a rule set, each by itself: a text that never ends takes nothing from any other, and
/// costs no more on a thousand files than on two.
class TextLimits {
public:
    explicit TextLimits(const FT::sql::SqlLimits& usual = {}) : mUsual(usual) {}

    /// Valid until the next LowerAfter.
    const FT::sql::SqlLimits& Of(const std::string& text) const;
    /// Halves the steps of this text if it was interrupted on `database`, where it was the last, for taking too many.
    void LowerAfter(const std::string& text, const FT::sql::Sqlite3Db& database);

private:
    FT::sql::SqlLimits mUsual;
    std::unordered_map<std::string, FT::sql::SqlLimits> mLowered;
};

#endif
