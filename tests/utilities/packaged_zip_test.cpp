// Archives written by an installed program, and archives with false descriptions of their content.

#include "arborist/utilities/zip_util.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <csignal>
#include <sys/resource.h>

#include <gmock/gmock.h>

#include <zlib.h>

#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string LittleEndian(std::uint64_t number, std::size_t bytes)
{
    std::string text;
    for (; bytes > 0; --bytes, number >>= 8) {
        text += static_cast<char>(number & 0xFF);
    }
    return text;
}

std::uint32_t ChecksumOf(const std::string& text)
{
    const auto* bytes = reinterpret_cast<const Bytef*>(text.data());
    return static_cast<std::uint32_t>(crc32(0, bytes, static_cast<uInt>(text.size())));
}

constexpr std::uint32_t IN_THE_FIELD = 0xFFFFFFFF; // marks a length that is in the zip64 field

// One stored entry "f", and the false values in its description.
struct Told {
    std::string content = "text";
    std::uint32_t length = 4;
    std::uint32_t packedLength = 4;
    std::uint32_t checksum = ChecksumOf("text");
    std::string extra = {};
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
};

// "text", deflated.
const std::string DEFLATED = std::string("\1\4\0\xFB\xFF", 5) + "text";

// The header of the entry, as in front of the content and in the directory.
std::string HeadOf(const Told& told)
{
    return LittleEndian(45, 2) + LittleEndian(told.flags, 2) + LittleEndian(told.method, 2) + LittleEndian(0, 4) +
        LittleEndian(told.checksum, 4) + LittleEndian(told.packedLength, 4) + LittleEndian(told.length, 4) +
        LittleEndian(1, 2) + LittleEndian(told.extra.size(), 2);
}

std::string ListOf(const Told& told)
{
    return "PK\1\2" + LittleEndian(45, 2) + HeadOf(told) + LittleEndian(0, 14) + "f" + told.extra;
}

std::string EndOf(const Told& told, std::uint64_t listBegin)
{
    return "PK\5\6" + LittleEndian(0, 4) + LittleEndian(1, 2) + LittleEndian(1, 2) +
        LittleEndian(ListOf(told).size(), 4) + LittleEndian(listBegin, 4) + LittleEndian(0, 2);
}

std::string ArchiveOf(const Told& told)
{
    const std::string local = "PK\3\4" + HeadOf(told) + "f" + told.extra + told.content;
    return local + ListOf(told) + EndOf(told, local.size());
}

// The extra field with these lengths.
std::string Zip64Field(const std::vector<std::uint64_t>& lengths)
{
    std::string field = LittleEndian(1, 2) + LittleEndian(lengths.size() * 8, 2);
    for (const std::uint64_t length : lengths) {
        field += LittleEndian(length, 8);
    }
    return field;
}

// Limits the size of files as long as the object exists; writing more fails.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        mSignal = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &mBefore);
        const rlimit limit{bytes, mBefore.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &mBefore);
        std::signal(SIGXFSZ, mSignal);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*mSignal)(int) = nullptr;
    rlimit mBefore{};
};

class PackagedZipTest : public testing::Test {
protected:
    PackagedZipTest() { mDir.MakeDir("target"); }

    // Runs the program `zip` with `input` as its standard input and returns its standard output.
    static std::string Zip(std::vector<std::string> arguments, const std::string& input = "")
    {
        arguments.insert(arguments.begin(), "zip");
        const ProcessResult result = RunProcess(arguments, {.input = input});
        EXPECT_EQ(result.status, 0) << result.out << result.err;
        return result.out;
    }

    bool UnZipBytes(const std::string& bytes) const
    {
        fs::remove("bytes.zip");
        mDir.Write("bytes.zip", bytes);
        return UnZip("bytes.zip");
    }

    static bool UnZip(const std::string& archive) { return ZipUtil::UnZipFile(archive, "target/"); }

    TempDir mDir;
    LogCapture mLog;
};

TEST_F(PackagedZipTest, LengthsInTheZip64FieldAreRead)
{
    const std::string large = std::string(300000, 'x') + "end";
    mDir.Write("small", "1");
    mDir.Write("large", large);
    for (const char* const level : {"-0", "-6"}) {
        Zip({"-q", "-fz", level, "a.zip", "small", "large"});
        EXPECT_TRUE(UnZip("a.zip")) << level;
        EXPECT_EQ(mDir.Read("target/small"), "1");
        EXPECT_EQ(mDir.Read("target/large"), large);
        fs::remove_all("target");
        mDir.MakeDir("target");
        fs::remove("a.zip");
    }
}

TEST_F(PackagedZipTest, EntryFromAPipeIsRead)
{
    const std::string large = std::string(300000, 'x') + "end";
    Zip({"-q", "a.zip", "-"}, large);
    EXPECT_TRUE(UnZip("a.zip"));
    EXPECT_EQ(mDir.Read("target/-"), large);
}

TEST_F(PackagedZipTest, ArchiveFromAPipeIsRead)
{
    mDir.Write("file", "text");
    EXPECT_TRUE(UnZipBytes(Zip({"-q", "-", "file"})));
    EXPECT_EQ(mDir.Read("target/file"), "text");
    EXPECT_TRUE(UnZipBytes(Zip({"-q", "-", "-"}, "from a pipe into a pipe")));
    EXPECT_EQ(mDir.Read("target/-"), "from a pipe into a pipe");
}

TEST_F(PackagedZipTest, PackedLinkIsAFileWithItsTarget)
{
    mDir.MakeDir("outside");
    fs::create_symlink(mDir.Path("outside"), "link");
    Zip({"-q", "-y", "a.zip", "link"});
    EXPECT_TRUE(UnZip("a.zip"));
    EXPECT_FALSE(fs::is_symlink("target/link"));
    EXPECT_EQ(mDir.Read("target/link"), mDir.Path("outside"));
}

TEST_F(PackagedZipTest, EncryptedEntryFailsAndLeavesNothing)
{
    mDir.Write("file", "text");
    for (const char* const level : {"-0", "-6"}) {
        Zip({"-q", level, "-P", "secret", "a.zip", "file"});
        EXPECT_FALSE(UnZip("a.zip")) << level;
        fs::remove("a.zip");
    }
    EXPECT_TRUE(fs::is_empty("target"));
}

TEST_F(PackagedZipTest, PackingMethodThatIsNotKnownFailsAndLeavesNothing)
{
    mDir.Write("file", std::string(3000, 'x'));
    Zip({"-q", "-Z", "bzip2", "a.zip", "file"});
    EXPECT_FALSE(UnZip("a.zip"));
    EXPECT_TRUE(fs::is_empty("target"));
}

struct ToldCase { const char* name; Told told; bool expected; };
void PrintTo(const ToldCase& toldCase, std::ostream* out) { *out << toldCase.name; }
class WhatAnArchiveTells : public PackagedZipTest, public testing::WithParamInterface<ToldCase> {};

TEST_P(WhatAnArchiveTells, IsHeldAgainstItsContent)
{
    mDir.Write("target/f", "former");
    EXPECT_EQ(UnZipBytes(ArchiveOf(GetParam().told)), GetParam().expected);
    EXPECT_EQ(mDir.Read("target/f"), GetParam().expected ? "text" : "former");
    EXPECT_EQ(std::distance(fs::directory_iterator("target"), {}), 1);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Table, WhatAnArchiveTells, testing::Values(
    ToldCase{"Truth", {}, true},
    ToldCase{"WrongChecksum", {.checksum = 1}, false},
    ToldCase{"LongerThanItIs", {.length = 5}, false},
    ToldCase{"ShorterThanItIs", {.length = 3}, false},
    ToldCase{"ShorterWithAFittingChecksum", {.length = 3, .checksum = ChecksumOf("tex")}, false},
    ToldCase{"PackedLongerThanTheArchive", {.packedLength = 4000}, false},
    ToldCase{"NearlyFourGiB", {.length = 0xFFFFFFFE}, false},
    ToldCase{"LengthInTheField", {.length = IN_THE_FIELD, .extra = Zip64Field({4})}, true},
    ToldCase{"BothLengthsInTheField",
        {.length = IN_THE_FIELD, .packedLength = IN_THE_FIELD, .extra = Zip64Field({4, 4})}, true},
    ToldCase{"PackedLengthInTheField", {.packedLength = IN_THE_FIELD, .extra = Zip64Field({4})}, true},
    ToldCase{"FieldBehindAnother",
        {.length = IN_THE_FIELD, .extra = LittleEndian(0x5455, 2) + LittleEndian(1, 2) + "x" + Zip64Field({4})}, true},
    ToldCase{"NoField", {.length = IN_THE_FIELD}, false},
    ToldCase{"OtherFieldAlone", {.length = IN_THE_FIELD, .extra = LittleEndian(2, 2) + LittleEndian(0, 2)}, false},
    ToldCase{"FieldWithoutLengths", {.length = IN_THE_FIELD, .extra = Zip64Field({})}, false},
    ToldCase{"FieldWithOneLengthOfTwo",
        {.length = IN_THE_FIELD, .packedLength = IN_THE_FIELD, .extra = Zip64Field({4})}, false},
    ToldCase{"FieldBeyondItsEnd",
        {.length = IN_THE_FIELD, .extra = LittleEndian(1, 2) + LittleEndian(8, 2) + LittleEndian(4, 4)}, false},
    ToldCase{"FieldThatTellsLess",
        {.length = IN_THE_FIELD, .checksum = ChecksumOf("tex"), .extra = Zip64Field({3})}, false},
    ToldCase{"FieldThatTellsMore", {.length = IN_THE_FIELD, .extra = Zip64Field({5})}, false},
    ToldCase{"FieldThatTellsMoreThanFourGiB",
        {.length = IN_THE_FIELD, .extra = Zip64Field({0x100000004})}, false},
    ToldCase{"FieldThatTellsTheMost",
        {.length = IN_THE_FIELD, .extra = Zip64Field({std::numeric_limits<std::uint64_t>::max()})}, false},
    ToldCase{"PackedLengthInTheFieldBeyondTheArchive",
        {.packedLength = IN_THE_FIELD, .extra = Zip64Field({4000})}, false},
    ToldCase{"Deflated", {.content = DEFLATED, .packedLength = 9, .method = 8}, true},
    ToldCase{"DeflatedWithLengthsInTheField", {.content = DEFLATED, .length = IN_THE_FIELD,
        .packedLength = IN_THE_FIELD, .extra = Zip64Field({4, 9}), .method = 8}, true},
    ToldCase{"DeflatedAndLongerThanTheFieldTells", {.content = DEFLATED, .length = IN_THE_FIELD, .packedLength = 9,
        .checksum = ChecksumOf("tex"), .extra = Zip64Field({3}), .method = 8}, false},
    ToldCase{"DeflatedAndCutOff", {.content = DEFLATED.substr(0, 7), .packedLength = 7, .method = 8}, false},
    ToldCase{"Encrypted", {.flags = 1}, false},
    ToldCase{"MethodOfOldTimes", {.method = 6}, false},
    ToldCase{"MethodThatTheArchiveLibraryCopies", {.method = 12}, false}),
    CaseName());

// The content is sparse on disk; without the limit the entry would be written completely.
TEST_F(PackagedZipTest, EntryOfFourGiBFailsBeforeItIsRead)
{
    constexpr std::uint64_t FOUR_GIB = 1ULL << 32;
    const Told told{.content = "", .length = IN_THE_FIELD, .packedLength = IN_THE_FIELD, .checksum = 0xD202EF8D,
        .extra = Zip64Field({FOUR_GIB, FOUR_GIB})};
    const std::string local = "PK\3\4" + HeadOf(told) + "f" + told.extra;
    mDir.Write("a.zip", local);
    fs::resize_file("a.zip", local.size() + FOUR_GIB);
    // The position of the directory does not fit into the 32-bit end record, so it is in the 64-bit one.
    const std::uint64_t listBegin = local.size() + FOUR_GIB;
    const std::uint64_t listEnd = listBegin + ListOf(told).size();
    std::ofstream("a.zip", std::ios::binary | std::ios::app) << ListOf(told) << "PK\6\6" << LittleEndian(44, 8)
        << LittleEndian(45, 2) << LittleEndian(45, 2) << LittleEndian(0, 8) << LittleEndian(1, 8)
        << LittleEndian(1, 8) << LittleEndian(ListOf(told).size(), 8) << LittleEndian(listBegin, 8)
        << "PK\6\7" << LittleEndian(0, 4) << LittleEndian(listEnd, 8) << LittleEndian(1, 4)
        << EndOf(told, 0xFFFFFFFF);
    EXPECT_FALSE(UnZip("a.zip"));
    EXPECT_TRUE(fs::is_empty("target"));
}

TEST_F(PackagedZipTest, EntryBehindABadOneIsNotReadAndThoseBeforeStay)
{
    WriteZip("a.zip", {{"before", "1"}, {"bad", "content that is damaged"}, {"behind", "2"}});
    std::string bytes = mDir.Read("a.zip");
    bytes[bytes.rfind("PK\1\2", bytes.rfind("bad")) + 16] ^= 1; // a bit of the checksum in the list
    EXPECT_FALSE(UnZipBytes(bytes));
    EXPECT_EQ(mDir.Read("target/before"), "1");
    EXPECT_EQ(std::distance(fs::directory_iterator("target"), {}), 1);
}

TEST_F(PackagedZipTest, FullDiskFailsAndLeavesNothing)
{
    WriteZip("small.zip", {{"file", "seen when the file is closed"}});
    WriteZip("large.zip", {{"file", std::string(300000, 'x')}});
    const FileSizeLimit full(10);
    EXPECT_FALSE(UnZip("small.zip"));
    EXPECT_FALSE(UnZip("large.zip"));
    EXPECT_TRUE(fs::is_empty("target"));
}

TEST_F(PackagedZipTest, LinkInTheTargetIsReplacedAndNotFollowed)
{
    mDir.Write("outside", "former");
    fs::create_symlink("../outside", "target/file");
    WriteZip("a.zip", {{"file", "new"}});
    EXPECT_TRUE(UnZip("a.zip"));
    EXPECT_EQ(mDir.Read("target/file"), "new");
    EXPECT_EQ(mDir.Read("outside"), "former");
}

#ifdef _WIN32
TEST_F(PackagedZipTest, BackslashInANameSeparatesFolders)
{
    WriteZip("a.zip", {{"folder\\", ""}, {"folder\\file", "1"}});
    EXPECT_TRUE(UnZip("a.zip"));
    EXPECT_EQ(mDir.Read("target/folder/file"), "1");
}
#else
TEST_F(PackagedZipTest, BackslashInANameIsRefused)
{
    for (const char* const name : {"folder\\file", "folder\\", "folder/\\", "\\"}) {
        WriteZip("a.zip", {{"folder/", ""}, {name, "1"}});
        EXPECT_FALSE(UnZip("a.zip")) << name;
    }
    EXPECT_TRUE(fs::is_empty("target/folder"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}
#endif

} // namespace
