// Parsing a second time, and on which threads a parse runs.

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/loading/fault_tree_parser.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using testing::ElementsAre;
using State = Evidence::RuleSetFileState;

class SecondParseTest : public testing::Test {
protected:
    void Write(const std::string& name) const
    {
        mDir.Write("FaultTrees.xml", TreeXml("jank").Version(name).Tree(name, Or({Basic("A")})).Text());
        mDir.Write("FaultTreeRules.xml", RuleXml("jank").Rule(CodeRuleXml(name, "850")).Text());
    }

    // The trees, the version of their file, and the rules.
    std::string Held() const
    {
        std::string text;
        for (const auto& tree : mParser.GetFaultTrees()) {
            text += tree->GetId() + " ";
        }
        text += mParser.GetTreeFileVersion();
        for (const auto& [name, rule] : mParser.GetRuleMap()) {
            text += " " + name;
        }
        return text;
    }

    TempDir mDir;
    FaultTreeParser mParser{DetectInfoFor(mDir, "jank")};
};

TEST_F(SecondParseTest, ReplacesWhatTheFirstRead)
{
    const LogCapture log;
    Write("first");
    mParser.StartParse();
    EXPECT_EQ(Held(), "first first first");
    Write("second");
    mParser.StartParse();
    EXPECT_EQ(Held(), "second second second");
}

TEST_F(SecondParseTest, TreeFileThatIsGoneLeavesTheTreesAndTheirVersion)
{
    const LogCapture log;
    Write("first");
    mParser.StartParse();
    Write("second");
    std::filesystem::remove("FaultTrees.xml");
    mParser.StartParse();
    EXPECT_EQ(Held(), "first first second");
    EXPECT_EQ(mParser.GetTreeFileReport().state, State::MISSING);
}

TEST_F(SecondParseTest, TreeFileThatIsBrokenLeavesTheTreesAndTheirVersion)
{
    const LogCapture log;
    Write("first");
    mParser.StartParse();
    Write("second");
    mDir.Write("FaultTrees.xml", "<broken");
    mParser.StartParse();
    EXPECT_EQ(Held(), "first first second");
    EXPECT_EQ(mParser.GetTreeFileReport().state, State::MALFORMED);
}

TEST_F(SecondParseTest, RuleFileThatIsGoneOrBrokenLeavesTheRules)
{
    const LogCapture log;
    Write("first");
    mParser.StartParse();
    Write("second");
    std::filesystem::remove("FaultTreeRules.xml");
    mParser.StartParse();
    EXPECT_EQ(Held(), "second second first");
    mDir.Write("FaultTreeRules.xml", "<broken");
    mParser.StartParse();
    EXPECT_EQ(Held(), "second second first");
    EXPECT_TRUE(mParser.IsParseDone());
}

// Records for each line which thread wrote it, and how many lines that thread had written. A later thread may get the
// number of one that has ended, but not its count.
class ThreadLogger : public FT::ILogger {
public:
    explicit ThreadLogger(std::vector<std::string>& lines) : mLines(lines) {}

    void Print(unsigned int level, const std::string&, va_list) override
    {
        thread_local int linesOfThread = 0;
        ++linesOfThread;
        const bool isCaller = std::this_thread::get_id() == mCaller;
        mLines.push_back(std::to_string(level) +
            (isCaller ? " by the caller" : " by a thread, line " + std::to_string(linesOfThread)));
    }

private:
    std::vector<std::string>& mLines;
    std::thread::id mCaller = std::this_thread::get_id();
};

TEST_F(SecondParseTest, EachFileIsReadOnAThreadOfItsOwn)
{
    mDir.Write("FaultTrees.xml", TreeXml("jank").Tree("T", Or({Basic("A")})).Text());
    mDir.Write("FaultTreeRules.xml", "<broken");
    const LogCapture defaultLoggerAtTheEnd;
    std::vector<std::string> lines;
    FT::Log::GetInstance().SetUserLogger(std::make_unique<ThreadLogger>(lines));
    mParser.StartParse();
    // The path of the tree file, the path of the rule file, and the line that the latter can't be read.
    EXPECT_THAT(lines, ElementsAre("1 by a thread, line 1", "1 by the caller", "4 by a thread, line 1"));
}

} // namespace
