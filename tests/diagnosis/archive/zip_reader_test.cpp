#include "diagnosis/archive/zip_reader.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <minizip/zip.h>
#include <sys/stat.h>
#include <zlib.h>

#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"

namespace {

using testing::HasSubstr;

namespace fs = std::filesystem;

class ZipReaderTest : public testing::Test {
protected:
    std::optional<diagnosis::Failure> Unpack(
        const diagnosis::ZipLimits& limits = {}, const std::function<bool()>& isToEnd = nullptr)
    {
        mDir.MakeDir("in/out");
        return diagnosis::UnpackZip("z.zip", "z.zip", mDir.Path("in/out"), mWarnings, limits, isToEnd);
    }

    TempDir mDir;
    std::vector<diagnosis::Warning> mWarnings;
};

std::string LittleEndian(std::uint64_t number, std::size_t bytes)
{
    std::string text;
    for (; bytes > 0; --bytes, number >>= 8) {
        text += static_cast<char>(number & 0xFF);
    }
    return text;
}

// The extra field with these lengths: the real one, then the packed one.
std::string Zip64Field(const std::vector<std::uint64_t>& lengths)
{
    std::string field = LittleEndian(1, 2) + LittleEndian(lengths.size() * 8, 2);
    for (const std::uint64_t length : lengths) {
        field += LittleEndian(length, 8);
    }
    return field;
}

TEST_F(ZipReaderTest, EndsWhenItIsToEnd)
{
    WriteZip(mDir.Path("z.zip"), {{"name", "content"}});
    EXPECT_FALSE(Unpack({}, [] { return false; }));
    fs::remove(mDir.Path("in/out/name"));
    const auto failure = Unpack({}, [] { return true; });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, diagnosis::FailureCode::TIMEOUT);
    EXPECT_EQ(failure->message, "z.zip: stopped before it was unpacked");
}

// An archive of one entry of "content", packed by the method as `content`, whose lengths are in `extra` alone.
void WriteZip64(const std::string& path, std::uint64_t method, const std::string& content, const std::string& extra)
{
    const std::string name = "name";
    const auto checksum = crc32(0, reinterpret_cast<const Bytef*>("content"), 7);
    const std::string head = LittleEndian(45, 2) + LittleEndian(0, 2) + LittleEndian(method, 2) + LittleEndian(0, 4)
        + LittleEndian(checksum, 4)
        + LittleEndian(0xFFFFFFFF, 4) + LittleEndian(0xFFFFFFFF, 4) + LittleEndian(name.size(), 2)
        + LittleEndian(extra.size(), 2);
    const std::string entry = "PK\3\4" + head + name + extra + content;
    const std::string list = "PK\1\2" + LittleEndian(45, 2) + head + LittleEndian(0, 14) + name + extra;
    std::ofstream(path, std::ios::binary) << entry << list << "PK\5\6" << LittleEndian(0, 4) << LittleEndian(1, 2)
        << LittleEndian(1, 2) << LittleEndian(list.size(), 4) << LittleEndian(entry.size(), 4) << LittleEndian(0, 2);
}

struct NameCase { const char* name; std::string entry; };
void PrintTo(const NameCase& nameCase, std::ostream* out) { *out << nameCase.name; }
class BadEntryName : public ZipReaderTest, public testing::WithParamInterface<NameCase> {};

TEST_P(BadEntryName, IsRefused)
{
    WriteZip("z.zip", {{GetParam().entry, "x"}});
    const auto failure = Unpack();
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_ZIP);
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

// A field of an entry to change, at its places in the two headers, and its new bytes.
struct Lie { std::size_t inEntry; std::size_t inDirectory; std::string bytes; };
const Lie METHOD{8, 10, std::string("\x0C\0", 2)}; // bzip2
const Lie CHECKSUM{14, 16, "abcd"};
const Lie LENGTH{22, 24, "\xFF\xFF\xFF\xFF"}; // refers to a zip64 field, which is not there
const Lie FLAGS{6, 8, std::string("\1\0", 2)}; // encrypted

struct LieCase { const char* name; std::vector<Lie> lies; };
void PrintTo(const LieCase& lieCase, std::ostream* out) { *out << lieCase.name; }
class LyingEntry : public ZipReaderTest, public testing::WithParamInterface<LieCase> {};

TEST_P(LyingEntry, MakesTheArchiveUnusable)
{
    WriteZip("z.zip", {{"name", std::string(1000, 'x')}});
    std::string file = mDir.Read("z.zip");
    for (const Lie& lie : GetParam().lies) {
        file.replace(file.find("PK\3\4") + lie.inEntry, lie.bytes.size(), lie.bytes);
        file.replace(file.find("PK\1\2") + lie.inDirectory, lie.bytes.size(), lie.bytes);
    }
    mDir.Write("z.zip", file);
    const auto failure = Unpack();
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_ZIP);
}

INSTANTIATE_TEST_SUITE_P(Table, LyingEntry, testing::Values(LieCase{"AnotherPacking", {METHOD}},
    LieCase{"AWrongChecksum", {CHECKSUM}}, LieCase{"AWrongChecksumAndNoLength", {CHECKSUM, LENGTH}},
    LieCase{"Encrypted", {FLAGS}}), CaseName());

TEST_F(ZipReaderTest, StoredEntryWithItsLengthsInTheZip64FieldIsUnpacked)
{
    WriteZip64("z.zip", 0, "content", Zip64Field({7, 7}));
    const auto failure = Unpack();
    EXPECT_FALSE(failure.has_value()) << failure->message;
    EXPECT_EQ(mDir.Read("in/out/name"), "content");
}

TEST_F(ZipReaderTest, DeflatedEntryWithItsLengthsInTheZip64FieldIsUnpacked)
{
    const std::string deflated("\x4B\xCE\xCF\x2B\x49\xCD\x2B\x01\x00", 9);
    WriteZip64("z.zip", 8, deflated, Zip64Field({7, 9}));
    const auto failure = Unpack();
    EXPECT_FALSE(failure.has_value()) << failure->message;
    EXPECT_EQ(mDir.Read("in/out/name"), "content");
    fs::remove_all("in");
    WriteZip64("z.zip", 8, deflated.substr(0, 6), Zip64Field({7, 6}));
    EXPECT_TRUE(Unpack().has_value());
}

TEST_F(ZipReaderTest, StoredEntryWhoseZip64FieldLiesIsRefused)
{
    for (const std::string& field : {Zip64Field({6, 6}), Zip64Field({8, 8}), Zip64Field({7}), Zip64Field({}), std::string(),
             Zip64Field({7, 1ULL << 40}), Zip64Field({1ULL << 40, 1ULL << 40})}) {
        WriteZip64("z.zip", 0, "content", field);
        const auto failure = Unpack();
        ASSERT_TRUE(failure.has_value()) << field.size();
        EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_ZIP);
        fs::remove_all("in");
    }
}

TEST_F(ZipReaderTest, ANameThatStandsTwiceIsRefused)
{
    WriteZip("z.zip", {{"a", "1"}, {"a", "2"}});
    EXPECT_THAT(Unpack()->message, HasSubstr("\"a\" can't be made"));
    EXPECT_EQ(mDir.Read("in/out/a"), "1");
}

TEST_F(ZipReaderTest, MoreBytesOrEntriesThanTheLimitsAreRefused)
{
    WriteZip("z.zip", {{"a", std::string(100000, 'x')}, {"b", std::string(100000, 'x')}});
    EXPECT_EQ(Unpack({.bytes = 150000})->message, "z.zip: more than 150000 bytes when unpacked");
    fs::remove_all("in");
    EXPECT_EQ(Unpack({.entries = 1})->code, diagnosis::FailureCode::TOO_LARGE);
    fs::remove_all("in");
    EXPECT_FALSE(Unpack({.entries = 2, .bytes = 200000}).has_value());
}

TEST_F(ZipReaderTest, SymbolicLinksAreNotMade)
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
    EXPECT_EQ(mWarnings[0].code, diagnosis::WarningCode::ZIP_LINK);
}

TEST_F(ZipReaderTest, EntriesInTheWayOfEachOtherAreRefused)
{
    for (const ZipEntries& entries : {ZipEntries{{"a", "1"}, {"a/", ""}}, ZipEntries{{"a", "1"}, {"a/b", "2"}}}) {
        WriteZip("z.zip", entries);
        EXPECT_THAT(Unpack()->message, HasSubstr("\"" + entries[1].first + "\" can't be made: "));
        EXPECT_EQ(mDir.Read("in/out/a"), "1");
        fs::remove_all("in");
    }
}

TEST_F(ZipReaderTest, ANameThatIsTooLongOrHasANulIsRefused)
{
    WriteZip("z.zip", {{std::string(4096, 'x'), "1"}});
    EXPECT_THAT(Unpack()->message, testing::StartsWith("z.zip: the name of an entry can't be used: \"xxx"));
    WriteZip("z.zip", {{"a_b", "1"}});
    std::string file = mDir.Read("z.zip");
    for (const std::size_t name : {file.find("a_b"), file.rfind("a_b")}) {
        file[name + 1] = '\0';
    }
    mDir.Write("z.zip", file);
    EXPECT_THAT(Unpack()->message, HasSubstr("the name of an entry can't be used: "));
}

TEST_F(ZipReaderTest, AnotherFieldBesideThatWithTheLengthsIsPassedOver)
{
    const std::string other = LittleEndian(9, 2) + LittleEndian(3, 2) + "abc";
    WriteZip64("z.zip", 0, "content", other + Zip64Field({7, 7}) + LittleEndian(9, 1));
    const auto failure = Unpack();
    EXPECT_FALSE(failure.has_value()) << failure->message;
    EXPECT_EQ(mDir.Read("in/out/name"), "content");
}

struct DamageCase { const char* name; void (*damage)(std::string& file); const char* message; };
void PrintTo(const DamageCase& damageCase, std::ostream* out) { *out << damageCase.name; }
class DamagedArchive : public ZipReaderTest, public testing::WithParamInterface<DamageCase> {};

TEST_P(DamagedArchive, IsRefused)
{
    WriteZip("z.zip", {{"a", "content of a"}, {"b", "content of b"}});
    std::string file = mDir.Read("z.zip");
    GetParam().damage(file);
    mDir.Write("z.zip", file);
    const auto failure = Unpack();
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_ZIP);
    EXPECT_EQ(failure->message, std::string("z.zip: ") + GetParam().message);
}

constexpr char ENTRY[] = "PK\3\4";
constexpr char LISTED[] = "PK\1\2";
constexpr char END[] = "PK\5\6";

INSTANTIATE_TEST_SUITE_P(Table, DamagedArchive, testing::Values(
    DamageCase{"WithoutItsEnd", [](std::string& file) { file.resize(file.find(END)); }, "is no zip that can be read"},
    DamageCase{"WithMoreEntriesThanItLists", [](std::string& file) { file[file.find(END) + 8] = file[file.find(END) + 10] = 3; }, "is damaged"},
    DamageCase{"WithoutASecondEntryInItsList", [](std::string& file) { file[file.rfind(LISTED) + 2] = 'x'; }, "is damaged"},
    DamageCase{"WithoutAFirstEntryInItsList", [](std::string& file) { file[file.find(LISTED) + 2] = 'x'; }, "is damaged"},
    DamageCase{"WithoutTheHeadOfAnEntry", [](std::string& file) { file[file.find(ENTRY)] = 'x'; },
        "\"a\" is damaged or encrypted"},
    DamageCase{"WithOtherBytesInAnEntry", [](std::string& file) { file[file.find(ENTRY) + 31] = '\xFF'; },
        "\"a\" is damaged"}),
    CaseName());

TEST_F(ZipReaderTest, AnArchiveThatIsNotThereIsNone)
{
    EXPECT_EQ(Unpack()->message, "z.zip: is no zip that can be read");
}

TEST(IsZipTest, AFileIsOneByItsFirstBytes)
{
    const TempDir dir;
    dir.MakeDir("folder");
    EXPECT_FALSE(diagnosis::IsZip("folder"));
    EXPECT_FALSE(diagnosis::IsZip("none"));
    for (const char* start : {"PK\3\4", "PK\5\6 and more"}) {
        dir.Write("file", start);
        EXPECT_TRUE(diagnosis::IsZip("file")) << start;
    }
    for (const char* start : {"", "PK\3", "XK\3\4", "PX\3\4", "PK\7\10"}) {
        dir.Write("file", start);
        EXPECT_FALSE(diagnosis::IsZip("file")) << start;
    }
}

} // namespace
