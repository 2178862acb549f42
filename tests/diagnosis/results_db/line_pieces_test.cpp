#include "diagnosis/results_db/line_pieces.h"

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/results_db/result_line.h"
#include "tests/diagnosis/results_db/result_lines.h"

namespace {

using diagnosis::results_db::CutLine;
using diagnosis::results_db::KnownPieces;
using diagnosis::results_db::LinePieces;
using diagnosis::results_db::ReadResultLine;
using diagnosis::results_db::ResultLine;
using diagnosis::results_db::ResultLineReader;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(LinePiecesTest, AreTheObjectsOfBothLists)
{
    LinePieces pieces;
    ASSERT_TRUE(CutLine(R"({"a": [{"b": 1}], "warnings": [{"c": "}\""}, {"d": []}], "results": [ {"e": {}} ], "f": 1})", pieces));
    EXPECT_EQ(pieces.frame, R"({"a": [{"b": 1}], "warnings": [], "results": [], "f": 1})");
    EXPECT_THAT(pieces.warnings, ElementsAre(R"({"c": "}\""})", R"({"d": []})"));
    EXPECT_THAT(pieces.results, ElementsAre(R"({"e": {}})"));
}

TEST(LinePiecesTest, KeepTheFrameOfEmptyLists)
{
    LinePieces pieces;
    ASSERT_TRUE(CutLine(R"({"warnings": [], "results": []} x)", pieces));
    EXPECT_EQ(pieces.frame, R"({"warnings": [], "results": []} x)");
    EXPECT_THAT(pieces.results, IsEmpty());
}

TEST(LinePiecesTest, AreNotCutOfWhatIsWrittenOtherwise)
{
    LinePieces pieces;
    for (const char* line : {"", "[]", "{", "{\"a", "{\"a\\", R"({"results": 1})", R"({"results": [1]})", R"({"results": [{}, ]})",
             R"({"results": [{} {}]})", R"({"results": [{})", R"({"results": [{")", R"({"results":)"}) {
        EXPECT_FALSE(CutLine(line, pieces)) << line;
    }
}

TEST(LinePiecesTest, AreTheValuesOfOneBundle)
{
    LinePieces pieces;
    ASSERT_TRUE(CutLine(R"({"bundle": "b", "x": "bundle", "device": "d", "now": "n", "seconds": 0.250000})", pieces));
    EXPECT_EQ(pieces.frame, R"({"bundle": "", "x": "bundle", "device": "", "now": "", "seconds": 0})");
    EXPECT_EQ(std::string(*pieces.bundle) + std::string(*pieces.device) + std::string(*pieces.now), "bdn");
    EXPECT_EQ(*pieces.seconds, "0.250000");
}

TEST(LinePiecesTest, ValuesOfAnotherFormStayInTheFrame)
{
    LinePieces pieces;
    for (const char* line : {R"({"bundle": "a\"b", "seconds": 1e3})", R"({"bundle": 7, "seconds": 01.5})", R"({"bundle": null, "seconds": -1.5})",
             R"({"bundle": ["b"], "seconds": 1.5 })", "{\"bundle\": \"a\tb\", \"seconds\": 1.}"}) {
        ASSERT_TRUE(CutLine(line, pieces)) << line;
        EXPECT_EQ(pieces.frame, line);
        EXPECT_FALSE(pieces.bundle || pieces.seconds) << line;
    }
    ASSERT_TRUE(CutLine(R"({"bundle": "a", "bundle": "b"})", pieces));
    EXPECT_EQ(pieces.frame, R"({"bundle": "", "bundle": "b"})");
}

TEST(LinePiecesTest, EqualTextsAreReadOnce)
{
    KnownPieces<std::string> known;
    int reads = 0;
    const auto read = [&reads](std::string_view text) {
        ++reads;
        return text == "bad" ? nullptr : std::make_shared<const std::string>(text);
    };
    EXPECT_EQ(known.Find("one", read), known.Find("one", read));
    EXPECT_EQ(*known.Find("two", read), "two");
    EXPECT_EQ(reads, 2);
    EXPECT_EQ(known.Find("bad", read), nullptr);
    EXPECT_EQ(known.Find("bad", read), nullptr);
    EXPECT_EQ(reads, 4);
}

TEST(LinePiecesTest, AreForgottenWhenTheyTakeTooMuchMemory)
{
    KnownPieces<int> known;
    int reads = 0;
    const auto read = [&reads](std::string_view) { return std::make_shared<const int>(++reads); };
    for (int round = 0; round < 2; ++round) {
        for (int piece = 0; piece < 40; ++piece) {
            known.Find(std::string(1U << 20U, static_cast<char>('A' + piece)), read);
        }
    }
    EXPECT_EQ(reads, 80);
}

// All of a line that importing uses, as a text.
std::string Told(const std::optional<ResultLine>& line, const std::string& problem)
{
    if (!line) {
        return "problem: " + problem;
    }
    std::string text = line->bundle + line->now + line->ruleSet + line->error.code + std::to_string(line->seconds);
    for (const auto& warning : line->warnings) {
        text += "\n" + warning->code + warning->message;
    }
    for (const auto& tree : line->trees) {
        text += "\n" + tree->id + tree->verdict + std::to_string(tree->checks.total) + std::to_string(tree->open.size());
        for (const auto& cause : tree->causes) {
            text += " " + cause.id + cause.cutSet.at(0);
        }
    }
    return text;
}

TEST(LinePiecesTest, AReaderAnswersAsIfItReadEachLineAlone)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const std::vector<std::string> good = {LineOf("b1").Fault("T", {"A & B", "C"}).Undecided("U", "D").Warning("w", "text").Text(),
        LineOf("b2").Fault("T", {"A"}).NoFault("U").Text(), LineOf("b3").Failed("timeout", true).Text(),
        LineOf("b4").NoFault("T").Explained("T", R"({"event": "A", "results": [{}]})").Text()};
    ResultLineReader reader(false);
    int accepted = 0;
    for (int round = 0; round < 4000; ++round) {
        std::string line = good[random() % good.size()];
        for (auto changes = random() % 3; changes > 0; --changes) {
            static const std::string OTHERS = "{}[]\"\\,: 0a\n";
            line[random() % line.size()] = OTHERS[random() % OTHERS.size()];
        }
        std::string problem;
        const auto plain = ReadResultLine(line, false, problem);
        std::string otherProblem;
        const auto read = reader.Read(line, otherProblem);
        ASSERT_EQ(Told(read, otherProblem), Told(plain, problem)) << line;
        accepted += plain ? 1 : 0;
    }
    EXPECT_GT(accepted, 1000);
}

TEST(LinePiecesTest, LinesThatRepeatEachOtherShareTheirTrees)
{
    ResultLineReader reader(false);
    std::string problem;
    const auto one = reader.Read(LineOf("b1").Fault("T", {"A"}).NoFault("U").Text(), problem);
    const auto other = reader.Read(LineOf("b2").Fault("T", {"A"}).Undecided("U", "D").Text(), problem);
    ASSERT_TRUE(one && other) << problem;
    EXPECT_EQ(one->trees[0], other->trees[0]);
    EXPECT_NE(one->trees[1], other->trees[1]);
}

} // namespace
