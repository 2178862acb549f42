#include <filesystem>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/pattern.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

// 2024-05-20 12:00:00 UTC, the time of WriteDropsBundle.
constexpr std::int64_t NOW = 1716206400;
constexpr std::int64_t DAY = 86400;

const std::string CODE_RUNNER = LaptopCodeRunner();

class BundleCommandTest : public testing::Test {
protected:
    static ProcessResult Pack(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"bundle", "pack"});
        return RunArborist(arguments);
    }

    // The output of a detection that runs in `folder` and in another zone, with the same name of the bundle.
    std::string Detect(const std::string& folder, const std::string& bundle, const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> arguments = {"detect", "--json", "--tree", "--log-level", "none", bundle};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return WithoutSeconds(RunArborist(arguments, {.environment = {{"TZ", "Asia/Tokyo"}}, .directory = folder}).out);
    }

    // A bundle for `--live`: its rule names the absolute path of a file with `value`.
    void WriteLiveBundle(const std::string& value) const
    {
        const auto path = mDir.Write("machine/sys/temperature", value);
        const auto isHot = ConditionXml({SingleLogicXml(TestXml("gt", "t", "70"))});
        const auto rule = NodeRuleXml("hot", {NodeInfoXml("T", path), ParamsXml({ParamXml("t", "T", "int")}), isHot});
        mDir.Write("live/bundle.json", BundleJson());
        mDir.Write("live/rules/FaultTrees.xml", TreeXml("Tag").Version("3").Tree("T", Or({Basic("HOT")})).Text());
        mDir.Write("live/rules/FaultTreeRules.xml", RuleXml("Tag").EventRule("HOT", {Single("hot")}).Rule(rule).Text());
    }

    TempDir mDir;
};

TEST_F(BundleCommandTest, APackedBundleReplaysElsewhereByteForByte)
{
    PrepareLaptop("here/b");
    const auto before = StateOf("here");
    EXPECT_THAT(Pack({"here/b", "-o", "b.zip", "--code-runner", CODE_RUNNER}).out, StartsWith("b.zip: "));
    EXPECT_THAT(Pack({"b.zip", "-o", "b"}).err, IsEmpty());
    EXPECT_EQ(StateOf("here"), before);
    mDir.MakeDir("elsewhere/deep");
    fs::rename("b", "elsewhere/deep/b");

    const auto original = Detect("here", "b", {"--code-runner", CODE_RUNNER});
    EXPECT_THAT(original, HasSubstr("PIXELS_DEAD"));
    EXPECT_EQ(Detect("elsewhere/deep", "b"), original);
    mDir.MakeDir("packed");
    fs::rename("b.zip", "packed/b");
    EXPECT_EQ(Detect("packed", "b"), original);
}

// A device that has neither a time nor a zone gets those of the packing, wherever it is replayed.
TEST_F(BundleCommandTest, ADeviceWithoutAZoneReplaysInAnotherZone)
{
    PrepareLaptop("here/b");
    fs::remove("here/b/device/data/panel/panel_b.zip"); // two come in the order of the file system
    const auto description = mDir.Read("here/b/bundle.json");
    mDir.Write("here/b/bundle.json", std::regex_replace(description, std::regex("\"(now|tz)\": \"[^\"]*\",\n"), ""));
    const auto run = [this](const std::string& folder, const std::string& zone, const std::vector<std::string>& command) {
        std::vector<std::string> arguments = command;
        arguments.insert(arguments.end(), {"--log-level", "none", "b"});
        const auto result = RunArborist(arguments, {.environment = {{"TZ", zone}}, .directory = mDir.Path(folder)});
        EXPECT_EQ(result.status, 0) << result.err;
        return WithoutSeconds(result.out);
    };
    const std::string here = "America/New_York";
    const std::vector<std::string> now = {"--now", "2024-05-20 06:00:00"};
    std::vector<std::string> pack = {"bundle", "pack", "--code-runner", CODE_RUNNER, "--window", "-o", "../packed.zip"};
    pack.insert(pack.end(), now.begin(), now.end());
    run("here", here, pack);
    mDir.MakeDir("there");
    ASSERT_EQ(Pack({"packed.zip", "-o", "there/b"}).status, 0);
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{{"detect", "--json", "--tree"},
             {"explain", "--json", "--near-misses", "2", "--minimal"}, {"graph"}}) {
        std::vector<std::string> original = command;
        original.insert(original.end(), now.begin(), now.end());
        original.insert(original.end(), {"--code-runner", CODE_RUNNER});
        EXPECT_EQ(run("there", "Asia/Tokyo", command), run("here", here, original)) << command[0];
    }
}

TEST_F(BundleCommandTest, APackOfTheSameBundleHasTheSameBytes)
{
    PrepareLaptop("b");
    Pack({"b", "-o", "one.zip"});
    Pack({"b", "-o", "two.zip"});
    EXPECT_EQ(mDir.Read("one.zip"), mDir.Read("two.zip"));
    Pack({"one.zip", "-o", "three.zip"});
    EXPECT_EQ(mDir.Read("three.zip"), mDir.Read("one.zip"));
    const auto itself = Pack({"one.zip", "-o", "./one.zip", "--window"});
    EXPECT_EQ(itself.err, "arborist: one.zip: ./one.zip: is the bundle that is read [not_packed]\n");
    EXPECT_EQ(itself.status, 4);
    EXPECT_EQ(mDir.Read("three.zip"), mDir.Read("one.zip"));
}

TEST_F(BundleCommandTest, ACaptureIntoASearchedFolderDoesNotHoldItself)
{
    PrepareLaptop("b");
    const auto content = [](const ProcessResult& packed) { return packed.out.substr(packed.out.find(": ")); };
    const std::string outside = content(Pack({"b", "-o", "outside"}));
    EXPECT_EQ(content(Pack({"b", "-o", "b/device/data/panel/inside"})), outside);
    EXPECT_FALSE(mDir.Has("b/device/data/panel/inside/device/data/panel/inside"));
}

TEST_F(BundleCommandTest, ACaptureOfAFolderWithTheTemporaryFilesDoesNotHoldThose)
{
    PrepareLaptop("b");
    const std::string temporary = mDir.MakeDir("b/device/data/panel/temporary");
    ASSERT_EQ(RunArborist({"bundle", "pack", "b", "-o", "packed"}, {.environment = {{"TMPDIR", temporary}}}).status, 0);
    EXPECT_TRUE(mDir.Has("packed/device/data/panel/temporary"));
    EXPECT_TRUE(fs::is_empty(mDir.Path("packed/device/data/panel/temporary")));
}

TEST_F(BundleCommandTest, FilesOfThisMachineAreCapturedBelowARootAndListed)
{
    WriteLiveBundle("80\n");
    const auto packed = Pack({"live", "--live", "-o", "packed"});
    EXPECT_EQ(packed.status, 0);
    const std::string node = "device" + mDir.Path("machine/sys/temperature");
    EXPECT_EQ(mDir.Read("packed/" + node), "80\n");
    EXPECT_THAT(packed.out, AllOf(StartsWith("rules/FaultTrees.xml\n"), HasSubstr("\n" + node + "\n"),
        HasSubstr("\npacked: ")));
    mDir.Write("machine/sys/temperature", "20\n");
    EXPECT_THAT(RunArborist({"detect", "packed"}).out, HasSubstr("1. HOT"));
    EXPECT_THAT(RunArborist({"detect", "--live", "live"}).out, HasSubstr("no fault"));
}

TEST_F(BundleCommandTest, RootsOutsideTheBundleAreRefused)
{
    WriteHotBundle(mDir, "b");
    for (const char* root : {"", "/", "..", "../device", "a/../../b", "."}) {
        for (const char* key : {"DeviceRootDir", "ProgramDataDir"}) {
            mDir.Write("b/bundle.json",
                BundleJson(", \"settings\": {\"" + std::string(key) + "\": \"" + root + "\"}"));
            const auto result = RunArborist({"detect", "b"});
            const bool isInside = std::string(root) == ".";
            EXPECT_EQ(result.status, isInside ? 0 : 4) << key << " " << root;
            EXPECT_EQ(result.err, isInside ? "" : "arborist: b: b/bundle.json: \"settings." + std::string(key)
                + "\" must be a folder inside the bundle, not \"" + root + "\" [bad_bundle]\n");
        }
    }
}

TEST_F(BundleCommandTest, LinksThatLeadOutOfTheBundleAreRefused)
{
    WriteDropsBundle(mDir, "b");
    EventLogBuilder().Row({NOW, 1001, "", ""}).WriteTo(mDir.Path("log.db"));
    mDir.MakeDir("b/programdata/Comms/Lumbra/workDir/0");
    fs::create_symlink(mDir.Path("log.db"), mDir.Path("b") + LOG_OF_BUNDLE);
    const auto linkedLog = RunArborist({"detect", "b"});
    EXPECT_EQ(linkedLog.status, 4);
    EXPECT_EQ(linkedLog.err, "arborist: b: programdata/Comms/Lumbra/workDir/0/log.db is a link that leads out of the "
                             "bundle [outside_bundle]\n");
    fs::remove(mDir.Path("b") + LOG_OF_BUNDLE);
    mDir.MakeDir("machine");
    fs::create_directory_symlink("../machine", mDir.Path("b/device"));
    EXPECT_THAT(RunArborist({"detect", "b"}).err, HasSubstr("device is a link that leads out of the bundle"));
    fs::remove(mDir.Path("b/device"));
    mDir.MakeDir("b/captured");
    fs::create_directory_symlink("captured", mDir.Path("b/device"));
    EXPECT_EQ(RunArborist({"detect", "b"}).status, 0);
}

TEST_F(BundleCommandTest, ALinkAboveADatabaseThatIsNotThereYetMakesNoneOutsideOfTheBundle)
{
    WriteDropsBundle(mDir, "b");
    mDir.MakeDir("outside");
    mDir.MakeDir("b/programdata/Comms/Lumbra");
    fs::create_directory_symlink(mDir.Path("outside"), mDir.Path("b/programdata/Comms/Lumbra/zxdetectrepair"));
    const auto result = RunArborist({"repair", "record", "b", "R"});
    EXPECT_EQ(result.status, 4);
    EXPECT_THAT(result.err, HasSubstr("is a link that leads out of the bundle [outside_bundle]"));
    EXPECT_TRUE(fs::is_empty(mDir.Path("outside")));
}

TEST_F(BundleCommandTest, ALinkToNothingMakesNoDatabaseOutsideOfTheBundle)
{
    WriteDropsBundle(mDir, "b");
    mDir.MakeDir("b/programdata/Comms/Lumbra/zxdetectrepair/databases");
    fs::create_symlink("../../../../../../repairs.db",
        mDir.Path("b/programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db"));
    EXPECT_EQ(RunArborist({"repair", "record", "b", "R"}).status, 4);
    EXPECT_FALSE(fs::exists(mDir.Path("repairs.db")));
}

TEST_F(BundleCommandTest, LinksBesideADatabaseThatLeadOutOfTheBundleAreRefused)
{
    WriteDropsBundle(mDir, "b");
    mDir.MakeDir("b/programdata/Comms/Lumbra/workDir/0");
    EventLogBuilder().Row({NOW, 1001, "", ""}).WriteTo(mDir.Path("b") + LOG_OF_BUNDLE);
    for (const std::string companion : {"-wal", "-journal"}) {
        const std::string link = mDir.Path("b") + LOG_OF_BUNDLE + companion;
        fs::create_symlink(mDir.Path("elsewhere"), link);
        EXPECT_EQ(RunArborist({"detect", "b"}).status, 4) << companion;
        fs::remove(link);
    }
    EXPECT_EQ(RunArborist({"detect", "b"}).status, 0);
}

TEST_F(BundleCommandTest, RulesOutsideOfAFolderAreToldAndThoseOfAZipRefused)
{
    WriteHotBundle(mDir, "b");
    EXPECT_THAT(RunArborist({"detect", "b"}).err, Not(HasSubstr("not inside")));
    fs::rename(mDir.Path("b/rules"), mDir.Path("rules"));
    fs::create_directory_symlink("../rules", mDir.Path("b/rules"));
    EXPECT_THAT(RunArborist({"detect", "b"}).err,
        HasSubstr("b: warning: the rules in \"rules\" are not inside the bundle\n"));
    EXPECT_THAT(RunArborist({"detect", "b", "--rules", "rules"}).err, Not(HasSubstr("not inside")));
    fs::remove(mDir.Path("b/rules"));
    for (const std::string& folder : {mDir.Path("rules"), std::string("../../rules")}) {
        mDir.Write("b/bundle.json", BundleJson(", \"ruleFileDir\": \"" + folder + "\""));
        ASSERT_EQ(RunProcess({"python3", "-m", "zipfile", "-c", "b.zip", "b"}).status, 0);
        const auto result = RunArborist({"detect", "b.zip"});
        EXPECT_EQ(result.status, 4) << folder;
        EXPECT_THAT(result.err, HasSubstr("[outside_bundle]"));
    }
    EXPECT_EQ(RunArborist({"detect", "b.zip", "--rules", "rules"}).status, 0);
}

TEST_F(BundleCommandTest, NoNodeOfABundleIsReadFromThisMachine)
{
    mDir.Write("temperature", "80\n");
    for (const std::string& path : {mDir.Path("temperature"), std::string("../temperature")}) {
        WriteHotBundle(mDir, "b");
        std::string rules = mDir.Read("b/rules/FaultTreeRules.xml");
        rules.replace(rules.find("\"temperature\""), 13, "\"" + path + "\"");
        mDir.Write("b/rules/FaultTreeRules.xml", rules);
        fs::remove("b/temperature");
        EXPECT_THAT(RunArborist({"detect", "b"}).out, HasSubstr("no fault")) << path;
        EXPECT_THAT(RunArborist({"detect", "--live", "b"}).out, HasSubstr("1. HOT")) << path;
    }
}

TEST_F(BundleCommandTest, ThisMachineIsDiagnosedWithAFolderAlone)
{
    WriteHotBundle(mDir, "b");
    Pack({"b", "-o", "b.zip"});
    const auto zip = RunArborist({"detect", "--live", "b.zip"});
    EXPECT_EQ(zip.err, "arborist: b.zip: is a capture of a device; --live takes a folder [bundle_is_zip]\n");
    EXPECT_EQ(zip.status, 4);
    EXPECT_EQ(RunArborist({"detect", "--live", "--batch", "-"}, {.input = "b\n"}).status, 2);
}

TEST_F(BundleCommandTest, TheMomentAndTheZoneOfThePackingAreRecorded)
{
    WriteHotBundle(mDir, "b");
    const auto packed = RunArborist({"bundle", "pack", "b", "-o", "p"}, {.environment = {{"TZ", "Europe/Berlin"}}});
    EXPECT_EQ(packed.status, 0);
    EXPECT_THAT(mDir.Read("p/bundle.json"), HasSubstr("\"tz\": \"Europe/Berlin\""));
    EXPECT_THAT(mDir.Read("p/bundle.json"), ContainsPattern("\"now\": (\"20|[0-9]{10})"));
    Pack({"b", "-o", "q", "--now", "2024-05-01 10:00:00", "--tz", "UTC"});
    EXPECT_THAT(mDir.Read("q/bundle.json"), HasSubstr("\"now\": \"2024-05-01 10:00:00\""));
    EXPECT_THAT(mDir.Read("q/bundle.json"), HasSubstr("\"tz\": \"UTC\""));
}

// The last event before the window shows that the log began before it.
TEST_F(BundleCommandTest, TheWindowLeavesOutWhatNoRuleReachesButTheLastEventBeforeIt)
{
    WriteDropsBundle(mDir, "b");
    EventLogBuilder().Rows({{NOW - 9 * DAY, 1001, "", ""}, {NOW - 8 * DAY, 1002, "", ""}, {NOW - 7 * DAY, 1001, "", ""}, {NOW - DAY, 1001, "", ""},
        {NOW, 1001, "", ""}}).WriteTo(mDir.Path("b") + LOG_OF_BUNDLE);
    Pack({"b", "-o", "whole"});
    Pack({"b", "-o", "part", "--window"});
    const auto rows = [](const std::string& bundle) {
        const auto shown = RunArborist({"log", "show", bundle + LOG_OF_BUNDLE}).out;
        return std::count(shown.begin(), shown.end(), '\n');
    };
    EXPECT_EQ(rows("whole"), 5);
    EXPECT_EQ(rows("part"), 4);
    EXPECT_EQ(mDir.Read("whole" + std::string(LOG_OF_BUNDLE)), mDir.Read("b" + std::string(LOG_OF_BUNDLE)));
    EXPECT_THAT(RunArborist({"detect", "part"}).out, HasSubstr("1. DROPS"));
}

TEST_F(BundleCommandTest, TheTargetsNameDecidesItsKind)
{
    WriteHotBundle(mDir, "b");
    EXPECT_EQ(Pack({"b", "-o", "folder/"}).status, 0);
    EXPECT_TRUE(mDir.Has("folder/bundle.json"));
    EXPECT_EQ(Pack({"b", "-o", "B.ZIP"}).status, 0);
    EXPECT_THAT(RunArborist({"bundle", "info", "B.ZIP"}).out, StartsWith("B.ZIP (zip)\n"));
}

// Pipes and folders in place of all files of a device, and then of the rules, are reported without waiting for them.
TEST_F(BundleCommandTest, NoFileOfABundleHasToBeAPlainOne)
{
    PrepareLaptop("b");
    std::vector<std::string> files;
    for (const auto& [path, state] : StateOf("b")) {
        if (fs::is_regular_file(path) && path != "b/bundle.json" && fs::path(path).extension() != ".sh") {
            files.emplace_back(path);
        }
    }
    for (const auto& [part, isPipe] : {std::pair("b/programdata", true), std::pair("b/programdata", false),
             std::pair("b/device", true), std::pair("b/device", false), std::pair("b/rules", true)}) {
        for (const std::string& file : files) {
            if (file.rfind(part, 0) == 0) {
                fs::remove_all(file);
                ASSERT_EQ(isPipe ? mkfifo(file.c_str(), 0600) : mkdir(file.c_str(), 0700), 0) << file;
            }
        }
        for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{{"detect"}, {"query"},
                 {"bundle", "info"}, {"bundle", "verify"}, {"repair", "list"}}) {
            std::vector<std::string> arguments = command;
            arguments.insert(arguments.end(), {"--log-level", "none", "b"});
            arguments.insert(arguments.end(), command[0] == "query" ? 1 : 0, "SPEAKER_TEST");
            EXPECT_THAT(RunArborist(arguments).status, testing::AnyOf(0, 3, 4)) << command[0];
        }
    }
}

TEST_F(BundleCommandTest, OtherRulesAreCapturedInTheirPlace)
{
    WriteHotBundle(mDir, "b");
    WriteDropsBundle(mDir, "other");
    Pack({"b", "--rules", "other/rules", "-o", "packed"});
    EXPECT_EQ(mDir.Read("packed/rules/FaultTreeRules.xml"), mDir.Read("other/rules/FaultTreeRules.xml"));
}

TEST_F(BundleCommandTest, WhatCannotBePackedLeavesNothing)
{
    WriteHotBundle(mDir, "b");
    mDir.MakeDir("there");
    EXPECT_EQ(Pack({"b", "-o", "there/"}).err, "arborist: b: there/: exists already [not_packed]\n");
    for (const char* target : {"no/packed", "no/packed.zip"}) {
        const auto result = Pack({"b", "-o", target});
        EXPECT_EQ(result.err, "arborist: b: " + std::string(target)
            + ": can't be written: No such file or directory [not_packed]\n");
        EXPECT_EQ(result.status, 4);
    }
    fs::remove("b/rules/FaultTreeRules.xml");
    const auto result = Pack({"b", "--log-level", "none", "-o", "packed"});
    EXPECT_THAT(result.err, EndsWith("[rule_file_missing]\n"));
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 2);
}

TEST_F(BundleCommandTest, WhatIsNoBundleIsNotPacked)
{
    mDir.Write("b/bundle.json", "{");
    for (const char* target : {"packed", "packed.zip"}) {
        const auto result = Pack({"b", "-o", target});
        EXPECT_THAT(result.err, EndsWith("[bad_json]\n"));
        EXPECT_EQ(result.status, 4);
        EXPECT_FALSE(mDir.Has(target));
    }
}

TEST_F(BundleCommandTest, ASearchedFolderIsCapturedWhereverTheRulesNameIt)
{
    PrepareLaptop("b");
    fs::copy("b/device/data", "b/data", fs::copy_options::recursive);
    const auto rules = mDir.Read("b/rules/FaultTreeRules.xml");
    const std::string before = "\"/data/panel\"";
    const auto search = [&](const std::string& folder, const std::vector<std::string>& arguments) {
        auto changed = rules;
        mDir.Write("b/rules/FaultTreeRules.xml", changed.replace(changed.find(before), before.size(), "\"" + folder + "\""));
        return Pack(arguments);
    };
    EXPECT_EQ(search("data/panel", {"b", "-o", "relative"}).status, 0);
    EXPECT_TRUE(mDir.Has("relative/data/panel/panel_a.db"));
    const std::string machine = mDir.Path("b/device/data/panel");
    EXPECT_EQ(search(machine, {"b", "--live", "-o", "live"}).status, 0);
    EXPECT_TRUE(mDir.Has("live/device" + machine + "/panel_a.db"));
    EXPECT_THAT(search("../outside", {"b", "-o", "outside"}).err,
        HasSubstr("warning: ../outside: leads out of the bundle, and is left out"));
}

TEST_F(BundleCommandTest, WithoutWindowsTheLogIsWhole)
{
    WriteHotBundle(mDir, "b");
    EventLogBuilder().Row({NOW - 1000 * DAY, 7, "", ""}).WriteTo(mDir.Path("b") + LOG_OF_BUNDLE);
    EXPECT_EQ(Pack({"b", "--window", "-o", "packed"}).status, 0);
    EXPECT_THAT(RunArborist({"log", "show", mDir.Path("packed") + LOG_OF_BUNDLE}).out, HasSubstr("\"event\": 7"));
}

TEST_F(BundleCommandTest, InfoTellsWhatIsInABundle)
{
    WriteHotBundle(mDir, "b", BundleJson(R"(, "now": 5, "tz": "UTC", "device": {"Product": "P1"})"));
    fs::remove("b/temperature");
    EXPECT_EQ(RunArborist({"bundle", "info", "b"}).out,
        "b (folder)\n"
        "  rules             1 tree, 1 rule under the tag Tag\n"
        "  scene             1\n"
        "  moment            5, zone UTC\n"
        "  device            Product P1\n"
        "  settings          DeviceRootDir device\n"
        "                    ProgramDataDir programdata\n"
        "  event log         none\n"
        "  repair records    0\n"
        "  node files        1 named, 0 there\n"
        "                    missing: temperature\n"
        "  searched folders  0 named, 0 there\n"
        "  code answers      0\n");
    EXPECT_THAT(RunArborist({"bundle", "info", "--json", "b"}).out,
        AllOf(StartsWith("{\"schema\": \"arborist.bundle.1\", \"bundle\": \"b\", \"ok\": true, \"warnings\": [], "),
            EndsWith("\"log\": {\"exists\": false, \"rows\": 0}, \"repairs\": {\"rows\": 0}, "
                     "\"nodeFiles\": [{\"path\": \"temperature\", \"exists\": false}], \"searchedFolders\": []}\n")));
    EXPECT_EQ(RunArborist({"bundle", "info", "nowhere"}).status, 4);
}

TEST_F(BundleCommandTest, VerifyTellsWhatIsSoundMissingAndBroken)
{
    WriteDropsBundle(mDir, "b");
    EXPECT_EQ(RunArborist({"bundle", "verify", "b"}).out,
        "b\n"
        "  ok                bundle.json can be used\n"
        "  ok                the rule set can be used\n"
        "  missing           the event log is not there [missing_log]\n"
        "  ok                the repair records can be read\n"
        "  ok                node file: 0 of 0 are there\n"
        "  ok                searched folder: 0 of 0 are there\n");
    EXPECT_EQ(RunArborist({"bundle", "verify", "b"}).status, 0);
    EXPECT_EQ(RunArborist({"bundle", "verify", "--strict", "b"}).status, 4);
    EventLogBuilder::Run(mDir.Write("b" + std::string(LOG_OF_BUNDLE), ""), "CREATE TABLE other (a)");
    const auto noTables = RunArborist({"bundle", "verify", "b"});
    EXPECT_THAT(noTables.out, HasSubstr("broken            programdata/Comms/Lumbra/workDir/0/log.db: no such table"));
    EXPECT_EQ(noTables.status, 4);
    fs::remove("b/rules/FaultTrees.xml");
    fs::remove("b" + std::string(LOG_OF_BUNDLE));
    EXPECT_EQ(RunArborist({"bundle", "verify", "--log-level", "none", "b"}).status, 3);
    mDir.Write("bad.zip", "PK\3\4 and no more");
    EXPECT_THAT(RunArborist({"bundle", "verify", "--json", "bad.zip"}).out,
        HasSubstr("\"ok\": false, \"findings\": [{\"state\": \"broken\", \"code\": \"bad_zip\""));
}

TEST_F(BundleCommandTest, APathThatLeadsOutIsLeftOutWithAWarning)
{
    WriteHotBundle(mDir, "b");
    auto rules = mDir.Read("b/rules/FaultTreeRules.xml");
    rules.replace(rules.find("path=\"temperature\""), 18, "path=\"../secret\"");
    mDir.Write("b/rules/FaultTreeRules.xml", rules);
    mDir.Write("secret", "90");
    const auto result = Pack({"b", "-o", "packed"});
    EXPECT_THAT(result.err, HasSubstr("warning: ../secret: leads out of the bundle, and is left out"));
    EXPECT_EQ(result.status, 0);
}

} // namespace
