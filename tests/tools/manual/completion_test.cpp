#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::IsEmpty;

/// A line up to the cursor, and the one word that it is completed to.
struct LineCase {
    const char* name;
    std::vector<std::string> words;
    const char* expected;
};
void PrintTo(const LineCase& line, std::ostream* out) { *out << line.name; }

/// Runs the scripts in their shells. Skips a shell that is not installed.
class CompletionOf : public testing::TestWithParam<LineCase> {
protected:
    CompletionOf() { mDir.Write("some-bundle/bundle.json", ""); }

    static bool IsThere(const std::string& shell)
    {
        return RunProcess({"sh", "-c", "command -v " + shell}).status == 0;
    }

    std::string ScriptFor(const std::string& shell, const std::string& name) const
    {
        return mDir.Write(name, RunArborist({"completion", shell}).out);
    }

    static std::string Line()
    {
        std::string line = "arborist";
        for (const std::string& word : GetParam().words) {
            line += " " + word;
        }
        return line;
    }

    TempDir mDir;
};

TEST_P(CompletionOf, BashOffersTheWord)
{
    if (!IsThere("bash")) {
        GTEST_SKIP() << "bash is not installed";
    }
    ScriptFor("bash", "completion");
    const auto result = RunProcess({"bash", "--norc", "-c", "source completion; COMP_WORDS=(" + Line() + "); COMP_CWORD="
        + std::to_string(GetParam().words.size()) + "; _arborist; echo \"${COMPREPLY[*]}\""});
    EXPECT_EQ(result.out, std::string(GetParam().expected) + "\n");
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_P(CompletionOf, FishOffersTheWord)
{
    if (!IsThere("fish")) {
        GTEST_SKIP() << "fish is not installed";
    }
    ScriptFor("fish", "completion");
    const auto result = RunProcess({"fish", "--no-config", "-c", "source completion; complete -C '" + Line() + "'"},
        {.environment = {{"HOME", mDir.Path("home")}, {"XDG_CONFIG_HOME", mDir.Path("home")}}});
    // Output is a word, a tab and its description; a folder ends in a separator.
    EXPECT_EQ(result.out.substr(0, result.out.find_first_of("\t/\n")), GetParam().expected);
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1) << result.out;
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_P(CompletionOf, ZshPutsTheWordIntoTheLine)
{
    if (!IsThere("zsh")) {
        GTEST_SKIP() << "zsh is not installed";
    }
    ScriptFor("zsh", "functions/_arborist");
    EXPECT_THAT(RunProcess({"zsh", "-n", "functions/_arborist"}).err, IsEmpty());
    // Runs a shell on a terminal of its own and waits for its output; "r''eady" distinguishes the output from the
    // command that prints it.
    const std::string script = "zmodload zsh/zpty\n"
        "zpty shell zsh -f -i\n"
        "zpty -w shell \"PS1=; fpath=($PWD/functions \\$fpath); autoload -Uz compinit; compinit -u -D; echo r''eady\"\n"
        "zpty -r shell seen '*ready*'\n"
        "zpty -w -n shell \"$1\"$'\\t'\n"
        "zpty -r -m shell seen \"*$2*\" && print -r -- found\n"
        "zpty -d shell\n";
    const std::string line = Line();
    const std::string completed = line.substr(0, line.rfind(' ') + 1) + GetParam().expected;
    const auto result = RunProcess({"timeout", "60", "zsh", "-f", "-c", script, "zsh", line, completed},
        {.environment = {{"TERM", "dumb"}, {"HOME", mDir.Path("functions")}}});
    EXPECT_EQ(result.out, "found\n");
    EXPECT_THAT(result.err, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Table, CompletionOf, testing::Values(
    LineCase{"Command", {"det"}, "detect"},
    LineCase{"CommandBelow", {"log", "im"}, "import"},
    LineCase{"Option", {"detect", "--orde"}, "--ordered"},
    LineCase{"OptionBehindArguments", {"bundle", "pack", "some-bundle", "--wind"}, "--window"},
    LineCase{"ValueOfAnOption", {"graph", "some-bundle", "--format", "op"}, "openpsa"},
    LineCase{"WordOfAnArgument", {"completion", "zs"}, "zsh"},
    LineCase{"OptionOfAll", {"--versi"}, "--version"},
    LineCase{"File", {"detect", "some-"}, "some-bundle"}), CaseName());

// Bash splits a word at the sign.
TEST(CompletionTest, BashOffersValuesBehindAnEqualsSign)
{
    const TempDir dir;
    dir.Write("completion", RunArborist({"completion", "bash"}).out);
    for (const auto& [words, count] : {std::pair("explain --color = al", 4), std::pair("explain --log-level =", 3)}) {
        const auto result = RunProcess({"bash", "--norc", "-c", "source completion; COMP_WORDS=(arborist "
            + std::string(words) + "); COMP_CWORD=" + std::to_string(count) + "; _arborist; echo \"${COMPREPLY[*]}\""});
        EXPECT_EQ(result.out, count == 4 ? "always\n" : "trace debug info warn error fatal none\n");
    }
}

} // namespace
