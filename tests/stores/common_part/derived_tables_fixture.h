#ifndef ARBORIST_TESTS_STORES_COMMON_PART_DERIVED_TABLES_FIXTURE_H
#define ARBORIST_TESTS_STORES_COMMON_PART_DERIVED_TABLES_FIXTURE_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "arborist/frame/settings.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "tests/stores/common_part/helper_line.h"
#include "tests/support/common_part_builder.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

inline constexpr std::int64_t NOW = 1700000000;

/// Builds derived tables from an event log of its own.
class DerivedTablesTest : public testing::Test {
protected:
    DerivedTablesTest()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("root"));
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        CommonPartDbHelper::GetInstance().Init();
        mLog.Clear();
    }

    bool Build(const CommonPart::CombineCommonPart::ThresholdLumbraList& beans)
    {
        return CommonPartDbHelper::GetInstance().IsSuccessCreateJankDb(mLogPath, PartOf(beans));
    }

    // One event of id 7 a second ago for each extra.
    void LogExtras(const std::vector<std::string>& extras)
    {
        EventLogBuilder log;
        for (const std::string& extra : extras) {
            log.Row({NOW - 1, 7, "v1", extra});
        }
        log.WriteTo(mLogPath);
    }

    // The table T of the extras' events, with these columns.
    bool BuildFromExtras(
        const std::vector<std::string>& extras, const std::vector<std::shared_ptr<Param>>& params)
    {
        LogExtras(extras);
        return Build({BeanOf("T", {EventsOf("7", "7", params)})});
    }

    std::vector<std::string> Rows(const std::string& sql) const { return DatabaseRows(mDerivedPath, sql); }

    std::vector<std::string> Schema(const std::string& table) const
    {
        return Rows("select sql from sqlite_master where name = '" + table + "'");
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::string mLogPath = mDir.Path("log.db");
    std::string mDerivedPath = mDir.Path("root/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db");
};

#endif
