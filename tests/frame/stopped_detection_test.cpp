// What a detection that ends early leaves: a result for each tree, whole stores, and an engine that can be used again.
#include <atomic>
#include <csignal>
#include <filesystem>
#include <set>
#include <thread>

#include <gmock/gmock.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/log.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "arborist/frame/stopping.h"
#include "tests/frame/all_families.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/recording_observer.h"

/// Gives access to the count of stop points, which no public call reaches.
struct ArboristPeer {
    static void StopAtQuestion(const Arborist& arborist, std::uint64_t question)
    {
        arborist.mStop->StopAtQuestion(question);
    }
    static std::uint64_t Questions(const Arborist& arborist) { return arborist.mStop->GetQuestions(); }
};

namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Word = Evidence::TreeVerdict::Word;
using Results = std::vector<std::shared_ptr<FaultTreeResult>>;

constexpr char DERIVED_DATABASE[] = "programdata/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db";
constexpr char REPAIRS[] = "programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db";
// 1 for a database with a rollback journal, 2 for one with a write-ahead log.
constexpr std::size_t JOURNAL_BYTE = 18;
constexpr char EVENT_LOG[] = "programdata/Comms/Lumbra/workDir/0/log.db";

// Keeps everything that an observer receives, and the verdicts beside it.
class VerdictObserver : public RecordingObserver {
public:
    void OnTreeFinished(Evidence::TreeResult result) override
    {
        verdicts.push_back(result.verdict);
        RecordingObserver::OnTreeFinished(std::move(result));
    }
    void OnEventDecided(Evidence::Event event) override
    {
        if (onEvent) {
            onEvent();
        }
        RecordingObserver::OnEventDecided(std::move(event));
    }

    std::vector<Evidence::TreeVerdict> verdicts;
    std::function<void()> onEvent;
};

// "T fault alarm node", "U stopped"
std::vector<std::string> Texts(const Results& results)
{
    std::vector<std::string> texts;
    for (const auto& result : results) {
        texts.push_back(result->mTreeId + (result->mIsStopped ? " stopped" : "") + (result->mIsFault ? " fault" : ""));
        for (const auto& cause : result->mRootCauseResults) {
            texts.back() += " " + cause->mNode->mId;
        }
    }
    return texts;
}

bool NamesStop(const Evidence::TreeVerdict& verdict)
{
    return std::any_of(verdict.open.begin(), verdict.open.end(), [](const Evidence::OpenCheck& open) {
        return open.reason == Evidence::Reason::STOPPED && open.check == Evidence::Check::NOT_CHECKED;
    });
}

class StoppedDetection : public AllFamilies {
protected:
    StoppedDetection() { MakeEngine(); }

    void MakeEngine()
    {
        mEngine = std::make_unique<Arborist>(mInfo);
        mEngine->SetObserver(mObserver);
    }

    struct Outcome {
        std::vector<std::string> results;
        std::vector<std::string> evidence;
        std::vector<Evidence::TreeVerdict> verdicts;
        std::vector<std::string> log;
    };

    // A detection that stops at that question; 0 for one that runs to its end.
    Outcome Detect(std::uint64_t question = 0)
    {
        mLog.Clear();
        mObserver->Clear();
        mObserver->verdicts.clear();
        ArboristPeer::StopAtQuestion(*mEngine, question);
        const auto results = mEngine->StartDetection();
        ArboristPeer::StopAtQuestion(*mEngine, 0);
        return {Texts(results), mObserver->Lines(), mObserver->verdicts, mLog.Lines()};
    }

    // The names of all files and folders.
    std::set<std::string> Names() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(mDir.Path())) {
            names.insert(entry.path().string());
        }
        return names;
    }

    void ExpectStopsAnywhereToLeaveNothing()
    {
        mSettings.Set(Settings::TEMPORARY_STORES, "1");
        Detect();
        UpdateRepairDb("other");
        MakeEngine();
        const Outcome whole = Detect();
        const std::uint64_t questions = ArboristPeer::Questions(*mEngine);
        ASSERT_GT(questions, 50U);
        const auto names = Names();
        const std::string log = mDir.Read(EVENT_LOG);
        for (std::uint64_t question = 1; question <= questions; ++question) {
            SCOPED_TRACE(question);
            MakeEngine(); // that has read nothing yet
            ExpectStopped(Detect(question), whole);
            std::set<std::string> left = Names();
            left.insert(names.begin(), names.end()); // a copy may not have been made again
            ASSERT_EQ(left, names);
            ASSERT_EQ(mDir.Read(DERIVED_DATABASE).at(JOURNAL_BYTE), '\1');
            ExpectNobodyHoldsTheRepairs();
            const Outcome again = Detect();
            ASSERT_EQ(again.results, whole.results);
            ASSERT_EQ(again.evidence, whole.evidence);
            ASSERT_EQ(again.verdicts, whole.verdicts);
            ASSERT_EQ(again.log, whole.log);
            ASSERT_EQ(Names(), names);
            ASSERT_EQ(mDir.Read(EVENT_LOG), log);
        }
    }

    // Writes into the store as another process would; recording a repair would wait for the disk.
    void ExpectNobodyHoldsTheRepairs() const
    {
        EventLogBuilder::Run(mDir.Path(REPAIRS), "pragma synchronous = off; update repair_data set repair_date = repair_date");
    }

    // Trees before the stop have their results, the one in which it came and those after it none.
    static void ExpectStopped(const Outcome& stopped, const Outcome& whole)
    {
        ASSERT_EQ(stopped.results.size(), whole.results.size());
        ASSERT_EQ(stopped.verdicts.size(), whole.verdicts.size());
        bool hasStopped = false;
        for (std::size_t tree = 0; tree < whole.results.size(); ++tree) {
            hasStopped = hasStopped || stopped.results[tree] != whole.results[tree];
            if (!hasStopped) {
                ASSERT_EQ(stopped.verdicts[tree], whole.verdicts[tree]);
                continue;
            }
            ASSERT_THAT(stopped.results[tree], testing::EndsWith(" stopped"));
            ASSERT_EQ(stopped.verdicts[tree].word, Word::UNDECIDED);
            ASSERT_FALSE(stopped.verdicts[tree].isComplete);
            ASSERT_TRUE(NamesStop(stopped.verdicts[tree]));
        }
        ASSERT_TRUE(hasStopped);
        const auto isOfWhole = [&whole](const std::string& line) {
            return testing::Value(whole.log, Contains(line)) ||
                line.find("StartDetection stopped") != std::string::npos;
        };
        ASSERT_THAT(stopped.log, Each(testing::Truly(isOfWhole))); // a stop is no failure, and logs none
    }

    std::shared_ptr<VerdictObserver> mObserver = std::make_shared<VerdictObserver>();
    std::unique_ptr<Arborist> mEngine;
};

TEST_F(StoppedDetection, CanStopAtEachPointAndRunAgainAsIfNothingHadBeen)
{
    ExpectStopsAnywhereToLeaveNothing();
}

// A quote in a row takes the way in which each row is a transaction of its own.
TEST_F(StoppedDetection, CanStopAtEachPointOfATableThatIsFilledRowByRow)
{
    EventLogBuilder::Run(mDir.Path(EVENT_LOG),
        "update event_info set extra = '{\"ms\":50,\"name\":\"o''clock\"}' where extra = '{\"ms\":50}'");
    ExpectStopsAnywhereToLeaveNothing();
}

TEST_F(StoppedDetection, StoppedBeforeItsRulesAreReadHasAResultForEachTree)
{
    const auto stopped = Detect(1);
    EXPECT_THAT(stopped.results, ElementsAre("T stopped", "U stopped"));
    EXPECT_THAT(stopped.verdicts, SizeIs(2));
    EXPECT_THAT(mObserver->Lines("event"), IsEmpty());
    EXPECT_THAT(mObserver->Lines("folded"), SizeIs(7 + 3));
    EXPECT_THAT(stopped.log, Contains("FUNc:Arborist::StartDetection: StartDetection stopped, 2 of 2 trees not decided"));
}

TEST_F(StoppedDetection, KeepsTheTreesThatWereDecided)
{
    Detect(); // creates the store of repairs, which a later one doesn't
    Detect();
    const std::uint64_t questions = ArboristPeer::Questions(*mEngine);
    const auto stopped = Detect(questions);
    EXPECT_THAT(stopped.results, ElementsAre("T fault alarm derived external node code", "U stopped"));
    EXPECT_THAT(stopped.log, Contains("FUNc:Arborist::StartDetection: StartDetection stopped, 1 of 2 trees not decided"));
}

TEST_F(StoppedDetection, StopsWithinAStatementThatNeverEnds)
{
    mEndless = "select count(*) from lag where ms >= (with recursive c(n) as (select 1 union all select n + 1 from c) "
               "select count(*) from c)";
    WriteRules();
    constexpr std::uint64_t WITHIN_THE_STATEMENT = 2000;
    const auto stopped = Detect(WITHIN_THE_STATEMENT);
    EXPECT_THAT(stopped.results, ElementsAre("T stopped", "U stopped"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
    EXPECT_THAT(mObserver->Lines("trouble"), IsEmpty());
    mEndless.clear();
    WriteRules();
    EXPECT_THAT(Detect().results, ElementsAre("T fault alarm derived external node code", "U"));
}

TEST_F(StoppedDetection, NamesEachEventThatWasNotAsked)
{
    mObserver->onEvent = [this] { mEngine->RequestStop(); };
    Detect();
    std::vector<std::string> open;
    for (const auto& check : mObserver->verdicts.front().open) {
        open.push_back(check.eventId + " " + Evidence::ReasonText(check.reason));
    }
    EXPECT_THAT(open, ElementsAre(
        "derived stopped", "external stopped", "node stopped", "code stopped", "calm stopped"));
    EXPECT_EQ(mObserver->verdicts.front().checks.Of(Evidence::Check::DECIDED), 1U);
    EXPECT_EQ(mObserver->verdicts.front().checks.Of(Evidence::Check::NOT_CHECKED), 5U);
}

TEST_F(StoppedDetection, AnswersTheSameWithoutAnObserver)
{
    mEngine->SetObserver(nullptr);
    EXPECT_THAT(Detect(1).results, ElementsAre("T stopped", "U stopped"));
    EXPECT_THAT(Detect().results, ElementsAre("T fault alarm derived external node code", "U"));
}

TEST_F(StoppedDetection, IsNotStoppedByARequestFromBefore)
{
    mEngine->RequestStop();
    EXPECT_THAT(Detect().results, ElementsAre("T fault alarm derived external node code", "U"));
    mEngine->RequestStop();
    EXPECT_THAT(Detect().results, ElementsAre("T fault alarm derived external node code", "U"));
}

TEST_F(StoppedDetection, IsStoppedFromAnotherThread)
{
    std::atomic<bool> hasBegun = false;
    std::atomic<bool> hasAsked = false;
    mObserver->onEvent = [&] {
        hasBegun = true;
        while (!hasAsked) {
            std::this_thread::yield();
        }
    };
    std::thread other([&] {
        while (!hasBegun) {
            std::this_thread::yield();
        }
        mEngine->RequestStop();
        hasAsked = true;
    });
    const auto stopped = Detect();
    other.join();
    EXPECT_THAT(stopped.results, ElementsAre("T stopped", "U stopped"));
}

// The moments differ from run to run; the thread sanitizer looks at all of them.
TEST_F(StoppedDetection, MayBeAskedToStopAtAnyMoment)
{
    const auto whole = Detect();
    std::atomic<bool> isDone = false;
    std::thread other([&] {
        while (!isDone) {
            mEngine->RequestStop();
            std::this_thread::yield();
        }
    });
    for (int round = 0; round < 5; ++round) {
        EXPECT_THAT(Detect().results, SizeIs(2));
    }
    isDone = true;
    other.join();
    EXPECT_EQ(Detect().results, whole.results);
}

TEST_F(StoppedDetection, IsStoppedFromASignalHandler)
{
    static Arborist* detecting = nullptr;
    detecting = mEngine.get();
    const auto before = std::signal(SIGTERM, [](int) { detecting->RequestStop(); });
    mObserver->onEvent = [] { std::raise(SIGTERM); };
    EXPECT_THAT(Detect().results, ElementsAre("T stopped", "U stopped"));
    std::signal(SIGTERM, before);
}

TEST_F(StoppedDetection, EndsWhenItsTimeIsOver)
{
    mSettings.Set(Settings::TIME_LIMIT, "0.0000001");
    EXPECT_THAT(Detect().results, ElementsAre("T stopped", "U stopped"));
    mSettings.Set(Settings::TIME_LIMIT, "");
    EXPECT_THAT(Detect().results, ElementsAre("T fault alarm derived external node code", "U"));
}

TEST_F(StoppedDetection, HasNoTimeLimitWhereTheSettingIsNone)
{
    for (const char* const text : {"", "0", "0.0", "soon", "-1", "1e300", "3600"}) {
        mSettings.Set(Settings::TIME_LIMIT, text);
        EXPECT_THAT(Detect().results, ElementsAre("T fault alarm derived external node code", "U")) << text;
    }
}

// A host that repairs from within its code runner relies on the record, whatever becomes of the detection.
TEST_F(StoppedDetection, DoesNotStopACallOfTheHostInside)
{
    bool isRecorded = false;
    mObserver->onEvent = [&] {
        mEngine->RequestStop();
        mLog.Clear();
        UpdateRepairDb("R9");
        isRecorded = mLog.Lines(FT::LEVEL_ERROR).empty();
    };
    EXPECT_THAT(Detect().results, ElementsAre("T stopped", "U stopped"));
    EXPECT_TRUE(isRecorded);
}

} // namespace
