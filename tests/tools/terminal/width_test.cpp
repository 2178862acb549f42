#include "tools/arborist/terminal/width.h"

#include <sstream>

#include <gtest/gtest.h>

#include "tests/tools/all_commands.h"
#include "tests/tools/command_bundle.h"

namespace {

using namespace diagnosis::command;

TEST(WrapHelpTest, BreaksADescriptionBelowItsFirstColumn)
{
    EXPECT_EQ(WrapHelp("  --json      One JSON object a line\n", 30),
              "  --json      One JSON object\n"
              "              a line\n");
}

TEST(WrapHelpTest, BreaksAParagraphAtTheMargin)
{
    EXPECT_EQ(WrapHelp("one two three four\n", 9), "one two\nthree\nfour\n");
}

TEST(WrapHelpTest, LeavesExamplesAndLongWordsWhole)
{
    EXPECT_EQ(WrapHelp("  arborist detect one two three\n", 12), "  arborist detect one two three\n");
    EXPECT_EQ(WrapHelp("a-word-of-some-length\n", 9), "a-word-of-some-length\n");
}

TEST(WrapHelpTest, LeavesShortLinesAsTheyAre)
{
    EXPECT_EQ(WrapHelp("  -h      Help\n\nExamples:\n", 20), "  -h      Help\n\nExamples:\n");
}

TEST(TerminalWidthTest, HelpOfACommandFitsTheTerminal)
{
    const auto result = RunOnTerminal({"sh", "-c", "stty cols 60 <&1; '" ARBORIST_COMMAND "' detect --help"});
    EXPECT_NE(result.out.find("Diagnose as of this moment,"), std::string::npos);
    std::size_t longest = 0;
    for (std::size_t start = 0, end = 0; start < result.out.size(); start = end + 1) {
        end = std::min(result.out.find('\n', start), result.out.size());
        if (result.out.compare(start, 2, "  ") != 0 || result.out.compare(start, 3, "   ") == 0) {
            longest = std::max(longest, end - start);
        }
    }
    EXPECT_LE(longest, 61U); // a terminal adds a carriage return
}

TEST(TerminalWidthTest, HelpIntoAPipeHasEightyColumns)
{
    for (std::vector<std::string> command : AllCommands()) {
        command.emplace_back("--help");
        std::istringstream help(RunArborist(command).out);
        for (std::string line; std::getline(help, line);) {
            const bool isExample = line.rfind("  ", 0) == 0 && line.find("arborist ") != std::string::npos;
            EXPECT_TRUE(line.size() <= 80 || isExample) << line;
        }
    }
}

} // namespace
