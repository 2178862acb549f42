// What a detection leaves of the process that it runs in: nothing printed, nothing inherited, nothing changed but what
// docs/process.md lists.
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <set>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <sqlite3.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "tests/frame/all_families.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

// Calls back from within a code rule.
class CallingRunner : public CodeRuleRunner {
public:
    explicit CallingRunner(std::function<void()> call) : mCall(std::move(call)) {}
    bool RunCodeRule(std::vector<std::string>, std::vector<std::string>, std::vector<std::string>,
        const std::string&) override
    {
        mCall();
        return true;
    }

private:
    std::function<void()> mCall;
};

// The files that a child of this process has open.
std::set<std::string> OpenInAChild(const TempDir& dir)
{
    std::fflush(nullptr);
    EXPECT_EQ(std::system("for file in /proc/self/fd/*; do readlink $file || true; done > inherited"), 0);
    std::set<std::string> files;
    std::string text = dir.Read("inherited");
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n')) {
        files.insert(text.substr(0, end));
        text.erase(0, end + 1);
    }
    return files;
}

class ProcessManners : public AllFamilies {
protected:
    void Detect(const std::function<void()>& inCodeRule = [] {})
    {
        mInfo->mCodeRuleRunner = std::make_shared<CallingRunner>(inCodeRule);
        Arborist engine(mInfo);
        engine.StartDetection();
    }
};

TEST_F(ProcessManners, ChildOfACodeRunnerInheritsNoFileOfTheDetection)
{
    const auto before = OpenInAChild(mDir);
    std::set<std::string> inside;
    bool hasOpenFiles = false;
    Detect([&] {
        inside = OpenInAChild(mDir);
        for (const auto& file : fs::directory_iterator("/proc/self/fd")) {
            std::error_code ignored;
            hasOpenFiles = hasOpenFiles || fs::read_symlink(file, ignored).string().find("log.db") != std::string::npos;
        }
    });
    EXPECT_TRUE(hasOpenFiles); // or the test shows nothing
    EXPECT_EQ(inside, before);
}

TEST_F(ProcessManners, DetectionLeavesNoFileOpen)
{
    const auto count = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    Detect();
    const auto before = count();
    Detect();
    EXPECT_EQ(count(), before);
}

// The databases that the process has open, apart from the event log and the repairs, which engines keep open.
std::set<std::string> OpenDatabases()
{
    std::set<std::string> names;
    for (const auto& file : fs::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        const fs::path path = fs::read_symlink(file, ignored);
        if (path.extension() == ".db" && path.filename() != "log.db" && path.filename() != "repair_record.db") {
            names.insert(path.filename());
        }
    }
    return names;
}

TEST_F(ProcessManners, DatabasesThatRulesAskedAreClosedWhenTheDetectionEnds)
{
    Arborist engine(mInfo);
    engine.StartDetection();
    EXPECT_THAT(OpenDatabases(), IsEmpty());
}

TEST_F(ProcessManners, DatabasesThatRulesAskedAreClosedWhenTheHostThrows)
{
    std::set<std::string> inside;
    mInfo->mCodeRuleRunner = std::make_shared<CallingRunner>([&inside] {
        inside = OpenDatabases();
        throw std::runtime_error("host");
    });
    Arborist engine(mInfo);
    EXPECT_THROW(engine.StartDetection(), std::runtime_error);
    EXPECT_THAT(inside, ElementsAre("battery.db"));
    EXPECT_THAT(OpenDatabases(), IsEmpty());
}

// Runs `action` with both standard streams in a file and returns what it printed.
std::string Printed(const std::function<void()>& action)
{
    std::fflush(nullptr);
    const int out = dup(STDOUT_FILENO);
    const int err = dup(STDERR_FILENO);
    const int file = open("printed", O_RDWR | O_CREAT | O_TRUNC, 0600);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    action();
    std::fflush(nullptr);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    std::string text(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(file, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    for (const int descriptor : {out, err, file}) {
        close(descriptor);
    }
    return text;
}

TEST_F(ProcessManners, NothingIsPrintedOnceTheHostHasALogger)
{
    const auto run = [this] {
        Detect();
        UpdateRepairDb("R1");
        mEndless = "select nothing from nowhere";
        WriteRules();
        mDir.Write("device/data/battery.zip", "no archive");
        mDir.Write("programdata/Comms/Lumbra/workDir/0/log.db", "no database, and long enough to be taken for one");
        Detect();
        mDir.Write("FaultTreeRules.xml", "<no");
        Detect();
    };
    EXPECT_EQ(Printed(run), "");
    EXPECT_THAT(mLog.Lines(), testing::Not(IsEmpty()));
}

TEST_F(ProcessManners, DetectionChangesNothingThatTheProcessShares)
{
    struct State {
        std::string directory = fs::current_path().string();
        std::string locale = std::setlocale(LC_ALL, nullptr);
        std::string zone = std::getenv("TZ") == nullptr ? "" : std::getenv("TZ");
        std::string zoneName = tzname[0];
        mode_t mask = umask(0);
        decltype(std::signal(SIGPIPE, SIG_DFL)) pipeHandler = std::signal(SIGPIPE, SIG_DFL);
        State()
        {
            umask(mask);
            std::signal(SIGPIPE, pipeHandler);
        }
        bool operator==(const State&) const = default;
    };
    const State before;
    Detect();
    EXPECT_EQ(State(), before);
}

TEST_F(ProcessManners, SqliteKeepsTheHostsHeapLimitWhereASettingSaysSo)
{
    const auto before = sqlite3_soft_heap_limit64(-1);
    sqlite3_soft_heap_limit64(64 * 1024 * 1024);
    mSettings.Set(Settings::KEEP_SQLITE_MEMORY, "1");
    Detect();
    EXPECT_EQ(sqlite3_soft_heap_limit64(-1), 64 * 1024 * 1024);
    mSettings.Set(Settings::KEEP_SQLITE_MEMORY, "");
    Detect();
    EXPECT_EQ(sqlite3_soft_heap_limit64(-1), 100 * 1024);
    sqlite3_soft_heap_limit64(before);
}

} // namespace
