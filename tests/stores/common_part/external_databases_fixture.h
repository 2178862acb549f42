#ifndef ARBORIST_TESTS_STORES_COMMON_PART_EXTERNAL_DATABASES_FIXTURE_H
#define ARBORIST_TESTS_STORES_COMMON_PART_EXTERNAL_DATABASES_FIXTURE_H

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "arborist/frame/settings.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "tests/stores/common_part/helper_line.h"
#include "tests/support/common_part_builder.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

/// Copies the databases of a device in a folder of the test, and runs SQL on the copies.
class ExternalDatabasesFixture : public testing::Test {
protected:
    ExternalDatabasesFixture() { mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("copies")); }

    static void Run(const std::shared_ptr<DefDbTableBean>& bean)
    {
        CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(PartOf({}, {nullptr, bean}));
    }

    // Copies the matching files below "device" and returns the paths of the copies below the test's directory.
    std::vector<std::string> Copy(const std::string& dbName, const std::vector<std::string>& sql = {},
        const std::vector<std::string>& directories = {"device"})
    {
        std::vector<std::string> paths;
        for (const std::string& directory : directories) {
            paths.push_back(mDir.Path(directory));
        }
        const auto bean = TableBeanOf("B", paths, dbName, sql);
        Run(bean);
        return Below(bean->GetCopyDbFileList());
    }

    std::vector<std::string> Below(std::vector<std::string> paths) const
    {
        for (std::string& path : paths) {
            path = path.substr(mDir.Path().size() + 1);
        }
        return paths;
    }

    std::string MakeDb(const std::string& name, const std::string& sql = "create table t(a); insert into t values (1)")
    {
        std::filesystem::create_directories(std::filesystem::path(mDir.Path(name)).parent_path());
        EventLogBuilder::Run(mDir.Path(name), sql);
        return mDir.Read(name);
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
};

#endif
