#include "arborist/utilities/zip_util.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/frame/stopping.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

class ZipUtilTest : public testing::Test {
protected:
    // Unpacks an archive of these entries into the folder "above/target".
    bool UnZip(const ZipEntries& entries) { return UnZipFile(WriteZip(mDir.Path("a.zip"), entries)); }

    bool UnZipBytes(const std::string& bytes)
    {
        fs::remove("a.zip"); // some file systems flush an overwritten file to the disk
        std::ofstream("a.zip", std::ios::binary) << bytes;
        return UnZipFile("a.zip");
    }

    bool UnZipFile(const std::string& archive)
    {
        mDir.MakeDir("above/target");
        return ZipUtil::UnZipFile(archive, "above/target/");
    }

    TempDir mDir;
    LogCapture mLog;
};

TEST_F(ZipUtilTest, ExtractsEveryEntry)
{
    const std::string large = std::string(300000, 'x') + "end";
    EXPECT_TRUE(UnZip({{"a", "1"}, {"folder/", ""}, {"folder/deep/", ""}, {"folder/deep/b", large}, {"empty", ""}}));
    EXPECT_EQ(mDir.Read("above/target/a"), "1");
    EXPECT_EQ(mDir.Read("above/target/folder/deep/b"), large);
    EXPECT_EQ(mDir.Read("above/target/empty"), "");
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ZipUtilTest, ReplacesWhatIsThere)
{
    mDir.Write("above/target/a", "former and longer");
    EXPECT_TRUE(UnZip({{"a", "new"}}));
    EXPECT_EQ(mDir.Read("above/target/a"), "new");
}

TEST_F(ZipUtilTest, EmptyArchiveIsTrueAndExtractsNothing)
{
    EXPECT_TRUE(UnZip({}));
    EXPECT_EQ(fs::file_size("a.zip"), 22U);
    EXPECT_TRUE(fs::is_empty("above/target"));
}

TEST_F(ZipUtilTest, EmptyArchiveMayHaveAComment)
{
    const std::string endRecord = std::string("PK\5\6", 4) + std::string(16, '\0');
    EXPECT_TRUE(UnZipBytes(endRecord + std::string("\5\0", 2) + "words"));
    EXPECT_FALSE(UnZipBytes(endRecord + std::string("\5\0", 2) + "word"));
    EXPECT_TRUE(UnZipBytes(endRecord + std::string("\0\1", 2) + std::string(256, 'w')));
    EXPECT_TRUE(fs::is_empty("above/target"));
}

TEST_F(ZipUtilTest, EndRecordThatTellsOfEntriesIsNoEmptyArchive)
{
    std::string endRecord = std::string("PK\5\6", 4) + std::string(18, '\0');
    EXPECT_TRUE(UnZipBytes(endRecord));
    EXPECT_FALSE(UnZipBytes(endRecord.substr(0, 21)));
    EXPECT_FALSE(UnZipBytes(endRecord + "x"));
    endRecord[10] = 1;
    EXPECT_FALSE(UnZipBytes(endRecord));
}

TEST_F(ZipUtilTest, WhatIsNoArchiveIsFalse)
{
    EXPECT_FALSE(UnZipFile("missing.zip"));
    EXPECT_FALSE(UnZipFile(""));
    EXPECT_FALSE(UnZipFile("."));
    EXPECT_FALSE(UnZipBytes(""));
    EXPECT_FALSE(UnZipBytes("no archive at all, but longer than an end record"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ZipUtilTest, PipeIsFalseAtOnce)
{
    ASSERT_EQ(mkfifo("pipe.zip", 0600), 0);
    EXPECT_FALSE(UnZipFile("pipe.zip"));
}

TEST_F(ZipUtilTest, TargetWithoutSeparatorBeginsTheNames)
{
    WriteZip("a.zip", {{"file", "1"}});
    mDir.MakeDir("target");
    EXPECT_TRUE(ZipUtil::UnZipFile("a.zip", mDir.Path("target")));
    EXPECT_EQ(mDir.Read("targetfile"), "1");
    EXPECT_TRUE(fs::is_empty("target"));
}

TEST_F(ZipUtilTest, FileWithoutItsFolderFailsAndEndsTheExtraction)
{
    EXPECT_FALSE(UnZip({{"before", "1"}, {"folder/file", "2"}, {"behind", "3"}}));
    EXPECT_TRUE(mDir.Has("above/target/before"));
    EXPECT_FALSE(mDir.Has("above/target/folder"));
    EXPECT_FALSE(mDir.Has("above/target/behind"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ZipUtilTest, FolderThatCannotBeMadeIsNotLookedAt)
{
    mDir.Write("above/target/file", "former");
    EXPECT_TRUE(UnZip({{"file/folder/", ""}, {"behind", "1"}}));
    EXPECT_TRUE(mDir.Has("above/target/behind"));
}

TEST_F(ZipUtilTest, NameOf127CharactersIsTheLongest)
{
    const std::string longest(127, 'n');
    EXPECT_TRUE(UnZip({{longest, "1"}}));
    EXPECT_EQ(mDir.Read("above/target/" + longest), "1");
    EXPECT_FALSE(UnZip({{longest + "n", "1"}}));
    EXPECT_FALSE(UnZip({{std::string(300, 'n'), "1"}}));
    EXPECT_FALSE(mDir.Has("above/target/" + longest + "n"));
}

struct NameCase { const char* name; const char* entry; };
void PrintTo(const NameCase& nameCase, std::ostream* out) { *out << nameCase.name; }
class NameThatLeadsOut : public ZipUtilTest, public testing::WithParamInterface<NameCase> {};

TEST_P(NameThatLeadsOut, IsNotExtracted)
{
    EXPECT_FALSE(UnZip({{GetParam().entry, "1"}, {"behind", "2"}}));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre(std::string("FUNc:ZipUtil::UnZipFile: entry ") + GetParam().entry + " leads out of the target."));
    EXPECT_TRUE(fs::is_empty("above/target"));
    fs::remove("above/target");
    EXPECT_TRUE(fs::is_empty("above"));
}

INSTANTIATE_TEST_SUITE_P(Table, NameThatLeadsOut, testing::Values(
    NameCase{"Front", "../out"},
    NameCase{"Middle", "a/../../out"},
    NameCase{"MiddleThatStaysInside", "a/../b"},
    NameCase{"End", "a/.."},
    NameCase{"Alone", ".."},
    NameCase{"Folder", "../folder/"},
    NameCase{"Backslashes", "a\\..\\..\\out"},
    NameCase{"MixedSeparators", "a\\../out"},
    NameCase{"BehindASeparator", "/../out"}),
    CaseName());

TEST_F(ZipUtilTest, DotsWithinANameDoNotLeadOut)
{
    EXPECT_TRUE(UnZip({{"..a", "1"}, {"b..", "2"}, {"c..d", "3"}, {"...", "4"}, {"./e", "5"}}));
    EXPECT_EQ(mDir.Read("above/target/..."), "4");
    EXPECT_EQ(mDir.Read("above/target/e"), "5");
}

TEST_F(ZipUtilTest, AbsoluteNameStaysBelowTheTarget)
{
    EXPECT_TRUE(UnZip({{"/absolute", "1"}}));
    EXPECT_EQ(mDir.Read("above/target/absolute"), "1");
}

TEST_F(ZipUtilTest, TargetAndNameDoNotLeadOutTogether)
{
    WriteZip("absolute.zip", {{mDir.Path("out"), "1"}});
    EXPECT_FALSE(ZipUtil::UnZipFile("absolute.zip", ""));
    mDir.MakeDir("target");
    WriteZip("dot.zip", {{"./out", "1"}});
    EXPECT_FALSE(ZipUtil::UnZipFile("dot.zip", "target/."));
    EXPECT_FALSE(mDir.Has("out"));
    EXPECT_TRUE(ZipUtil::UnZipFile("dot.zip", "target/"));
    EXPECT_EQ(mDir.Read("target/out"), "1");
    WriteZip("plain.zip", {{"plain", "2"}});
    EXPECT_TRUE(ZipUtil::UnZipFile("plain.zip", ""));
    EXPECT_EQ(mDir.Read("plain"), "2");
    EXPECT_TRUE(ZipUtil::UnZipFile("plain.zip", "target/."));
    EXPECT_EQ(mDir.Read("target/.plain"), "2");
}

// Writes the number twice at `position`, as two little-endian bytes each.
void WriteTwice(std::string& bytes, std::size_t position, std::uint16_t number)
{
    for (const std::size_t byte : {position, position + 2}) {
        bytes[byte] = static_cast<char>(number & 0xFF);
        bytes[byte + 1] = static_cast<char>(number >> 8);
    }
}

// An archive whose directory lists its only entry `count` times.
std::string WithEntryRepeated(std::string bytes, std::uint16_t count)
{
    const std::size_t entry = bytes.find("PK\1\2");
    const std::size_t end = bytes.find("PK\5\6");
    const std::string listed = bytes.substr(entry, end - entry);
    std::string list;
    for (std::uint16_t number = 0; number < count; ++number) {
        list += listed;
    }
    std::string tail = bytes.substr(end);
    WriteTwice(tail, 8, count);
    for (std::size_t byte = 0; byte < 4; ++byte) {
        tail[12 + byte] = static_cast<char>(list.size() >> (8 * byte));
    }
    return bytes.substr(0, entry) + list + tail;
}

TEST_F(ZipUtilTest, EntriesThatShareTheirBytesFail)
{
    WriteZip("a.zip", {{"a", std::string(1000000, 'x')}});
    const std::string archive = mDir.Read("a.zip");
    EXPECT_TRUE(UnZipBytes(WithEntryRepeated(archive, 1)));
    EXPECT_EQ(mDir.Read("above/target/a").size(), 1000000U);
    EXPECT_FALSE(UnZipBytes(WithEntryRepeated(archive, 1000)));
}

TEST_F(ZipUtilTest, MemberThatUnpacksToAThousandTimesTheArchiveFails)
{
    ZipEntries entries{{"a", ""}};
    entries[0].second.assign(300 << 20, 'x');
    WriteZip("a.zip", entries);
    EXPECT_FALSE(UnZipBytes(mDir.Read("a.zip")));
    EXPECT_FALSE(mDir.Has("above/target/a"));
}

TEST_F(ZipUtilTest, BrokenContentFails)
{
    const std::string archive = WriteZip("a.zip", {{"f", std::string(2000, 'x')}});
    std::string bytes = mDir.Read("a.zip");
    bytes[31] = '\xFF'; // the first byte of the compressed data, behind the name
    EXPECT_FALSE(UnZipBytes(bytes));
}

// For any damaged archive the call returns, and nothing is written outside the target.
TEST_F(ZipUtilTest, DamagedArchiveIsAnswered)
{
    WriteZip("whole.zip", {{"folder/", ""}, {"folder/file", "text text text"}, {"n", "1"}});
    const std::string whole = mDir.Read("whole.zip");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(UnZipBytes(whole.substr(0, length))) << length;
    }
    for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
        std::string damaged = whole;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        UnZipBytes(damaged);
        fs::remove_all("above/target");
        ASSERT_TRUE(fs::is_empty("above")) << bit;
    }
}

struct AddedCase { const char* name; const char* source; int mode; const char* entryName; const char* expected; };
void PrintTo(const AddedCase& addedCase, std::ostream* out) { *out << addedCase.name; }
class AddedName : public ZipUtilTest, public testing::WithParamInterface<AddedCase> {};

TEST_P(AddedName, ComesFromSourceModeAndEntryName)
{
    mDir.Write("a/b/c", "content");
    mDir.Write("c", "content");
    mDir.Write("back\\slash", "content");
    const ZipUtil::Handle archive = ZipUtil::CreateZipFile("a.zip");
    ASSERT_NE(archive, nullptr);
    EXPECT_TRUE(ZipUtil::AddFileInZip(archive, GetParam().source, GetParam().mode, GetParam().entryName));
    ZipUtil::CloseZipFile(archive);
    EXPECT_THAT(ReadZip("a.zip"), ElementsAre(Pair(GetParam().expected, "content")));
}

INSTANTIATE_TEST_SUITE_P(Table, AddedName, testing::Values(
    AddedCase{"WithParent", "a/b/c", 1, "", "b/c"},
    AddedCase{"WithoutParent", "a/b/c", 0, "", "c"},
    AddedCase{"OtherModeIsWithoutParent", "a/b/c", 2, "", "c"},
    AddedCase{"EntryNameWithParent", "a/b/c", 1, "x", "b/x"},
    AddedCase{"EntryNameWithoutParent", "a/b/c", 0, "x", "x"},
    AddedCase{"BareNameWithParent", "c", 1, "", "/c"},
    AddedCase{"BareNameWithoutParent", "c", 0, "", "c"},
    AddedCase{"CurrentFolderIsAParent", "./c", 1, "", "./c"},
    AddedCase{"BackslashSeparatesInTheName", "back\\slash", 1, "", "back/slash"}),
    CaseName());

std::FILE* OpenContent(const std::string&)
{
    return std::fopen("content", "rb");
}

TEST_F(ZipUtilTest, SourceThatEndsInASeparatorIsANameOfItsOwn)
{
    mDir.Write("content", "text");
    const ZipUtil::Handle archive = ZipUtil::CreateZipFile("a.zip");
    EXPECT_TRUE(ZipUtil::AddFileInZip(archive, "a/b/", 0, "", OpenContent));
    EXPECT_TRUE(ZipUtil::AddFileInZip(archive, "a/b/", 1, "c", OpenContent));
    ZipUtil::CloseZipFile(archive);
    EXPECT_THAT(ReadZip("a.zip"), ElementsAre(Pair("a/b/", "text"), Pair("/c", "text")));
}

std::FILE* OpenNothing(const std::string&)
{
    errno = EACCES;
    return nullptr;
}

TEST_F(ZipUtilTest, AddsLargeFilesAndSeveral)
{
    std::string large;
    for (int line = 0; line < 40000; ++line) {
        large += std::to_string(line * 7919) + "\n";
    }
    mDir.Write("large", large);
    mDir.Write("exact", std::string(102400, 'x'));
    mDir.Write("empty", "");
    const ZipUtil::Handle archive = ZipUtil::CreateZipFile("a.zip");
    for (const char* source : {"large", "exact", "empty"}) {
        EXPECT_TRUE(ZipUtil::AddFileInZip(archive, source, 0));
    }
    ZipUtil::CloseZipFile(archive);
    EXPECT_THAT(ReadZip("a.zip"),
        ElementsAre(Pair("large", large), Pair("exact", std::string(102400, 'x')), Pair("empty", "")));
}

TEST_F(ZipUtilTest, SourceThatIsNotOpenedIsLoggedAndFalse)
{
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    const ZipUtil::Handle archive = ZipUtil::CreateZipFile("a.zip");
    EXPECT_FALSE(ZipUtil::AddFileInZip(archive, "missing", 0));
    EXPECT_FALSE(ZipUtil::AddFileInZip(archive, "pipe", 0));
    EXPECT_FALSE(ZipUtil::AddFileInZip(archive, ".", 0));
    EXPECT_FALSE(ZipUtil::AddFileInZip(archive, "given", 0, "", OpenNothing));
    ZipUtil::CloseZipFile(archive);
    constexpr char FRONT[] = "FUNc:ZipUtil::AddFileInZip: get file ";
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre(StartsWith(std::string(FRONT) + "missing handle failed by default, errno is "),
            StartsWith(std::string(FRONT) + "pipe handle failed by default, errno is "),
            StartsWith(std::string(FRONT) + ". handle failed by default, errno is "),
            std::string(FRONT) + "given handle failed by customize, errno is 13."));
}

TEST_F(ZipUtilTest, VendorPartitionIsRefusedByTheDefaultOpenerAlone)
{
    mDir.Write("data/vendor/file", "content");
    const ZipUtil::Handle archive = ZipUtil::CreateZipFile("a.zip");
    EXPECT_FALSE(ZipUtil::AddFileInZip(archive, "data/vendor/file", 0));
    EXPECT_FALSE(ZipUtil::AddFileInZip(archive, "/data/vendor/file", 0));
    EXPECT_TRUE(ZipUtil::AddFileInZip(archive, "data/vendor/file", 0, "",
        [](const std::string& source) { return std::fopen(source.c_str(), "rb"); }));
    ZipUtil::CloseZipFile(archive);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:ZipUtil::AddFileInZip: get file data/vendor/file handle failed by default, errno is 0.",
            "FUNc:ZipUtil::AddFileInZip: get file /data/vendor/file handle failed by default, errno is 0."));
    EXPECT_THAT(ReadZip("a.zip"), ElementsAre(Pair("file", "content")));
}

TEST_F(ZipUtilTest, ErrorInTheArchiveIsNotReported)
{
    mDir.Write("file", "content");
    EXPECT_TRUE(ZipUtil::AddFileInZip(nullptr, "file", 0));
    const ZipUtil::Handle archive = ZipUtil::CreateZipFile("a.zip");
    EXPECT_TRUE(ZipUtil::AddFileInZip(archive, "file", 0, std::string(70000, 'n')));
    EXPECT_TRUE(ZipUtil::AddFileInZip(archive, "file", 0));
    ZipUtil::CloseZipFile(archive);
    EXPECT_THAT(ReadZip("a.zip"), ElementsAre(Pair("file", "content")));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ZipUtilTest, ArchiveThatCannotBeMadeIsNull)
{
    EXPECT_EQ(ZipUtil::CreateZipFile("missing/a.zip"), nullptr);
    ZipUtil::CloseZipFile(nullptr);
}

TEST_F(ZipUtilTest, EndsWithTheDetectionWithinAnEntryAndLeavesNoHalfFile)
{
    StopRequest request;
    const StopScope scope(&request);
    request.Start(std::nullopt);
    request.StopAtQuestion(100);
    EXPECT_THROW(UnZip({{"a", "whole"}, {"b", std::string(300'000, 'x')}}), DetectionStopped);
    EXPECT_EQ(mDir.Read("above/target/a"), "whole");
    EXPECT_EQ(std::distance(fs::directory_iterator("above/target"), fs::directory_iterator()), 1);
}

} // namespace
