#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <tinyxml2.h>

#include "arborist/frame/settings.h"
#include "arborist/loading/xml_file.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_operator.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/file_util.h"
#include "arborist/utilities/platform.h"
#include "arborist/utilities/zip_util.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;

// Letters with one, two, three and four bytes in UTF-8; the last takes two units in UTF-16.
constexpr char FOLDER[] = "Ger\u00e4t-\u6f22\u5b57-\U0001F50B";
constexpr char FILE_NAME[] = "Ger\u00e4t-\u6f22\u5b57-\U0001F50B/\u00fc.txt";

class UnicodePathsTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(FileUtil::ForceCreateDirectory(FOLDER));
        std::FILE* const file = Platform::OpenFile(FILE_NAME, "wb");
        ASSERT_NE(file, nullptr);
        std::fputs("42", file);
        std::fclose(file);
    }

    TempDir mDir;
    LogCapture mLog;
    SettingsGuard mSettings;
};

TEST_F(UnicodePathsTest, FilesAreFoundReadAndWritten)
{
    EXPECT_TRUE(mDir.Has(FILE_NAME)) << "the standard library means the same file";
    EXPECT_TRUE(FileUtil::FileExists(FILE_NAME));
    EXPECT_TRUE(FileUtil::FileExistsA(FILE_NAME));
    EXPECT_EQ(FileUtil::GetFileSize(FILE_NAME), 2U);
    std::string text;
    EXPECT_TRUE(FileUtil::LoadStringFromFile(FILE_NAME, text));
    EXPECT_EQ(text, "42");
    EXPECT_TRUE(FileUtil::SaveStringToFile(FILE_NAME, "+1", false));
    EXPECT_EQ(mDir.Read(FILE_NAME), "42+1");
}

TEST_F(UnicodePathsTest, TextThatIsNoUtf8NamesNoFile)
{
    const std::string path = std::string(FOLDER) + "/\xff\xe6.txt";
    EXPECT_FALSE(FileUtil::FileExists(path));
    EXPECT_FALSE(FileUtil::IsDirectory(path));
    EXPECT_EQ(FileUtil::GetFileSize(path), 0U);
    std::string text;
    EXPECT_FALSE(FileUtil::LoadStringFromFile(path, text));
}

TEST_F(UnicodePathsTest, FilesAreListedCopiedAndRemoved)
{
    std::vector<std::string> files;
    FileUtil::GetDirFiles(FOLDER, files);
    EXPECT_THAT(files, ElementsAre(FILE_NAME));
    const std::string target = std::string(FOLDER) + "/\u6b21";
    ASSERT_TRUE(FileUtil::ForceCreateDirectory(target));
    EXPECT_TRUE(FileUtil::CopyFileToFolder(FILE_NAME, target, std::filesystem::copy_options::overwrite_existing));
    EXPECT_EQ(mDir.Read(target + "/\u00fc.txt"), "42");
    EXPECT_TRUE(FileUtil::ForceRemoveDirectory(FOLDER, true));
    EXPECT_FALSE(mDir.Has(FOLDER));
}

TEST_F(UnicodePathsTest, ChangesOfAFileAreSeen)
{
    const Platform::FileIdentity before(FILE_NAME);
    EXPECT_TRUE(before.IsSet());
    EXPECT_TRUE(before == Platform::FileIdentity(FILE_NAME));
    mDir.Write(FILE_NAME, "another");
    EXPECT_FALSE(before == Platform::FileIdentity(FILE_NAME));
}

TEST_F(UnicodePathsTest, DatabasesRuleFilesAndArchivesAreOpened)
{
    FT::sql::SqlDatabase database;
    EXPECT_TRUE(database.Open(std::string(FOLDER) + "/\u65e5.db"));
    EXPECT_TRUE(FT::sql::SqlOperator(database.GetHandle()).Execute("CREATE TABLE t (a)"));
    database.Close();
    EXPECT_TRUE(mDir.Has(std::string(FOLDER) + "/\u65e5.db"));

    const std::string rules = std::string(FOLDER) + "/\u6728.xml";
    mDir.Write(rules, "<a/>");
    tinyxml2::XMLDocument document;
    EXPECT_EQ(XmlFile::Load(document, rules).error, tinyxml2::XML_SUCCESS);

    const std::string archive = std::string(FOLDER) + "/\u7bb1.zip";
    const ZipUtil::Handle handle = ZipUtil::CreateZipFile(archive);
    ASSERT_NE(handle, nullptr);
    EXPECT_TRUE(ZipUtil::AddFileInZip(handle, FILE_NAME, 0, "\u00fc"));
    ZipUtil::CloseZipFile(handle);
    EXPECT_TRUE(ZipUtil::UnZipFile(archive, std::string(FOLDER) + "/out-"));
    EXPECT_EQ(mDir.Read(std::string(FOLDER) + "/out-\u00fc"), "42");
}

TEST_F(UnicodePathsTest, RootOfTheDeviceMayHaveOne)
{
    mSettings.Set(Settings::DEVICE_ROOT_DIR, FOLDER);
    std::string text;
    EXPECT_TRUE(FileUtil::LoadStringFromFile(DevicePaths::Find("/\u00fc.txt").Path(), text));
    EXPECT_EQ(text, "42");
}

} // namespace
