#include <filesystem>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/digest/digest.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace fs = std::filesystem;

const std::string KEY = "0123456789abcdef";
const std::string SECRET = "SN-4711-of-Ann";
constexpr std::int64_t NOW = 1716206400;
constexpr char DERIVED[] = "/programdata/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db";

// The text between two lines of a page.
std::string BlockOf(const std::string& page, const std::string& start, const std::string& end)
{
    const auto begin = page.find(start) + start.size();
    return page.substr(begin, page.find(end, begin) - begin);
}

class RedactionTest : public testing::Test {
protected:
    static ProcessResult Pack(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"bundle", "pack", "--log-level", "none"});
        return RunArborist(arguments);
    }

    void WriteRedaction(const std::string& members) const
    {
        mDir.Write("redaction.json", "{\"key\": \"" + KEY + "\"" + members + "}");
    }

    // A bundle that has the secret in every place that can be redacted, and beside it.
    void WriteSecretBundle() const
    {
        WriteDropsBundle(mDir, "b");
        auto json = mDir.Read("b/bundle.json");
        json.insert(json.find('{') + 1, "\"deviceId\": \"" + SECRET + "\", \"device\": {\"Product\": \"" + SECRET + "\"}, ");
        mDir.Write("b/bundle.json", json);
        EventLogBuilder log;
        for (int row = 0; row < 100; ++row) {
            log.Row({NOW - row, 1001, "", R"({"USER": ")" + SECRET + R"(", "N": {"user": [")" + SECRET + R"("]}})"});
        }
        log.Row({NOW - 200, 1001, "", "{broken " + SECRET}).Sql("CREATE TABLE other AS SELECT extra FROM event_info")
            .Sql("DELETE FROM event_info WHERE _ID BETWEEN 50 AND 60").WriteTo(mDir.Path("b") + LOG_OF_BUNDLE);
        EventLogBuilder::RunIntoWal(mDir.Path("b") + LOG_OF_BUNDLE, "UPDATE event_info SET extra = '{\"USER\": \"" + SECRET + "\"}' WHERE _ID = 3");
        EventLogBuilder::Run(mDir.Write("b" + std::string(DERIVED), ""), "CREATE TABLE old AS SELECT '" + SECRET + "' AS user");
    }

    TempDir mDir;
};

TEST_F(RedactionTest, ThePageShowsWhatTheCommandPrintsAndWritesWhatItsSchemaAllows)
{
    PrepareLaptop("laptop");
    const std::string page = PageOfDocs("redaction.md");
    mDir.Write("redaction.json", BlockOf(page, "```json\n", "```"));
    EXPECT_THAT(Violations(ParsedJson(PageOfDocs("redaction.schema.json")), ParsedJson(mDir.Read("redaction.json"))), IsEmpty());
    const auto packed = Pack({"laptop", "--redact", "redaction.json", "-o", "for-others.zip"});
    EXPECT_EQ(packed.out, BlockOf(page, "```text\n", "```"));
    EXPECT_THAT(packed.err, IsEmpty());
}

TEST_F(RedactionTest, NoByteOfThePackedBundleHasAnOldValue)
{
    WriteSecretBundle();
    WriteRedaction(R"(, "bundle": ["deviceId", "device.Product"], "log": [{"members": ["USER"]}])");
    for (const std::vector<std::string>& more : std::vector<std::vector<std::string>>{{}, {"--window"}, {"--as-of", "2024-05-20 11:59:00"}}) {
        std::vector<std::string> arguments = {"b", "--redact", "redaction.json", "-o", "r.zip"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const auto packed = Pack(arguments);
        ASSERT_EQ(packed.status, 0) << packed.err;
        EXPECT_THAT(packed.out + packed.err, Not(HasSubstr(SECRET)));
        EXPECT_THAT(mDir.Read("r.zip"), Not(HasSubstr(SECRET))); // names, comments
        bool hasLog = false;
        for (const auto& [name, content] : ReadZip(mDir.Path("r.zip"))) {
            EXPECT_THAT(content, Not(HasSubstr(SECRET))) << name;
            EXPECT_THAT(name, Not(EndsWith("JankEventDb.db")));
            EXPECT_FALSE(name.find("-wal") != std::string::npos || name.find("-journal") != std::string::npos) << name;
            hasLog = hasLog || name.find("log.db") != std::string::npos;
        }
        EXPECT_TRUE(hasLog);
    }
    EXPECT_EQ(Pack({"b", "--redact", "redaction.json", "-o", "folder"}).status, 0);
    for (const auto& [path, state] : StateOf("folder")) {
        EXPECT_THAT(state, Not(HasSubstr(SECRET))) << path;
    }
}

TEST_F(RedactionTest, WhereNoRuleReadsWhatWasReplacedAllResultsStay)
{
    PrepareLaptop("here/b");
    WriteRedaction(R"(, "bundle": ["device.Product"], "log": [{"members": ["KEY", "DROP"]}])");
    const auto packed = Pack({"here/b", "--redact", "redaction.json", "-o", "there/b"});
    EXPECT_EQ(packed.status, 4); // no folder for it
    mDir.MakeDir("there");
    EXPECT_THAT(Pack({"here/b", "--redact", "redaction.json", "-o", "there/b"}).out,
        HasSubstr("  rules      none reads what was replaced: verdicts stay\n"));
    // The databases of a folder come in the order of the file system, which differs from folder to folder.
    const auto explain = [this](const std::string& folder) {
        std::istringstream out(RunArborist({"explain", "b"}, {.directory = mDir.Path(folder)}).out);
        std::multiset<std::string> lines;
        for (std::string line; std::getline(out, line);) {
            lines.insert(line);
        }
        return lines;
    };
    EXPECT_EQ(explain("there"), explain("here"));
}

TEST_F(RedactionTest, TheListingIsThereAsJson)
{
    WriteSecretBundle();
    WriteRedaction(R"(, "bundle": ["deviceId"], "log": [{"events": "1001", "members": ["USER", "none"]}])");
    const auto json = ParsedJson(Pack({"b", "--redact", "redaction.json", "--json", "-o", "r.zip"}).out);
    EXPECT_EQ(json["schema"], "arborist.pack.1");
    const Json::Value& redacted = json["redacted"];
    EXPECT_EQ(redacted["bundleKeys"][0], "deviceId");
    EXPECT_EQ(redacted["members"][0]["name"], "USER");
    EXPECT_EQ(redacted["members"][0]["rows"], 89);
    EXPECT_EQ(redacted["members"][0]["events"][0], 1001);
    EXPECT_EQ(redacted["wholeTexts"]["rows"], 1);
    EXPECT_EQ(redacted["leftOut"].size(), 2U);
    EXPECT_EQ(redacted["notThere"][0], "event log: member none");
    EXPECT_TRUE(redacted["rules"].isArray());
    EXPECT_THAT(Pack({"b", "--json", "-o", "plain.zip"}).out, Not(HasSubstr("redacted")));
    const auto failed = ParsedJson(Pack({"b", "--json", "-o", "no/plain.zip"}).out);
    EXPECT_EQ(failed["error"]["code"], "not_packed");
}

TEST_F(RedactionTest, WhatCannotBeRedactedIsNotPacked)
{
    WriteSecretBundle();
    WriteRedaction(R"(, "logs": [])");
    const auto wrong = Pack({"b", "--redact", "redaction.json", "-o", "r.zip"});
    EXPECT_EQ(wrong.err, "arborist: redaction.json: unknown key \"logs\"; did you mean \"log\"?\n");
    EXPECT_EQ(wrong.status, 2);
    WriteRedaction(R"(, "log": [], "results": ["bundle"])");
    const auto nothing = Pack({"b", "--redact", "redaction.json", "-o", "r.zip"});
    EXPECT_EQ(nothing.err, "arborist: redaction.json: lists nothing that a bundle has\n");
    EXPECT_EQ(nothing.status, 2);
    WriteRedaction(R"(, "log": [{"members": ["USER"]}])");
    fs::remove(mDir.Path("b") + LOG_OF_BUNDLE + "-wal");
    mDir.Write("b" + std::string(LOG_OF_BUNDLE), "no log, but " + SECRET);
    const auto damaged = Pack({"b", "--redact", "redaction.json", "-o", "r.zip"});
    EXPECT_THAT(damaged.err, HasSubstr("programdata/Comms/Lumbra/workDir/0/log.db: "));
    EXPECT_THAT(damaged.err, EndsWith("[bad_log]\n"));
    EXPECT_EQ(damaged.status, 4);
    EXPECT_FALSE(mDir.Has("r.zip"));
}

TEST_F(RedactionTest, ImportedLinesHaveHashesInPlaceOfTheListedParts)
{
    WriteHotBundle(mDir, SECRET + "-b", BundleJson(", \"" + SECRET + "\": 1"));
    fs::remove(SECRET + "-b/temperature");
    mDir.Write("lines.jsonl", RunArborist({"detect", "--json", "--explain", SECRET + "-b", SECRET + "-nowhere"}).out);
    const auto import = [](const std::string& target) {
        return RunArborist({"results", "import", "lines.jsonl", "--to", target, "--evidence", "--redact", "redaction.json"});
    };
    WriteRedaction(R"(, "results": ["bundle", "details", "warnings", "error", "explanation"])");
    const auto imported = import("r.db");
    EXPECT_EQ(imported.status, 0) << imported.err;
    EXPECT_THAT(imported.err, HasSubstr("replaced: bundle, 2 values\n"));
    EXPECT_THAT(imported.err, HasSubstr("replaced: error, 1 value\n"));
    EXPECT_THAT(imported.err, HasSubstr("left out: the evidence of 1 event\n"));
    EXPECT_THAT(mDir.Read("r.db"), Not(HasSubstr(SECRET)));
    EXPECT_THAT(mDir.Read("r.db"), HasSubstr(diagnosis::KeyedHash(KEY, SECRET + "-nowhere")));
    EXPECT_THAT(import("r.db").err, HasSubstr("2 there already"));
    WriteRedaction(R"(, "bundle": ["deviceId"])");
    const auto refused = import("other.db");
    EXPECT_EQ(refused.err, "arborist: redaction.json: lists nothing under \"results\"\n");
    EXPECT_EQ(refused.status, 2);
    EXPECT_FALSE(mDir.Has("other.db"));
}

// A foreign rule set may name any path, and a pattern is matched by recursion.
TEST_F(RedactionTest, APathOfAMillionCharactersMatchesNothing)
{
    WriteHotBundle(mDir, "b");
    auto rules = mDir.Read("b/rules/FaultTreeRules.xml");
    rules.replace(rules.find("path=\"temperature\""), 18, "path=\"" + std::string(1'000'000, 'x') + "\"");
    mDir.Write("b/rules/FaultTreeRules.xml", rules);
    WriteRedaction(R"(, "nodes": ["(x|y)*"])");
    const auto packed = Pack({"b", "--redact", "redaction.json", "-o", "r.zip"});
    EXPECT_EQ(packed.status, 0) << packed.err;
    EXPECT_THAT(packed.out, HasSubstr("  not there  node file: (x|y)*\n"));
}

// The whole file is the value of a node; a file that several patterns and spellings name is replaced once.
TEST_F(RedactionTest, ANodeFileBecomesItsHashAndALineEnd)
{
    WriteHotBundle(mDir, "b");
    WriteRedaction(R"(, "nodes": ["temp.*", "temperature", "TEMPERATURE"])");
    const auto packed = Pack({"b", "--redact", "redaction.json", "-o", "r"});
    EXPECT_EQ(mDir.Read("r/temperature"), diagnosis::KeyedHash(KEY, "80") + "\n");
    EXPECT_EQ(mDir.Read("b/temperature"), "80\n");
    EXPECT_THAT(packed.out, HasSubstr("  not there  node file: TEMPERATURE\n"));
    EXPECT_THAT(packed.out, HasSubstr("  rule       hot may answer differently: it reads node file temperature\n"));
}

TEST_F(RedactionTest, ADeviceIsNamedByTheKeyOrPlainlyOrNotAtAll)
{
    WriteHotBundle(mDir, "b", BundleJson(", \"deviceId\": \"" + SECRET + "\""));
    mDir.Write("key", KEY);
    mDir.Write("list", "b\n");
    const auto device = [](std::vector<std::string> more) {
        more.insert(more.begin(), {"detect", "--json"});
        return ParsedJson(RunArborist(more).out)["device"].asString();
    };
    EXPECT_EQ(device({"b"}), "");
    EXPECT_EQ(device({"b", "--device-key", "key"}), diagnosis::KeyedHash(KEY, SECRET));
    EXPECT_EQ(device({"--batch", "list", "--device-key", "key"}), diagnosis::KeyedHash(KEY, SECRET));
    EXPECT_EQ(device({"b", "--plain-ids"}), SECRET);
    EXPECT_EQ(RunArborist({"detect", "b", "--plain-ids", "--device-key", "key"}).status, 2);
    mDir.Write("short", "0123456789abcde");
    EXPECT_THAT(RunArborist({"detect", "b", "--device-key", "short"}).err,
        HasSubstr("--device-key: short: a key needs 16 bytes, and this one has 15"));
    // A redacted bundle names its device as a plain one does under the same key.
    WriteRedaction(R"(, "bundle": ["deviceId"])");
    Pack({"b", "--redact", "redaction.json", "-o", "r"});
    EXPECT_EQ(device({"r", "--plain-ids"}), diagnosis::KeyedHash(KEY, SECRET));
    fs::remove("b/rules/FaultTrees.xml");
    EXPECT_EQ(device({"b", "--device-key", "key"}), diagnosis::KeyedHash(KEY, SECRET));
}

TEST_F(RedactionTest, NothingElseShowsTheIdOfADevice)
{
    WriteHotBundle(mDir, "b", BundleJson(", \"deviceId\": \"" + SECRET + "\", \"device\": {\"Product\": \"P\"}"));
    mDir.Write("list", "b\n");
    mDir.Write("key", KEY);
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{{"detect", "b", "--tree", "--explain"},
             {"detect", "b", "--json", "--tree", "--explain", "--device-key", "key"}, {"detect", "--batch", "list"}, {"explain", "b"},
             {"explain", "b", "--json"}, {"report", "b"}, {"graph", "b"}, {"sweep", "b"}, {"bundle", "info", "b"},
             {"bundle", "info", "b", "--json"}, {"bundle", "verify", "b"}, {"query", "b", "CODE"}, {"repair", "list", "b"},
             {"test", "--record", "b", "--output", "case.test.json"}, {"bundle", "pack", "b", "-o", "p.zip"}}) {
        std::vector<std::string> arguments = command;
        if (command[0] != "test") {
            arguments.insert(arguments.end(), {"--log-level", "trace"});
        }
        const auto result = RunArborist(arguments);
        EXPECT_THAT(result.out + result.err, Not(HasSubstr(SECRET))) << command[0] << " " << command[1];
        EXPECT_NE(result.status, 2) << result.err;
    }
    EXPECT_THAT(mDir.Read("case.test.json"), Not(HasSubstr(SECRET)));
    EXPECT_THAT(RunArborist({"bundle", "info", "b"}).out, HasSubstr("  device id         given\n"));
    EXPECT_THAT(RunArborist({"bundle", "info", "b", "--json"}).out, HasSubstr("\"hasDeviceId\": true"));
}

} // namespace
