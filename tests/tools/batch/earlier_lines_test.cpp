#include "tools/arborist/batch/earlier_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/results_db/result_lines.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::ExitStatus;
using diagnosis::command::BundleAnswer;
using diagnosis::command::BundleOutcome;
using diagnosis::command::EarlierLines;

class EarlierLinesTest : public testing::Test {
protected:
    std::optional<std::string> Read(const std::string& text, const std::vector<std::string>& bundles)
    {
        mDir.Write("earlier", text);
        return mLines.Read("earlier", bundles);
    }

    std::optional<BundleAnswer> AnswerOf(std::size_t bundle)
    {
        std::optional<BundleAnswer> answer = BundleAnswer();
        EXPECT_TRUE(mLines.AnswerOf(bundle, answer));
        return answer;
    }

    TempDir mDir;
    EarlierLines mLines;
};

TEST_F(EarlierLinesTest, AnAnswerIsThatOfItsLine)
{
    const std::string fault = LineOf("a").Fault("T", {"E"}).NoFault("U").Text();
    EXPECT_FALSE(Read(LineOf("b").Undecided("T", "E").Text() + fault, {"a", "b", "c"}));
    EXPECT_EQ(mLines.Count(), 2U);
    const auto first = AnswerOf(0);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->line + "\n", fault);
    EXPECT_EQ(first->outcome, BundleOutcome::FAULT);
    EXPECT_EQ(first->status, ExitStatus::SUCCESS);
    EXPECT_EQ(AnswerOf(1)->outcome, BundleOutcome::UNDECIDED);
    EXPECT_FALSE(AnswerOf(2));
}

TEST_F(EarlierLinesTest, AFailureHasTheStatusOfItsCode)
{
    EXPECT_FALSE(Read(LineOf("a").Failed("internal").Text() + LineOf("b").Failed("of_a_later_version").Text(), {"a", "b"}));
    EXPECT_EQ(AnswerOf(0)->status, ExitStatus::INTERNAL);
    EXPECT_EQ(AnswerOf(1)->status, ExitStatus::INPUT);
    EXPECT_EQ(AnswerOf(1)->code, "of_a_later_version");
}

#if defined(__linux__)
TEST_F(EarlierLinesTest, AFileThatCannotBeOpenedIsTold)
{
    const std::string tooLong(5000, 'x');
    EXPECT_EQ(mLines.Read(tooLong, {}), tooLong + ": can't be read: File name too long");
    EXPECT_EQ(mLines.Read(".", {}), ".: can't be read: is a folder");
    EXPECT_EQ(mLines.Read("/dev/null", {}), "/dev/null: can't be read: is no plain file");
    EXPECT_FALSE(mLines.Read("nowhere", {}));
}
#endif

TEST_F(EarlierLinesTest, ALineThatIsNoLongerThereHasNoAnswer)
{
    EXPECT_FALSE(Read(LineOf("a").NoFault("T").Text(), {"a"}));
    mDir.Write("earlier", "cut");
    std::optional<BundleAnswer> answer;
    EXPECT_FALSE(mLines.AnswerOf(0, answer));
}

} // namespace
