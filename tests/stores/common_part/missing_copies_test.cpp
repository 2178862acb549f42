#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/settings.h"
#include "arborist/model/common_part.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "tests/support/common_part_builder.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"

namespace {

using Evidence::NoCopy;
using testing::IsEmpty;

/// Why a search made no copy.
class MissingCopies : public testing::Test {
protected:
    MissingCopies() { mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("copies")); }

    std::shared_ptr<DefDbTableBean> Search(const std::vector<std::string>& folders, const std::string& dbName = ".*\\.db")
    {
        const auto bean = TableBeanOf("B", folders, dbName);
        CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(PartOf({}, {bean}));
        return bean;
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
};

TEST_F(MissingCopies, AFolderThatIsMissingOrNotNamedIsTold)
{
    EXPECT_EQ(Search({})->GetNoCopy(), NoCopy::FOLDER_MISSING);
    const auto bean = Search({"", mDir.Path("none")});
    EXPECT_EQ(bean->GetNoCopy(), NoCopy::FOLDER_MISSING);
    EXPECT_THAT(bean->GetSearchedFolder(), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(MissingCopies, AFolderWithoutFilesIsTold)
{
    mDir.MakeDir("device/empty/below");
    const auto bean = Search({mDir.Path("none"), mDir.Path("device"), mDir.Path("nowhere")});
    EXPECT_EQ(bean->GetNoCopy(), NoCopy::FOLDER_EMPTY);
    EXPECT_EQ(bean->GetSearchedFolder(), mDir.Path("device"));
}

TEST_F(MissingCopies, APatternThatMatchesNoFileIsTold)
{
    mDir.Write("device/below/app.sqlite", "");
    EXPECT_EQ(Search({mDir.Path("device")})->GetNoCopy(), NoCopy::NO_MATCH);
    EXPECT_EQ(Search({mDir.Path("device")}, "")->GetNoCopy(), NoCopy::NO_MATCH);
}

TEST_F(MissingCopies, TheFolderIsToldAsTheRuleSetNamesIt)
{
    mDir.Write("captured/data/app.sqlite", "");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("captured"));
    EXPECT_EQ(Search({"/data"})->GetSearchedFolder(), "/data");
}

TEST_F(MissingCopies, ASettingWithoutAFolderForCopiesIsTold)
{
    mDir.Write("device/app.db", "");
    mSettings.Set(Settings::APP_DATABASE_DIR, "");
    EXPECT_EQ(Search({mDir.Path("device")})->GetNoCopy(), NoCopy::SETTING_EMPTY);
}

TEST_F(MissingCopies, AnArchiveWithoutAFileThatMatchesIsTold)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"readme.txt", "text"}});
    EXPECT_EQ(Search({mDir.Path("device")}, ".*\\.(db|zip)")->GetNoCopy(), NoCopy::NOT_IN_ARCHIVE);
}

TEST_F(MissingCopies, AnArchiveThatCanNotBeUnpackedIsTold)
{
    mDir.Write("device/a.zip", "PK\x03\x04 and no more");
    EXPECT_EQ(Search({mDir.Path("device")}, ".*\\.(db|zip)")->GetNoCopy(), NoCopy::NOT_COPIED);
}

TEST_F(MissingCopies, ACopyEndsWhatWasToldBefore)
{
    mDir.MakeDir("device");
    const auto bean = Search({mDir.Path("device")});
    EXPECT_EQ(bean->GetNoCopy(), NoCopy::FOLDER_EMPTY);
    EventLogBuilder::Run(mDir.Path("device/app.db"), "create table t(a)");
    CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(PartOf({}, {bean}));
    EXPECT_EQ(bean->GetNoCopy(), NoCopy::NONE);
}

// A sound database beside it must not hide what its rules lack.
TEST_F(MissingCopies, AnArchiveThatCannotBeUnpackedIsToldBesideASoundDatabase)
{
    mDir.MakeDir("device");
    EventLogBuilder::Run(mDir.Path("device/a.db"), "create table t(a)");
    EXPECT_FALSE(Search({mDir.Path("device")}, ".*\\.(db|zip)")->LacksCopies());
    mDir.Write("device/b.zip", "no archive");
    const auto bean = Search({mDir.Path("device")}, ".*\\.(db|zip)");
    EXPECT_EQ(bean->GetNoCopy(), NoCopy::NONE);
    EXPECT_TRUE(bean->LacksCopies());
}

TEST_F(MissingCopies, AStatementOfTheRuleSetThatFailsOnACopyIsTold)
{
    mDir.MakeDir("device");
    EventLogBuilder::Run(mDir.Path("device/a.db"), "create table t(a)");
    const auto search = [this](const std::string& sql) {
        const auto bean = TableBeanOf("B", {mDir.Path("device")}, ".*\\.db");
        const auto create = std::make_shared<DefDbTableBean::CreateTable>();
        create->SetSql(sql);
        bean->SetCreateTableList({create});
        CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(PartOf({}, {bean}));
        return bean->LacksTables();
    };
    EXPECT_FALSE(search("create table u as select a from t"));
    EXPECT_TRUE(search("create table v as select a from missing"));
}

} // namespace
