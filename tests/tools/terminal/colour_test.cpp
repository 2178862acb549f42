#include <filesystem>
#include <map>
#include <regex>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/tools/all_commands.h"
#include "tests/tools/command_bundle.h"

namespace {

using Words = std::vector<std::string>;

// One call of a command, and whether its results have something to colour; its messages always have.
struct View {
    Words command;
    Words arguments;
    bool isColoured;
};

void PrintTo(const View& view, std::ostream* out)
{
    for (const Words& words : {view.command, view.arguments}) {
        for (const std::string& word : words) {
            *out << word << " ";
        }
    }
}

// In a folder with the bundle "b", which has a fault, a warning, an open check and a log.
std::vector<View> AllViews()
{
    return {
        {{"detect"}, {"b"}, true},
        {{"detect"}, {"b", "--tree"}, true},
        {{"detect"}, {"b", "--explain"}, true},
        {{"detect"}, {"b", "--json"}, false},
        {{"explain"}, {"b"}, true},
        {{"explain"}, {"b", "--brief"}, true},
        {{"explain"}, {"b", "--minimal"}, true},
        {{"explain"}, {"b", "--near-misses", "3"}, true},
        {{"explain"}, {"b", "--json"}, false},
        {{"query"}, {"b", "code"}, false},
        {{"query"}, {"b", "code", "--json"}, false},
        {{"repair", "record"}, {"b", "R"}, false},
        {{"repair", "record"}, {"b", "R", "--json"}, false},
        {{"repair", "list"}, {"b"}, false},
        {{"repair", "list"}, {"b", "--json"}, false},
        {{"sweep"}, {"b"}, false},
        {{"sweep"}, {"b", "--json"}, false},
        {{"report"}, {"b"}, false},
        {{"graph"}, {"b", "--format", "mermaid"}, false},
        {{"graph"}, {"b", "--format", "dot"}, false},
        {{"graph"}, {"b", "--format", "openpsa"}, false},
        {{"lint"}, {"rules"}, true},
        {{"lint"}, {"rules", "--format", "short"}, false},
        {{"lint"}, {"rules", "--json"}, false},
        {{"lint"}, {"--list"}, false},
        {{"lint"}, {"--explain", "A309"}, false},
        {{"rules", "list"}, {"rules"}, true},
        {{"rules", "show"}, {"rules", "hot"}, true},
        {{"rules", "stats"}, {"rules"}, true},
        {{"rules", "diff"}, {"rules", "changed"}, true},
        {{"rules", "reach"}, {"rules", "--device", "b/bundle.json"}, true},
        {{"rules", "new"}, {"new"}, false},
        {{"rules", "import"}, {"psa.xml"}, false},
        {{"rules", "schema"}, {"--tag", "Tag", "rules"}, false},
        {{"test"}, {"sample"}, true},
        {{"log", "import"}, {"events.jsonl", "--to", "new.db"}, false},
        {{"log", "show"}, {"log.db"}, false},
        {{"log", "inspect"}, {"log.db"}, false},
        {{"log", "slice"}, {"log.db", "--to", "slice.db"}, false},
        {{"bundle", "pack"}, {"b", "--output", "packed.zip"}, false},
        {{"bundle", "info"}, {"b"}, false},
        {{"bundle", "verify"}, {"b"}, true},
        {{"bundle", "verify"}, {"b", "--json"}, false},
        {{"results", "import"}, {"lines.jsonl", "--to", "new"}, false},
        {{"results", "diff"}, {"lines.jsonl", "lines.jsonl"}, false},
        {{"results", "report"}, {"r.db", "--json"}, false},
        {{"compare"}, {"--rules", "rules", "--rules", "changed", "--batch", "list"}, true},
        {{"help"}, {"detect"}, false},
        {{"completion"}, {"bash"}, false},
    };
}

bool HasEscapes(const std::string& text)
{
    return text.find('\x1b') != std::string::npos;
}

std::string WithoutEscapes(const std::string& text)
{
    static const std::regex escape("\x1b\\[[0-9;]*m");
    return std::regex_replace(text, escape, "");
}

// Without what a run took, too.
std::string WithoutTimesOrRate(const std::string& text)
{
    static const std::regex rate("in [0-9]+ s, [0-9]+ a second|run time: [^\n]*");
    return std::regex_replace(WithoutTimes(text), rate, "");
}

class ColourTest : public testing::Test {
protected:
    ColourTest()
    {
        WriteHotBundle(mDir, "b", BundleJson(R"(, "now": 1716200000, "unknownKey": 1)"));
        std::filesystem::copy("b/rules", "rules");
        std::filesystem::copy("b/rules", "changed");
        mDir.Write("changed/FaultTreeRules.xml",
            std::regex_replace(mDir.Read("rules/FaultTreeRules.xml"), std::regex("70"), "71"));
        mDir.Write("psa.xml", "<opsa-mef/>");
        mDir.Write("list", "b\n");
        mDir.Write("lines.jsonl", RunArborist({"detect", "--json", "b"}).out);
        EXPECT_EQ(RunArborist({"results", "import", "lines.jsonl", "--to", "r.db"}).status, 0);
        mDir.Write("events.jsonl", R"({"time": 5, "event": 1})" "\n");
        EXPECT_EQ(RunArborist({"rules", "new", "sample"}).status, 0);
        EXPECT_EQ(RunArborist({"log", "import", "events.jsonl", "--to", "log.db"}).status, 0);
    }

    static ProcessResult Printed(const View& view, const Words& options, const std::map<std::string, std::string>& more = {})
    {
        std::filesystem::remove_all("new"); // what a view makes
        Words call = view.command;
        call.insert(call.end(), view.arguments.begin(), view.arguments.end());
        call.insert(call.end(), options.begin(), options.end());
        return RunArborist(call, {.environment = more});
    }

    TempDir mDir;
};

TEST_F(ColourTest, EachCommandHasAView)
{
    std::set<Words> known;
    for (const View& view : AllViews()) {
        known.insert(view.command);
    }
    const auto commands = AllCommands();
    for (const Words& command : commands) {
        const bool isGroup = AllCommands(command).size() > 1;
        EXPECT_TRUE(isGroup || known.count(command) == 1) << testing::PrintToString(command);
    }
}

TEST_F(ColourTest, OptionHoldsForEachCommandAndView)
{
    for (const View& view : AllViews()) {
        SCOPED_TRACE(testing::PrintToString(view));
        const ProcessResult plain = Printed(view, {"--color=never"});
        const ProcessResult unsaid = Printed(view, {}); // to no terminal
        const ProcessResult coloured = Printed(view, {"--color=always"}, {{"NO_COLOR", "1"}});
        EXPECT_NE(plain.status, 2) << plain.err;
        EXPECT_FALSE(HasEscapes(plain.out + plain.err)) << plain.out << plain.err;
        EXPECT_EQ(WithoutTimesOrRate(unsaid.out + unsaid.err), WithoutTimesOrRate(plain.out + plain.err));
        EXPECT_EQ(HasEscapes(coloured.out), view.isColoured) << coloured.out;
        EXPECT_EQ(HasEscapes(coloured.err), plain.err.find(": warning:") != std::string::npos) << coloured.err;
        EXPECT_EQ(WithoutTimesOrRate(WithoutEscapes(coloured.out + coloured.err)), WithoutTimesOrRate(plain.out + plain.err));
    }
}

} // namespace
