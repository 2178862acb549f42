// What reads, writes and copies files, over calls of the file system that fail.
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "arborist/frame/stopping.h"
#include "arborist/utilities/file_util.h"
#include "tests/reliability/failing_utility_call.h"
#include "tests/reliability/observed_detection.h"

namespace fs = std::filesystem;

namespace {

using CallCounter::Failing;
using FailingFiles::Call;
using FailingFiles::Failure;
using testing::IsEmpty;

constexpr auto OVER_OTHERS = fs::copy_options::overwrite_existing;
// The system doesn't copy its bytes by itself, and it lies in another file system.
constexpr char FILE_OF_THE_KERNEL[] = "/proc/version";

TEST_F(FailingUtilityCall, LeavesACopyWholeOrSaysThatThereIsNone)
{
    const std::size_t files = OpenFiles();
    for (const auto& [call, error] : Kinds{{Call::OPEN, EACCES}, {Call::STATUS, EACCES}, {Call::READ, EIO},
             {Call::WRITE, ENOSPC}, {Call::CLOSE, EIO}, {Call::CHANGE_MODE, EPERM}, {Call::COPY, ENOSYS}}) {
        for (const std::string& source : {mDir.Write("a", std::string(200'000, 'x')), std::string(FILE_OF_THE_KERNEL)}) {
            if (call == Call::STATUS && source == FILE_OF_THE_KERNEL) {
                continue; // the standard library then copies as many bytes as the kernel tells, which are none
            }
            const std::string content = mDir.Read(source);
            const std::string target = "d/" + FileUtil::ExtractFileName(source);
            mDir.Write(target, "what was there before");
            const auto calls = ForEachCall(call, error, [&](auto attempt) {
                Log();
                if (attempt([&source = source] { return FileUtil::CopyFileToFolder(source, "d", OVER_OTHERS); })) {
                    EXPECT_EQ(mDir.Read(target), content);
                } else {
                    EXPECT_EQ(Log(), "FUNc:FileUtil::CopyFileToFolder: Failed to copy file " + source + " to directory d.");
                }
            });
            EXPECT_GT(calls, 0U);
        }
    }
    EXPECT_EQ(OpenFiles(), files);
}

TEST_F(FailingUtilityCall, CopyFailsWhereTheFileCannotBeClosedOrGetNoPermissions)
{
    mDir.Write("a", "text");
    mDir.MakeDir("d");
    for (const Call call : {Call::CLOSE, Call::CHANGE_MODE}) {
        const Failure failure(call, EIO, 1, Failing::ALL_FROM_IT_ON);
        EXPECT_FALSE(FileUtil::CopyFileToFolder("a", "d", OVER_OTHERS));
        EXPECT_FALSE(FileUtil::CopyContentToFolder("a", "b", "d"));
    }
    EXPECT_EQ(Log(), "FUNc:FileUtil::CopyFileToFolder: Failed to copy file b to directory d.");
}

TEST_F(FailingUtilityCall, CopyOfAFolderFailsWhereItsEntriesCannotBeRead)
{
    mDir.Write("a/b/c", "text");
    for (int call = 1; call <= 8; ++call) { // of ".", "..", one entry and the end of each of the two folders
        const Failure failure(Call::NEXT_ENTRY, EIO, call);
        const std::string target = "d" + std::to_string(call);
        EXPECT_FALSE(FileUtil::CopyFileToFolder("a", target, fs::copy_options::recursive)) << call;
        EXPECT_EQ(Log(), "FUNc:FileUtil::CopyFileToFolder: Failed to copy file a to directory " + target + ".");
    }
}

TEST_F(FailingUtilityCall, FileThatCannotBeReadToItsEndIsNotTakenForAShorterOne)
{
    mDir.Write("a", std::string(100'000, 'x'));
    for (const std::uint64_t first : {1U, 2U}) {
        const auto fails = [first](auto load) {
            const Failure failure(Call::READ, EIO, first);
            return !load();
        };
        std::vector<std::uint8_t> buffer;
        std::string text;
        EXPECT_TRUE(fails([&] { return FileUtil::LoadBufferFromFile("a", buffer); }));
        EXPECT_TRUE(fails([&] { return FileUtil::LoadBufferFromNodeFile("a", buffer); }));
        EXPECT_TRUE(fails([&] { return FileUtil::LoadStringFromFile("a", text); }));
    }
}

TEST_F(FailingUtilityCall, SignalsInterruptNoCopyAndNoReading)
{
    mDir.MakeDir("d");
    const std::string content = mDir.Read(FILE_OF_THE_KERNEL);
    for (const auto& [call, first] : NumberedCalls{{Call::READ, 1}, {Call::WRITE, 1}, {Call::WRITE, 2}, {Call::HALF_A_WRITE, 1}}) {
        {
            const Failure failure(call, EINTR, first);
            EXPECT_TRUE(FileUtil::CopyFileToFolder(FILE_OF_THE_KERNEL, "d", OVER_OTHERS));
        }
        EXPECT_EQ(mDir.Read("d/version"), content);
    }
    std::string text;
    const Failure failure(Call::READ, EINTR);
    EXPECT_TRUE(FileUtil::LoadStringFromFile("d/version", text));
    EXPECT_EQ(text, content);
}

TEST_F(FailingUtilityCall, CopyThatTheSystemDoesNotMakeEndsWithTheDetection)
{
    mDir.Write("a", std::string(1'000'000, 'x'));
    mDir.MakeDir("d");
    StopRequest request;
    const StopScope scope(&request);
    request.Start(std::nullopt);
    request.StopAtQuestion(2);
    const Failure failure(Call::COPY, ENOSYS);
    EXPECT_THROW(FileUtil::CopyFileToFolder("a", "d", OVER_OTHERS), DetectionStopped);
    EXPECT_TRUE(fs::is_empty("d"));
}

TEST_F(FailingUtilityCall, FileThatCannotBeLookedAtIsLoggedAndTakenForNone)
{
    mDir.MakeDir("d");
    const Failure failure(Call::STATUS, EACCES, 1, Failing::ALL_FROM_IT_ON);
    EXPECT_FALSE(FileUtil::FileExists("d"));
    EXPECT_EQ(Log(), "FUNc:FileUtil::FileExists: Failed to access file d.");
    EXPECT_FALSE(FileUtil::IsDirectory("d"));
    EXPECT_EQ(Log(), "FUNc:FileUtil::IsDirectory: Failed to judge directory d.");
    EXPECT_FALSE(FileUtil::FileExistsA("d"));
    EXPECT_FALSE(FileUtil::IsPlainFile("d"));
    EXPECT_EQ(FileUtil::GetFileSize("d"), 0U);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FailingUtilityCall, FolderIsMadeOrItIsSaidThatItIsNot)
{
    for (const auto& [call, error] : Kinds{{Call::MAKE_FOLDER, EROFS}, {Call::STATUS, EACCES}}) {
        ForEachCall(call, error, [&](auto attempt) {
            fs::remove_all("new");
            Log();
            const bool isMade = attempt([] { return FileUtil::ForceCreateDirectory("new/folder/"); });
            EXPECT_TRUE(isMade ? fs::is_directory("new/folder") : !Log().empty());
        });
    }
    const Failure failure(Call::MAKE_FOLDER, EROFS);
    EXPECT_FALSE(FileUtil::ForceCreateDirectory("other"));
    EXPECT_EQ(Log(), "FUNc:FileUtil::ForceCreateDirectory: Failed to create directory other.");
}

TEST_F(FailingUtilityCall, FolderThatCannotBeLookedAtIsNotTakenForMade)
{
    mDir.MakeDir("d");
    const Failure failure(Call::STATUS, EACCES);
    EXPECT_FALSE(FileUtil::ForceCreateDirectory("d"));
    EXPECT_EQ(Log(), "FUNc:FileUtil::FileExists: Failed to access file d.");
}

TEST_F(FailingUtilityCall, WhatCannotBeRemovedIsLogged)
{
    mDir.Write("d/a", "");
    {
        const Failure failure(Call::REMOVE, EACCES);
        EXPECT_FALSE(FileUtil::ForceRemoveDirectory("d", true));
        EXPECT_EQ(Log(), "FUNc:FileUtil::ForceRemoveDirectory: remove dir failed d");
    }
    {
        const Failure failure(Call::REMOVE, EACCES);
        EXPECT_FALSE(FileUtil::RemoveFile("d/a"));
        EXPECT_EQ(Log(), "FUNc:FileUtil::RemoveFile: Failed to remove file d/a.");
    }
    EXPECT_TRUE(mDir.Has("d/a"));
}

// Another process may remove the same: what it left is then removed as if it were whole.
TEST_F(FailingUtilityCall, FolderWhoseEntryIsGoneMeanwhileIsRemovedWithTheRest)
{
    mDir.Write("d/a", "");
    const Failure failure(Call::REMOVE, ENOENT);
    EXPECT_FALSE(FileUtil::ForceRemoveDirectory("d", true)); // the entry is still there, and so the folder isn't empty
    EXPECT_EQ(Log(), "FUNc:FileUtil::ForceRemoveDirectory: remove dir failed d");
    mDir.Write("e/a", "");
    FailingFiles::Watch(Call::REMOVE, ENOENT);
    CallCounter::Start(2); // the folder itself
    EXPECT_FALSE(FileUtil::ForceRemoveDirectory("e", true));
    EXPECT_EQ(Log(), "");
    EXPECT_FALSE(mDir.Has("e/a"));
}

TEST_F(FailingUtilityCall, ModeThatTheSystemRefusesIsLogged)
{
    mDir.Write("d/a", "");
    for (const std::uint16_t mode : {std::uint16_t{0444}, std::uint16_t{0644}}) {
        const Failure failure(Call::CHANGE_MODE, EPERM);
        EXPECT_FALSE(FileUtil::ChangeModeDirectory("d", mode));
        EXPECT_EQ(Log(), "FUNc:FileUtil::ChangeMode: Failed to change file mode d/a.");
    }
    const Failure failure(Call::CHANGE_MODE, EPERM, 2); // the folder itself, after what is in it
    EXPECT_FALSE(FileUtil::ChangeModeDirectory("d", 0444));
    EXPECT_EQ(Log(), "FUNc:FileUtil::ChangeMode: Failed to change file mode d.");
}

TEST_F(FailingUtilityCall, TextThatCannotBeWrittenIsNotTakenForSaved)
{
    mDir.Write("a", "old");
    for (const Call call : {Call::OPEN, Call::DEAD_STREAM, Call::WRITE}) {
        const Failure failure(call, EIO);
        EXPECT_FALSE(FileUtil::SaveStringToFile("a", "new", false));
    }
    EXPECT_EQ(mDir.Read("a"), "old");
}

} // namespace
