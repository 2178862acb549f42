#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

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

    TempDir mDir;
};

TEST_F(ZipBundleTest, IsDiagnosedLikeItsFolderAndStaysAsItIs)
{
    WriteZip("b.zip", HotEntries());
    const auto before = mDir.Read("b.zip");
    const auto result = RunArborist({"detect", "--json", "b.zip"});
    fs::rename("folder", "b");
    auto expected = RunArborist({"detect", "--json", "b"}).out;
    expected.replace(expected.find("\"b\""), 3, "\"b.zip\"");
    EXPECT_EQ(WithoutTimes(result.out), WithoutTimes(expected));
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

} // namespace
