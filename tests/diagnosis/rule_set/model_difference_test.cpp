#include <algorithm>
#include <filesystem>
#include <optional>
#include <regex>
#include <set>

#include <gtest/gtest.h>

#include "diagnosis/rule_set/difference.h"
#include "tests/diagnosis/lint/sample.h"
#include "tests/diagnosis/rule_source/model_text.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::rule_set::Change;
using diagnosis::rule_set::ItemKind;
using diagnosis::rule_set::ReadInto;
using diagnosis::rule_set::ReadRuleSet;

constexpr const char* FILES[] = {"FaultTrees.xml", "FaultTreeRules.xml"};

bool IsTypeOfTest(const Change& change)
{
    static const std::regex type(R"( \[[^\]]*\])");
    return std::regex_replace(change.before, type, "") == std::regex_replace(change.after, type, "");
}

// The text of the model leaves out what the engine stores and no check asks for.
bool IsInModelText(const Change& change)
{
    static const std::set<std::string> LEFT_OUT = {
        "version of the tree file", "version", "value", "time type", "time, threshold", "path 1, decompression"};
    const bool isTypeOfTree = change.kind == ItemKind::TREE && change.key == "type";
    const bool isCondition = change.key.find("condition ") != std::string::npos;
    return LEFT_OUT.count(change.key) == 0 && !isTypeOfTree && !(isCondition && IsTypeOfTest(change));
}

// True if two rule sets differ in something that is in the text of the model; nothing if one can't be read.
std::optional<bool> AreDifferent(const std::string& before, const std::string& after, const std::string& tag)
{
    ReadRuleSet old;
    ReadRuleSet current;
    if (ReadInto({before, "", tag}, old) || ReadInto({after, "", tag}, current)) {
        return std::nullopt;
    }
    const auto changes = DifferencesOf(old, current);
    return std::any_of(changes.begin(), changes.end(), IsInModelText);
}

// For the bad and the good rule set of each sample: the difference is empty exactly if the engine reads the same.
TEST(DifferenceOfSamples, IsThatOfWhatTheEngineReads)
{
    const LogCapture log;
    std::size_t compared = 0;
    for (const LintSample& sample : AllLintSamples()) {
        const TempDir dir;
        sample.CopyTo(dir, "bad");
        const std::string bad = dir.MakeDir("bad");
        for (const char* file : FILES) {
            std::filesystem::rename(dir.Path(file), bad + "/" + file);
        }
        sample.CopyTo(dir, "good");
        if (const auto areDifferent = AreDifferent(bad, dir.Path(), "Laptop")) {
            EXPECT_EQ(*areDifferent, EngineModelText(bad, "Laptop") != EngineModelText(dir.Path(), "Laptop"))
                << sample.folder;
            ++compared;
        }
    }
    EXPECT_GT(compared, 150U);
}

/// A rule set whose attributes and texts are changed one at a time.
class ChangedLaptop : public testing::TestWithParam<const char*> {
protected:
    static constexpr char LAPTOP[] = ARBORIST_SOURCE_DIR "/examples/laptop/rules";

    // The places behind each attribute value and each text of a file.
    static std::vector<std::size_t> EndsOfValues(const std::string& text)
    {
        static const std::regex value(R"(="[^"<>]*(?=")|>[^<>\s][^<>]*(?=</))");
        std::vector<std::size_t> ends;
        for (std::sregex_iterator found(text.begin(), text.end(), value), end; found != end; ++found) {
            ends.push_back(static_cast<std::size_t>(found->position() + found->length()));
        }
        return ends;
    }

    LogCapture mLog;
    TempDir mDir;
};

TEST_P(ChangedLaptop, DiffersExactlyIfTheEngineReadsSomethingElse)
{
    const std::string engine = EngineModelText(LAPTOP, "Laptop");
    for (const char* file : FILES) {
        std::filesystem::copy_file(std::string(LAPTOP) + "/" + file, mDir.Path(file));
    }
    const std::string text = mDir.Read(GetParam());
    const auto ends = EndsOfValues(text);
    EXPECT_GT(ends.size(), 50U);
    for (const std::size_t end : ends) {
        std::string changed = text;
        mDir.Write(GetParam(), changed.insert(end, "7"));
        const bool isChanged = EngineModelText(mDir.Path(), "Laptop") != engine;
        ASSERT_EQ(AreDifferent(LAPTOP, mDir.Path(), "Laptop"), isChanged)
            << text.substr(end - std::min<std::size_t>(end, 60), 80);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, ChangedLaptop, testing::ValuesIn(FILES),
    [](const auto& file) { return std::string(file.param).substr(0, std::string(file.param).find('.')); });

} // namespace
