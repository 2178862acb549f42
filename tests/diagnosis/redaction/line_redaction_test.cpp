#include "diagnosis/redaction/line_redaction.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/digest/digest.h"

namespace {

using diagnosis::LineRedaction;
using diagnosis::Redaction;
using diagnosis::results_db::ResultLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

const std::string KEY = "0123456789abcdef";

std::string Hash(const std::string& value)
{
    return diagnosis::KeyedHash(KEY, value);
}

Redaction Of(const std::vector<std::string>& parts)
{
    Redaction redaction;
    redaction.key = KEY;
    redaction.results = parts;
    return redaction;
}

ResultLine Line()
{
    ResultLine line;
    line.bundle = "devices/ann";
    line.device = "SN-1";
    line.error.code = "bad_zip";
    line.error.message = "devices/ann: is damaged";
    line.warnings = {std::make_shared<diagnosis::results_db::ResultWarning>(
        diagnosis::results_db::ResultWarning{"node_unreadable", "/home/ann: can't be read", "A1", "r", "E", "/home/ann/rules.xml", 3})};
    diagnosis::results_db::ResultTree tree;
    tree.id = "T";
    tree.open = {{"E", "r", "no_data", "no_log", "of Ann", false}, {"F", "s", "no_data", "no_log", "", false}};
    line.trees = {std::make_shared<diagnosis::results_db::ResultTree>(tree)};
    line.evidence = {{"T", "E", "{}"}};
    return line;
}

TEST(LineRedactionTest, ListedPartsAreReplacedAndCounted)
{
    const Redaction redaction = Of({"bundle", "device", "details", "warnings", "error", "explanation"});
    LineRedaction lines(redaction);
    for (int run = 0; run < 2; ++run) {
        ResultLine line = Line();
        lines.Redact(line);
        EXPECT_EQ(line.bundle, Hash("devices/ann"));
        EXPECT_EQ(line.device, Hash("SN-1"));
        EXPECT_EQ(line.error.code + " " + line.error.message, "bad_zip " + Hash("devices/ann: is damaged"));
        const auto& warning = *line.warnings.at(0);
        EXPECT_EQ(warning.message + warning.file, Hash("/home/ann: can't be read") + Hash("/home/ann/rules.xml"));
        EXPECT_EQ(warning.code + warning.lint + warning.rule + warning.event, "node_unreadableA1rE");
        EXPECT_EQ(line.trees.at(0)->open.at(0).detail, Hash("of Ann"));
        EXPECT_EQ(line.trees.at(0)->open.at(1).detail, "");
        EXPECT_THAT(line.evidence, IsEmpty());
    }
    EXPECT_THAT(lines.GetCounts(), ElementsAre(Pair("bundle", 2), Pair("details", 2), Pair("device", 2), Pair("error", 2),
        Pair("explanation", 2), Pair("warnings", 2)));
}

TEST(LineRedactionTest, WhatIsNotListedStays)
{
    const Redaction redaction = Of({"device"});
    LineRedaction lines(redaction);
    ResultLine line = Line();
    lines.Redact(line);
    EXPECT_EQ(line.bundle, "devices/ann");
    EXPECT_EQ(line.error.message, "devices/ann: is damaged");
    EXPECT_EQ(line.warnings.at(0)->message, "/home/ann: can't be read");
    EXPECT_EQ(line.trees.at(0)->open.at(0).detail, "of Ann");
    EXPECT_EQ(line.evidence.size(), 1U);
    EXPECT_THAT(lines.GetCounts(), ElementsAre(Pair("device", 1)));
}

TEST(LineRedactionTest, WhereTheBundleIsListedNothingElseQuotesItsName)
{
    const Redaction redaction = Of({"bundle"});
    LineRedaction lines(redaction);
    ResultLine line = Line();
    line.bundle = "devices/ann/";
    line.trees.push_back(std::make_shared<diagnosis::results_db::ResultTree>());
    diagnosis::results_db::ResultTree quoting;
    quoting.open = {{"E", "r", "no_data", "no_log", "below /tmp/ann", false}};
    line.trees.push_back(std::make_shared<diagnosis::results_db::ResultTree>(quoting));
    line.evidence = {{"T", "E", "{}"}, {"T", "F", "{\"file\": \"devices/ann/node\"}"}};
    lines.Redact(line);
    EXPECT_EQ(line.bundle, Hash("devices/ann/"));
    EXPECT_EQ(line.error.message, Hash("devices/ann: is damaged"));
    EXPECT_EQ(line.warnings.at(0)->message, Hash("/home/ann: can't be read"));
    EXPECT_EQ(line.trees.at(0)->open.at(0).detail, "of Ann");
    EXPECT_EQ(line.trees.at(2)->open.at(0).detail, Hash("below /tmp/ann"));
    ASSERT_EQ(line.evidence.size(), 1U);
    EXPECT_EQ(line.evidence[0].event, "E");
    EXPECT_THAT(lines.GetCounts(), ElementsAre(Pair("bundle", 5)));
}

TEST(LineRedactionTest, ARecordThatLinesShareStaysShared)
{
    const Redaction redaction = Of({"details", "warnings"});
    LineRedaction lines(redaction);
    ResultLine one = Line();
    ResultLine other = one;
    lines.Redact(one);
    lines.Redact(other);
    EXPECT_EQ(one.warnings.at(0), other.warnings.at(0));
    EXPECT_EQ(one.trees.at(0), other.trees.at(0));
    EXPECT_EQ(other.trees.at(0)->open.at(0).detail, Hash("of Ann"));
    EXPECT_THAT(lines.GetCounts(), ElementsAre(Pair("details", 2), Pair("warnings", 2)));
}

TEST(LineRedactionTest, OnlyWhatQuotesTheBundleIsReplacedWithIt)
{
    const Redaction redaction = Of({"bundle"});
    LineRedaction lines(redaction);
    ResultLine line = Line();
    line.error.message = "is damaged";
    auto quoting = *line.warnings.at(0);
    quoting.message = "can't be read";
    auto other = quoting;
    other.file = "rules.xml";
    line.warnings = {std::make_shared<diagnosis::results_db::ResultWarning>(quoting),
        std::make_shared<diagnosis::results_db::ResultWarning>(other)};
    lines.Redact(line);
    EXPECT_EQ(line.error.message, "is damaged");
    EXPECT_EQ(line.warnings.at(0)->file, Hash("/home/ann/rules.xml"));
    EXPECT_EQ(line.warnings.at(1)->file, "rules.xml");
    ResultLine root = Line();
    root.bundle = "/";
    lines.Redact(root);
    EXPECT_EQ(root.bundle, Hash("/"));
    EXPECT_EQ(root.error.message, Hash("devices/ann: is damaged")) << "it has the name of this bundle in it";
    ResultLine nameless = Line();
    nameless.bundle = "";
    lines.Redact(nameless);
    EXPECT_EQ(nameless.error.message, "devices/ann: is damaged");
}

// Lines share records, of which one may be gone before another takes its place in memory.
TEST(LineRedactionTest, ManyDifferentRecordsAreNotMixedUp)
{
    const Redaction redaction = Of({"details"});
    LineRedaction lines(redaction);
    for (int number = 0; number < 10000; ++number) {
        ResultLine line = Line();
        auto tree = *line.trees.at(0);
        tree.open.at(0).detail = std::to_string(number);
        line.trees = {std::make_shared<diagnosis::results_db::ResultTree>(tree)};
        lines.Redact(line);
        ASSERT_EQ(line.trees.at(0)->open.at(0).detail, Hash(std::to_string(number)));
    }
}

} // namespace
