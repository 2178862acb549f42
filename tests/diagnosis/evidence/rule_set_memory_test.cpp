#include "diagnosis/evidence/rule_set_memory.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "diagnosis/detection/detection.h"
#include "diagnosis/digest/digest.h"
#include "tests/diagnosis/lint/sample.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::RuleSetMemory;
using diagnosis::rule_source::RuleSetPaths;
using testing::Contains;

const RuleSetPaths PATHS = {"FaultTrees.xml", "FaultTreeRules.xml"};
constexpr char TREES[] = "<F><T/></F>";
constexpr char RULES[] = "<R/>";

std::vector<std::string> IdsOf(const std::vector<diagnosis::Warning>& warnings)
{
    std::vector<std::string> ids;
    for (const diagnosis::Warning& warning : warnings) {
        ids.push_back(warning.id);
    }
    return ids;
}

class RuleSetMemoryTest : public testing::Test {
protected:
    void WriteFiles(const std::string& folder = ".") const
    {
        mDir.Write(folder + "/FaultTrees.xml", TREES);
        mDir.Write(folder + "/FaultTreeRules.xml", RULES);
    }

    auto Check(const RuleSetPaths& paths, const std::string& tag) { return mMemory.Check(paths, tag, mMemory.Read(paths)); }

    std::shared_ptr<LoadedRuleSet> KeptOrLoad(const std::string& tag, const std::string& folder = ".")
    {
        DetectInfo info;
        info.mRuleFileDir = folder;
        info.mTreeTag = tag;
        const RuleSetPaths paths{folder + "/FaultTrees.xml", folder + "/FaultTreeRules.xml"};
        return mMemory.KeptOrLoad(info, paths, mMemory.Read(paths));
    }

    TempDir mDir;
    LogCapture mLog;
    RuleSetMemory mMemory;
};

TEST_F(RuleSetMemoryTest, ChecksEqualFilesUnderOneTagOnceAndOthersAnew)
{
    WriteFiles();
    WriteFiles("other");
    const auto known = Check(PATHS, "Laptop");
    EXPECT_EQ(Check(PATHS, "Laptop"), known);
    EXPECT_NE(Check(PATHS, "Other"), known);
    std::filesystem::current_path("other");
    EXPECT_EQ(Check(PATHS, "Laptop"), known);
    mDir.Write("other/FaultTreeRules.xml", "<R> </R>");
    EXPECT_NE(Check(PATHS, "Laptop"), known);
}

TEST_F(RuleSetMemoryTest, KnowsEveryRuleSetOfAFolderThatWasCheckedBefore)
{
    SampleNamed("A303").CopyTo(mDir, "bad");
    for (const char* file : {"FaultTrees.xml", "FaultTreeRules.xml"}) {
        mDir.Write(std::string("rules/") + file, mDir.Read(file));
        mDir.Write(std::string("rules/P_") + file, mDir.Read(file));
    }
    mDir.Write("rules/Q_FaultTrees.xml", "<F><One/><Two/></F>");
    mDir.Write("rules/OtherFaultTrees.xml", "<F><Three/></F>"); // no file of a rule set
    mMemory.CheckFolder("rules");
    EXPECT_EQ(mMemory.Count(), 4U);
    for (const std::string start : {"rules/", "rules/P_"}) {
        diagnosis::WarningList told;
        Check({start + "FaultTrees.xml", start + "FaultTreeRules.xml"}, "Laptop")->AddTo(told);
        EXPECT_THAT(IdsOf(told.Told()), Contains("A303"));
    }
    Check({"rules/Q_FaultTrees.xml", "rules/Q_FaultTreeRules.xml"}, "Two");
    EXPECT_EQ(mMemory.Count(), 4U);
    mMemory.CheckFolder("none");
    EXPECT_EQ(mMemory.Count(), 4U);
}

TEST_F(RuleSetMemoryTest, RemembersNoMoreOfAFolderThanThereIsRoomFor)
{
    std::string tags;
    for (int i = 0; i < 70; ++i) {
        tags += "<T" + std::to_string(i) + "/>";
    }
    mDir.Write("FaultTrees.xml", "<F>" + tags + "</F>");
    mMemory.CheckFolder(".");
    EXPECT_EQ(mMemory.Count(), 64U);
}

TEST_F(RuleSetMemoryTest, TellsEveryBundleOfARememberedRuleSet)
{
    SampleNamed("A303").CopyTo(mDir, "bad");
    mDir.Write("bundle.json",
        R"({"detectScene": 1, "treeTag": "Laptop", "ruleFileDir": ".", "now": 1700000000, "tz": "UTC0"})");
    diagnosis::DetectionOptions options;
    options.ruleSets = std::make_shared<RuleSetMemory>();
    for (const bool isForLine : {false, true, true}) {
        options.isForLine = isForLine;
        const auto report = diagnosis::RunDetection({"b", mDir.Path()}, options);
        EXPECT_THAT(IdsOf(report.warnings), Contains("A303"));
        EXPECT_EQ(options.ruleSets->Count(), 1U);
    }
}

TEST_F(RuleSetMemoryTest, FilesAreReadOnceForDigestDetectionAndCheck)
{
    SampleNamed("A303").CopyTo(mDir, "good");
    std::string rules = mDir.Read("FaultTreeRules.xml");
    mDir.Write("FaultTreeRules.xml", rules.insert(rules.find("<Event>") + 6, " unknown=\"1\"")); // finding A104
    mDir.Write("bundle.json",
        R"({"detectScene": 1, "treeTag": "Laptop", "ruleFileDir": ".", "now": 1700000000, "tz": "UTC0"})");
    diagnosis::DetectionOptions options;
    options.isForLine = true;
    options.ruleSets = std::make_shared<RuleSetMemory>();
    bool isAsked = false;
    options.codeRunner.ask = [&](const std::string&) {
        std::filesystem::remove(mDir.Path("FaultTreeRules.xml"));
        return isAsked = true;
    };
    const auto report = diagnosis::RunDetection({"b", mDir.Path()}, options);
    EXPECT_TRUE(isAsked);
    EXPECT_THAT(IdsOf(report.warnings), Contains("A104"));
}

TEST_F(RuleSetMemoryTest, HashesEqualFilesOnce)
{
    WriteFiles();
    WriteFiles("other");
    mMemory.CheckFolder(".");
    const std::string digest = "sha256:" + diagnosis::Sha256HexOf({TREES, RULES});
    EXPECT_EQ(mMemory.Read(PATHS).GetDigest(), digest);
    EXPECT_EQ(mMemory.Read({"other/FaultTrees.xml", "other/FaultTreeRules.xml"}).GetDigest(), digest);
    EXPECT_EQ(mMemory.CountDigests(), 1U);
    EXPECT_EQ(mMemory.Read({"FaultTrees.xml", "nowhere"}).GetDigest(), "");
}

TEST_F(RuleSetMemoryTest, HoldsTheRuleSetsOfAFolderWhateverBecomesOfTheFiles)
{
    WriteFiles();
    mMemory.CheckFolder(".");
    const std::string digest = mMemory.Read(PATHS).GetDigest();
    std::filesystem::remove("FaultTreeRules.xml");
    const diagnosis::HeldRuleSet* const held = mMemory.FindHeld(".", "", "T");
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(held->digest, digest);
    EXPECT_NE(held->warnings, nullptr);
    EXPECT_NE(held->loaded, nullptr);
    EXPECT_EQ(mMemory.FindHeld(".", "P", "T"), nullptr);
    EXPECT_EQ(mMemory.FindHeld("other", "", "T"), nullptr);
    EXPECT_EQ(mMemory.FindHeld(".", "", "Other"), nullptr);
}

TEST_F(RuleSetMemoryTest, HoldsNoRuleSetWithAFileThatCannotBeRead)
{
    mDir.Write("FaultTrees.xml", TREES);
    mMemory.CheckFolder(".");
    EXPECT_EQ(mMemory.FindHeld(".", "", "T"), nullptr);
}

TEST_F(RuleSetMemoryTest, KeepsLoadedRuleSetsAsLongAsNamesAndFilesAreTheSame)
{
    WriteFiles();
    EXPECT_EQ(KeptOrLoad("T"), nullptr);
    mMemory.KeepLoaded();
    const auto first = KeptOrLoad("T");
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(KeptOrLoad("T"), first);
    const auto ofOtherTag = KeptOrLoad("Other");
    EXPECT_NE(ofOtherTag, first);
    mDir.Write("FaultTreeRules.xml", "<R> </R>");
    const auto ofOtherFile = KeptOrLoad("T");
    EXPECT_NE(ofOtherFile, first);
    WriteFiles();
    EXPECT_EQ(KeptOrLoad("T"), first); // bundles of two kinds may take turns
    EXPECT_EQ(KeptOrLoad("Other"), ofOtherTag);
    std::filesystem::remove("FaultTreeRules.xml");
    EXPECT_EQ(KeptOrLoad("T"), nullptr);
}

TEST_F(RuleSetMemoryTest, KeepsTheLoadedRuleSetOfAnotherFolderOfTheSameNameAndFiles)
{
    WriteFiles("one/rules");
    WriteFiles("two/rules");
    mMemory.KeepLoaded();
    std::filesystem::current_path("one");
    const auto loaded = KeptOrLoad("T", "rules");
    std::filesystem::current_path("../two");
    EXPECT_EQ(KeptOrLoad("T", "rules"), loaded);
}

TEST_F(RuleSetMemoryTest, LetsTheOldestLoadedRuleSetsGoBeyondFour)
{
    WriteFiles();
    mMemory.KeepLoaded();
    std::vector<std::weak_ptr<LoadedRuleSet>> loaded;
    for (const char* const tag : {"A", "B", "C", "D", "E"}) {
        loaded.push_back(KeptOrLoad(tag));
    }
    EXPECT_TRUE(loaded[0].expired());
    EXPECT_EQ(KeptOrLoad("B"), loaded[1].lock());
    EXPECT_EQ(KeptOrLoad("E"), loaded[4].lock());
}

TEST_F(RuleSetMemoryTest, LetsLoadedRuleSetsGoForALargeOne)
{
    WriteFiles();
    mMemory.KeepLoaded();
    const std::weak_ptr<LoadedRuleSet> small = KeptOrLoad("T");
    mDir.Write("FaultTrees.xml", "<F><T/>" + std::string(std::size_t{17} << 20, ' ') + "</F>");
    const auto large = KeptOrLoad("T");
    EXPECT_TRUE(small.expired());
    EXPECT_EQ(KeptOrLoad("T"), large);
}

TEST_F(RuleSetMemoryTest, LoadsNothingOfFilesThatChangeMeanwhile)
{
    WriteFiles();
    mMemory.KeepLoaded();
    const diagnosis::RuleSetReading before = mMemory.Read(PATHS);
    mDir.Write("FaultTreeRules.xml", "<R> </R>");
    DetectInfo info;
    info.mRuleFileDir = ".";
    info.mTreeTag = "T";
    EXPECT_EQ(mMemory.KeptOrLoad(info, PATHS, before), nullptr);
    WriteFiles();
    EXPECT_NE(mMemory.KeptOrLoad(info, PATHS, before), nullptr);
}

TEST_F(RuleSetMemoryTest, TellsRuleSetsWithOneByteOfDifferenceApart)
{
    for (int round = 0; round < 2; ++round) {
        for (int number = 0; number < 20; ++number) { // more than are kept
            const std::string trees = "<F" + std::string(1, static_cast<char>('a' + number)) + "/>";
            mDir.Write("FaultTrees.xml", trees);
            mDir.Write("FaultTreeRules.xml", RULES);
            EXPECT_EQ(mMemory.Read(PATHS).GetDigest(), "sha256:" + diagnosis::Sha256HexOf({trees, RULES}));
        }
    }
    EXPECT_EQ(mMemory.CountDigests(), 40U);
}

} // namespace
