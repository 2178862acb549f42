// How paths of a captured device are found where the kernel doesn't help.
#include "arborist/utilities/rooted_path.h"

#include <cerrno>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "arborist/utilities/file_util.h"
#include "tests/reliability/failing_utility_call.h"

namespace fs = std::filesystem;

namespace {

using CallCounter::Failing;
using FailingFiles::Call;
using FailingFiles::Failure;

class FailingResolution : public FailingUtilityCall {
protected:
    FailingResolution()
    {
        mDir.Write("root/sys/value", "1");
        fs::create_directory_symlink("/sys", "root/link");
    }

    static std::string TextAt(const RootedPath::Target& target)
    {
        std::string text;
        return FileUtil::LoadStringFromFile(target.Path(), text) ? text : "none";
    }
};

TEST_F(FailingResolution, GoesLinkByLinkWhereTheKernelDoesNotDoIt)
{
    for (const int error : {ENOSYS, EPERM, EINVAL, E2BIG}) {
        const Failure failure(Call::RESOLVE, error, 1, Failing::ALL_FROM_IT_ON);
        EXPECT_EQ(RootedPath::Resolve("root", "/link/value"), "root/sys/value");
        const RootedPath::Target target("root", "/link/value");
        EXPECT_EQ(target.Path(), "root/sys/value");
    }
}

TEST_F(FailingResolution, IsTriedAgainWhereSomethingWasRenamedMeanwhile)
{
    const Failure failure(Call::RESOLVE, EAGAIN);
    const RootedPath::Target target("root", "/link/value");
    EXPECT_EQ(TextAt(target), "1");
    EXPECT_THAT(target.Path(), testing::StartsWith("/proc/"));
}

TEST_F(FailingResolution, FindsNothingWhereTheKernelNeverGetsToTheEnd)
{
    const Failure failure(Call::RESOLVE, EAGAIN, 1, Failing::ALL_FROM_IT_ON);
    EXPECT_EQ(RootedPath::Target("root", "/link/value").Path(), "");
    EXPECT_EQ(RootedPath::Resolve("root", "/link/value"), "root/sys/value");
}

TEST_F(FailingResolution, TakesThePathWhereOpenFilesHaveNoNames)
{
    const Failure failure(Call::LOOK, ENOENT);
    EXPECT_EQ(RootedPath::Target("root", "/link/value").Path(), "root/sys/value");
}

TEST_F(FailingResolution, FindsNothingInARootThatCannotBeOpened)
{
    const Failure failure(Call::OPEN, EACCES, 1, Failing::ALL_FROM_IT_ON);
    EXPECT_EQ(RootedPath::Target("root", "/link/value").Path(), "");
    EXPECT_EQ(RootedPath::Resolve("root", "/link/value"), "root/sys/value");
}

TEST_F(FailingResolution, GoesLinkByLinkWhereAnOpenFileCannotBeLookedAt)
{
    const auto calls = ForEachCall(Call::STATUS, EACCES, [](auto attempt) {
        EXPECT_EQ(attempt([] { return RootedPath::Resolve("root", "/link/value"); }), "root/sys/value");
    });
    EXPECT_GT(calls, 0U);
    const Failure failure(Call::STATUS, EACCES, 1, Failing::ALL_FROM_IT_ON);
    EXPECT_EQ(RootedPath::Resolve("root", "/sys/value"), "root/sys/value");
}

} // namespace
