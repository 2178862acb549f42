// Archives and files of a rule set over calls of the file system that fail.
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "arborist/loading/xml_file.h"
#include "arborist/utilities/zip_util.h"
#include "tests/reliability/failing_utility_call.h"
#include "tests/reliability/observed_detection.h"
#include "tests/support/zip_file.h"

namespace fs = std::filesystem;

namespace {

using CallCounter::Failing;
using FailingFiles::Call;
using FailingFiles::Failure;
using testing::IsEmpty;

TEST_F(FailingUtilityCall, LeavesAnArchiveUnpackedWholeOrSaysThatItIsNot)
{
    WriteZip("a.zip", {{"x", "new x"}, {"y", std::string(20'000, 'y')}});
    const std::size_t files = OpenFiles();
    for (const auto& [call, error] : Kinds{{Call::OPEN, EACCES}, {Call::STATUS, EACCES}, {Call::SEEK, EIO},
             {Call::DEAD_STREAM, EIO}, {Call::WRITE, ENOSPC}, {Call::RENAME, EACCES}, {Call::REMOVE, EACCES}}) {
        ForEachCall(call, error, [&](auto attempt) {
            mDir.Write("d/x", "old x");
            const bool isUnpacked = attempt([] { return ZipUtil::UnZipFile("a.zip", "d/"); });
            const std::string found = mDir.Read("d/x");
            EXPECT_TRUE(found == "new x" || (found == "old x" && !isUnpacked)) << found;
            EXPECT_TRUE(!isUnpacked || mDir.Read("d/y").size() == 20'000U);
            fs::remove_all("d");
        });
    }
    EXPECT_EQ(OpenFiles(), files);
}

TEST_F(FailingUtilityCall, SourceThatCannotBeReadIsAnEmptyEntry)
{
    mDir.Write("a", "text");
    const ZipUtil::Handle archive = ZipUtil::CreateZipFile("a.zip");
    {
        const Failure failure(Call::DEAD_STREAM, EIO);
        EXPECT_TRUE(ZipUtil::AddFileInZip(archive, "a", 0));
    }
    ZipUtil::CloseZipFile(archive);
    EXPECT_EQ(ReadZip("a.zip"), (ZipEntries{{"a", ""}}));
}

TEST_F(FailingUtilityCall, ArchiveThatCannotBeWrittenIsNotReported)
{
    std::string text(1'000'000, '\0');
    std::uint32_t number = 1;
    for (char& letter : text) {
        number = number * 1664525U + 1013904223U;
        letter = static_cast<char>(number >> 24U); // nothing that packs well
    }
    mDir.Write("a", text);
    const ZipUtil::Handle archive = ZipUtil::CreateZipFile("a.zip");
    const Failure failure(Call::WRITE, ENOSPC, 14, Failing::ALL_FROM_IT_ON); // the first dozen write the entry's header
    EXPECT_TRUE(ZipUtil::AddFileInZip(archive, "a", 0));
    EXPECT_TRUE(ZipUtil::AddFileInZip(archive, "a", 0)) << "with its header, too";
    ZipUtil::CloseZipFile(archive);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FailingUtilityCall, RuleSetThatCannotBeOpenedIsNotFoundForTheXmlReader)
{
    mDir.Write("a.xml", "<a/>");
    tinyxml2::XMLDocument document;
    const Failure failure(Call::OPEN, EACCES);
    const XmlFile::Outcome outcome = XmlFile::Load(document, "a.xml");
    EXPECT_EQ(outcome.error, tinyxml2::XML_ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(outcome.message, "can't be opened");
}

TEST_F(FailingUtilityCall, RuleSetThatCannotBeReadIsNotTakenForAShorterOne)
{
    mDir.Write("a.xml", "<a/>");
    tinyxml2::XMLDocument document;
    for (const auto& [call, first] : NumberedCalls{{Call::SEEK, 1}, {Call::SEEK, 2}, {Call::DEAD_STREAM, 1}}) {
        const Failure failure(call, EIO, first);
        const XmlFile::Outcome outcome = XmlFile::Load(document, "a.xml");
        EXPECT_EQ(outcome.error, tinyxml2::XML_ERROR_FILE_READ_ERROR);
        EXPECT_EQ(outcome.message, "can't be read");
        EXPECT_EQ(document.RootElement(), nullptr);
    }
    const Failure failure(Call::OPEN, EACCES);
    EXPECT_EQ(XmlFile::Load(document, "a.xml").message, "can't be opened");
}

} // namespace
