#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <minizip/zip.h>
#include <sys/stat.h>

#include "diagnosis/archive/zip_reader.h"
#include "diagnosis/archive/zip_writer.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

namespace fs = std::filesystem;

class ZipBundleTest : public testing::Test {
protected:
    // The files of a bundle as entries, with `prefix` before their names.
    ZipEntries HotEntries(const std::string& prefix = "") const
    {
        WriteHotBundle(mDir, "folder");
        ZipEntries entries;
        for (const char* name : {"bundle.json", "temperature", "rules/FaultTrees.xml", "rules/FaultTreeRules.xml"}) {
            entries.emplace_back(prefix + name, mDir.Read(std::string("folder/") + name));
        }
        return entries;
    }

    std::optional<diagnosis::Failure> Unpack(const diagnosis::ZipLimits& limits = {})
    {
        mDir.MakeDir("in/out");
        return diagnosis::UnpackZip("z.zip", "z.zip", mDir.Path("in/out"), mWarnings, limits);
    }

    TempDir mDir;
    std::vector<diagnosis::Warning> mWarnings;
};

TEST_F(ZipBundleTest, IsDiagnosedLikeItsFolderAndStaysAsItIs)
{
    WriteZip("b.zip", HotEntries());
    const auto before = mDir.Read("b.zip");
    const auto result = RunArborist({"detect", "--json", "b.zip"});
    fs::rename("folder", "b");
    auto expected = RunArborist({"detect", "--json", "b"}).out;
    expected.replace(expected.find("\"b\""), 3, "\"b.zip\"");
    EXPECT_EQ(result.out, expected);
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(mDir.Read("b.zip"), before);
}

TEST_F(ZipBundleTest, MayHoldTheBundlesFolderInsteadOfItsFiles)
{
    WriteZip("b.zip", HotEntries("device 7/"));
    EXPECT_THAT(RunArborist({"detect", "b.zip"}).out, HasSubstr("1. HOT"));
}

TEST_F(ZipBundleTest, OfTwoBundlesIsNone)
{
    auto entries = HotEntries("one/");
    const auto others = HotEntries("two/");
    entries.insert(entries.end(), others.begin(), others.end());
    WriteZip("b.zip", entries);
    const auto result = RunArborist({"detect", "b.zip"});
    EXPECT_EQ(result.err, "arborist: b.zip: holds 2 bundles; unpack it and name one [no_bundle_json]\n");
    EXPECT_EQ(result.status, 4);
}

TEST_F(ZipBundleTest, WithoutABundleFileIsNamed)
{
    WriteZip("b.zip", {{"a", "x"}});
    const auto result = RunArborist({"detect", "b.zip"});
    EXPECT_THAT(result.err, HasSubstr("b.zip/bundle.json: no such file"));
    EXPECT_EQ(result.status, 4);
}

TEST_F(ZipBundleTest, TakesNoRepairRecord)
{
    WriteZip("b.zip", HotEntries());
    const auto result = RunArborist({"repair", "record", "b.zip", "R1"});
    EXPECT_EQ(result.err, "arborist: b.zip: nothing can be recorded in a zip; unpack it first [bundle_is_zip]\n");
    EXPECT_EQ(result.status, 4);
}

TEST_F(ZipBundleTest, ThatIsDamagedIsNamed)
{
    WriteZip("b.zip", HotEntries());
    auto bytes = mDir.Read("b.zip");
    mDir.Write("b.zip", bytes.substr(0, bytes.size() / 2));
    EXPECT_THAT(RunArborist({"detect", "b.zip"}).err, HasSubstr("b.zip: is no zip that can be read [bad_zip]"));
    bytes[60] = static_cast<char>(bytes[60] ^ 0x55); // in the content of the first entry
    mDir.Write("b.zip", bytes);
    EXPECT_THAT(RunArborist({"detect", "b.zip"}).err, HasSubstr("\"bundle.json\" is damaged [bad_zip]"));
}

struct NameCase { const char* name; std::string entry; };
void PrintTo(const NameCase& nameCase, std::ostream* out) { *out << nameCase.name; }
class BadEntryName : public ZipBundleTest, public testing::WithParamInterface<NameCase> {};

TEST_P(BadEntryName, IsRefused)
{
    WriteZip("z.zip", {{GetParam().entry, "x"}});
    const auto failure = Unpack();
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->code, "bad_zip");
    EXPECT_TRUE(fs::is_empty("in/out"));
    EXPECT_FALSE(mDir.Has("evil"));
    EXPECT_FALSE(mDir.Has("in/evil"));
}

std::string Deep()
{
    std::string name;
    for (int i = 0; i < 70; ++i) {
        name += "d/";
    }
    return name + "file";
}

INSTANTIATE_TEST_SUITE_P(Table, BadEntryName, testing::Values(
    NameCase{"Above", "../evil"},
    NameCase{"AboveInTheMiddle", "a/../../evil"},
    NameCase{"OtherSeparator", "..\\evil"},
    NameCase{"Absolute", "/tmp/arborist-evil"},
    NameCase{"OtherAbsolute", "\\evil"},
    NameCase{"Empty", ""},
    NameCase{"AboveAtTheEnd", "a/.."},
    NameCase{"TooDeep", Deep()}),
    CaseName());

TEST_F(ZipBundleTest, ANameThatStandsTwiceIsRefused)
{
    WriteZip("z.zip", {{"a", "1"}, {"a", "2"}});
    EXPECT_THAT(Unpack()->message, HasSubstr("\"a\" can't be made"));
    EXPECT_EQ(mDir.Read("in/out/a"), "1");
}

TEST_F(ZipBundleTest, MoreBytesOrEntriesThanTheLimitsAreRefused)
{
    WriteZip("z.zip", {{"a", std::string(100000, 'x')}, {"b", std::string(100000, 'x')}});
    EXPECT_EQ(Unpack({.bytes = 150000})->message, "z.zip: more than 150000 bytes when unpacked");
    fs::remove_all("in");
    EXPECT_EQ(Unpack({.entries = 1})->code, "too_large");
    fs::remove_all("in");
    EXPECT_FALSE(Unpack({.entries = 2, .bytes = 200000}).has_value());
}

TEST_F(ZipBundleTest, SymbolicLinksAreNotMade)
{
    const zipFile archive = zipOpen("z.zip", APPEND_STATUS_CREATE);
    zip_fileinfo info{};
    info.external_fa = static_cast<unsigned long>(S_IFLNK | 0777) << 16U;
    zipOpenNewFileInZip(archive, "link", &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED, 6);
    zipWriteInFileInZip(archive, "/etc", 4);
    zipCloseFileInZip(archive);
    zipClose(archive, nullptr);
    EXPECT_FALSE(Unpack().has_value());
    EXPECT_FALSE(fs::is_symlink("in/out/link") || mDir.Has("in/out/link"));
    ASSERT_EQ(mWarnings.size(), 1U);
    EXPECT_EQ(mWarnings[0].code, "zip_link");
}

TEST_F(ZipBundleTest, WritingAndReadingGiveTheSameFilesAndTheSameBytes)
{
    mDir.Write("f/b/deep/file", "content");
    mDir.Write("f/a", std::string(200000, 'y'));
    mDir.MakeDir("f/empty");
    EXPECT_FALSE(diagnosis::PackZip("f", "z.zip", "z.zip").has_value());
    EXPECT_FALSE(diagnosis::PackZip("f", "again.zip", "again.zip").has_value());
    EXPECT_EQ(mDir.Read("z.zip"), mDir.Read("again.zip"));
    EXPECT_FALSE(Unpack().has_value());
    EXPECT_EQ(mDir.Read("in/out/b/deep/file"), "content");
    EXPECT_EQ(mDir.Read("in/out/a"), std::string(200000, 'y'));
    EXPECT_TRUE(fs::is_directory("in/out/empty"));
    EXPECT_THAT(ReadZip("z.zip"), testing::SizeIs(5));
}

} // namespace
