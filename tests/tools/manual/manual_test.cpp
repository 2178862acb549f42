#include <fstream>
#include <iterator>
#include <random>
#include <regex>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/pattern.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/all_commands.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Lt;

using Words = std::vector<std::string>;

std::string Joined(const Words& words)
{
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

// The long options that a --help lists.
std::set<std::string> LongOptions(const Words& command)
{
    Words arguments = command;
    arguments.emplace_back("--help");
    const std::string help = RunArborist(arguments).out;
    static const std::regex option("\n  (?:-[^ -],)?(--[a-z-]+)");
    std::set<std::string> options;
    for (std::sregex_iterator found(help.begin(), help.end(), option), end; found != end; ++found) {
        options.insert((*found)[1]);
    }
    return options;
}

std::string ManPage(const Words& command)
{
    Words arguments = {"help", "--man"};
    arguments.insert(arguments.end(), command.begin(), command.end());
    return RunArborist(arguments).out;
}

TEST(ManualTest, EveryOptionStandsInTheManPageAndInTheCompletions)
{
    const auto commands = AllCommands();
    EXPECT_THAT(commands.size(), testing::Ge(10U));
    const std::string bash = RunArborist({"completion", "bash"}).out;
    const std::string zsh = RunArborist({"completion", "zsh"}).out;
    const std::string fish = RunArborist({"completion", "fish"}).out;
    for (const Words& command : commands) {
        const std::string page = std::regex_replace(ManPage(command), std::regex("\\\\-"), "-");
        const auto options = LongOptions(command);
        EXPECT_TRUE(options.count("--help") == 1) << Joined(command);
        const std::string words = command.empty() ? "arborist" : "arborist " + Joined(command);
        const auto lineOf = [&words](const std::string& script) {
            const auto at = script.find("'" + words + "') options=");
            return script.substr(at, script.find('\n', at) - at);
        };
        for (const std::string& option : options) {
            EXPECT_THAT(page, HasSubstr("\\fB" + option + "\\fR")) << words;
            EXPECT_THAT(lineOf(bash), HasSubstr(option)) << words;
            EXPECT_THAT(lineOf(zsh), HasSubstr(option)) << words;
            EXPECT_THAT(fish, HasSubstr(" -l " + option.substr(2) + " ")) << words;
        }
    }
}

std::set<std::string> OptionsIn(const std::string& text)
{
    static const std::regex option("--[a-z][a-z-]*");
    return {std::sregex_token_iterator(text.begin(), text.end(), option), std::sregex_token_iterator()};
}

std::string Page(const std::string& name)
{
    std::ifstream file(std::string(ARBORIST_SOURCE_DIR) + "/docs/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The synopses of docs/command.md: the text behind "arborist WORDS", or behind "RUN:", over all its lines.
class Synopses {
public:
    Synopses()
    {
        const std::string page = Page("command.md");
        const auto start = page.find("\n    arborist ");
        std::istringstream lines(page.substr(start, page.find("\nResults go to") - start));
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("    arborist ", 0) == 0 || line.find(": [") != std::string::npos) {
                mEntries.push_back(line.substr(4));
            } else if (!line.empty()) {
                mEntries.back() += line;
            }
        }
    }

    std::set<std::string> OptionsOf(const std::string& head) const
    {
        std::set<std::string> options;
        for (const std::string& entry : mEntries) {
            if (entry.rfind(head, 0) != 0) {
                continue;
            }
            options.merge(OptionsIn(entry));
            for (const char* group : {"RUN", "LOG"}) {
                if (entry.find("[" + std::string(group) + "]") != std::string::npos) {
                    options.merge(OptionsOf(group + std::string(": ")));
                }
            }
        }
        return options;
    }

private:
    std::vector<std::string> mEntries;
};

TEST(ManualTest, ThePageHasTheOptionsOfTheHelpAndTellsOfEach)
{
    const Synopses synopses;
    const std::string command = Page("command.md");
    const auto told = OptionsIn(command.substr(command.find("\nResults go to")) + Page("explain.md") + Page("batch.md")
        + Page("lint.md") + Page("cases.md") + Page("rules.md") + Page("sweep.md") + Page("redaction.md") + Page("compare.md")
        + Page("results.md") + Page("results-report.md"));
    for (const Words& words : AllCommands()) {
        auto options = LongOptions(words);
        options.erase("--help");
        if (words.empty() || options.empty()) {
            continue;
        }
        EXPECT_EQ(synopses.OptionsOf("arborist " + Joined(words) + " "), options) << Joined(words);
        for (const std::string& option : options) {
            EXPECT_EQ(told.count(option), 1U) << Joined(words) << " " << option;
        }
    }
}

TEST(ManualTest, HelpAndManPagesHaveEveryExitStatusOfThePage)
{
    const std::string page = Page("command.md");
    const std::string table = page.substr(page.find("## Exit statuses"), page.find("## Bundles") - page.find("## Exit statuses"));
    const std::string help = RunArborist({"--help"}).out;
    static const std::regex row("\n\\| ([0-9]) \\|");
    std::size_t rows = 0;
    for (std::sregex_iterator found(table.begin(), table.end(), row), end; found != end; ++found, ++rows) {
        EXPECT_THAT(help, HasSubstr("\n  " + std::string((*found)[1]) + "  "));
        EXPECT_THAT(ManPage({"test"}), HasSubstr("\n\\fB" + std::string((*found)[1]) + "\\fR\n"));
    }
    EXPECT_EQ(rows, 7U);
}

TEST(ManualTest, EveryManPageHasTheSectionsOfOne)
{
    for (const Words& command : AllCommands()) {
        const std::string page = ManPage(command);
        for (const char* section : {"NAME", "SYNOPSIS", "DESCRIPTION", "EXIT STATUS", "ENVIRONMENT", "FILES", "EXAMPLES"}) {
            const auto start = page.find("\n.SH " + std::string(section) + "\n");
            ASSERT_NE(start, std::string::npos) << Joined(command) << " " << section;
            EXPECT_NE(page.compare(page.find('\n', start + 1), 5, "\n.SH "), 0) << Joined(command) << " " << section;
        }
    }
    const std::string detect = ManPage({"detect"});
    EXPECT_THAT(detect.substr(0, detect.find("\n.SH DESCRIPTION")), HasSubstr("\\-\\-batch\\fR \\fILIST\\fR"));
}

TEST(ManualTest, EveryHelpHasAnExample)
{
    for (Words command : AllCommands()) {
        command.emplace_back("--help");
        EXPECT_THAT(RunArborist(command).out, HasSubstr("Example")) << Joined(command);
    }
}

TEST(ManualTest, TheFormatterHasNoComplaintAboutAnyPage)
{
    if (RunProcess({"sh", "-c", "command -v groff"}).status != 0) {
        GTEST_SKIP() << "groff is not installed";
    }
    const TempDir dir;
    ASSERT_EQ(RunArborist({"help", "--man-to", "."}).status, 0);
    EXPECT_TRUE(dir.Has("arborist.1"));
    EXPECT_TRUE(dir.Has("arborist-log-import.1"));
    EXPECT_THAT(RunProcess({"sh", "-c", "for page in *.1; do groff -man -ww -Tutf8 -z $page; done"}).err, IsEmpty());
    if (RunProcess({"sh", "-c", "command -v man"}).status == 0) {
        EXPECT_THAT(RunProcess({"sh", "-c", "for page in *.1; do man --warnings -Tutf8 -Z -l $page > /dev/null; done"}).err,
            IsEmpty());
    }
}

TEST(ManualTest, HelpIsThatOfTheCommand)
{
    EXPECT_THAT(RunArborist({"help", "log", "import"}).out, HasSubstr("--to LOG.DB"));
    const auto mistyped = RunArborist({"help", "log", "improt"});
    EXPECT_EQ(mistyped.err, "arborist: no such command: arborist log improt; did you mean \"import\"?\n");
    EXPECT_EQ(mistyped.status, 2);
    EXPECT_EQ(RunArborist({"completion", "tcsh"}).status, 2);
    EXPECT_EQ(RunArborist({"help", "--man-to", "no/such/folder"}).status, 2);
}

TEST(ManualTest, TheVersionsOfTheLibrariesAreOneJsonObject)
{
    const auto versions = RunArborist({"--version", "--json"}).out;
    EXPECT_EQ(RunArborist({"--json", "--version"}).out, versions);
    EXPECT_THAT(versions,
        MatchesPattern("\\{\"schema\": \"arborist.version.1\", \"arborist\": \"[0-9.]+\", \"libraries\": \\{\"sqlite\": "
                     "\"[0-9.]+\", \"sqliteLinked\": \"[0-9.]+\", \"tinyxml2\": \"[0-9.]+\", \"jsoncpp\": \"[0-9.]+\", "
                     "\"zlib\": \"[0-9.]+\", \"minizip\": \"[0-9.]+\", \"libsodium\": \"[0-9.]+\"\\}\\}\n"));
}

// ---- No input ends the command in any other way than by an exit status. ----

TEST(GarbageTest, ArgumentsEndInAnExitStatusOfTheTable)
{
    const TempDir dir;
    WriteHotBundle(dir, "b");
    const Words pieces = {"detect", "query", "repair", "log", "show", "import", "help", "b", "bundle.json", "-", "--",
        "-0", "--json", "--batch", "--jobs", "--now", "--tz", "--rules", "-1", "99999999999999999999", "\xff\xfe", "",
        "--timeout", "nan", "--=", "-x", "--man", "completion", "--version", std::string(5000, 'x'), "%s%n", "b/bundle.json"};
    const unsigned int seed = std::random_device()();
    std::mt19937 random(seed);
    for (int run = 0; run < 40; ++run) {
        Words arguments;
        for (std::size_t count = random() % 6; count > 0; --count) {
            arguments.push_back(pieces[random() % pieces.size()]);
        }
        const auto result = RunArborist(arguments);
        EXPECT_THAT(result.status, Lt(5)) << "seed " << seed << ": " << Joined(arguments) << "\n" << result.err;
    }
}

TEST(GarbageTest, FilesEndInAnExitStatusOfTheTable)
{
    const TempDir dir;
    const unsigned int seed = std::random_device()();
    std::mt19937 random(seed);
    WriteHotBundle(dir, "b");
    const Words files = {"b/bundle.json", "b/rules/FaultTrees.xml", "b/rules/FaultTreeRules.xml", "b/temperature",
        "b/programdata/Comms/Lumbra/workDir/0/log.db"};
    for (int run = 0; run < 15; ++run) {
        WriteHotBundle(dir, "b");
        const std::string& file = files[random() % files.size()];
        std::string content = random() % 2 == 0 && dir.Has(file) ? dir.Read(file) : std::string(random() % 300, ' ');
        for (char& byte : content) {
            byte = random() % 8 == 0 ? static_cast<char>(random() % 256) : byte;
        }
        dir.Write(file, content);
        for (const Words& arguments : {Words{"detect", "b"}, Words{"log", "show", file}, Words{"query", "b", "x"},
                 Words{"repair", "list", "b"}, Words{"detect", file}}) {
            const auto result = RunArborist(arguments);
            EXPECT_THAT(result.status, Lt(5)) << "seed " << seed << ": " << file << ", " << Joined(arguments) << "\n"
                                              << result.err;
        }
    }
}

} // namespace
