#include <filesystem>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace fs = std::filesystem;

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ExplainCommandTest : public testing::Test {
protected:
    // The nodes "yes" and "no" decide the rules of these names; the events A and B use "yes", C and D "no".
    void WriteTree(const Xml& gate, const std::string& observed = "")
    {
        RuleXml rules("Tag");
        for (const std::string name : {"yes", "no"}) {
            rules.Rule(NodeRuleXml(name, {NodeInfoXml("V", name), ParamsXml({ParamXml("v", "V", "int")}),
                ConditionXml({SingleLogicXml(TestXml("eq", "v", "1"))})}));
            mDir.Write("b/" + name, name == "yes" ? "1" : "0");
        }
        for (const std::string id : {"A", "B", "C", "D"}) {
            rules.EventRule(id, {Single(id < "C" ? "yes" : "no")});
        }
        if (!observed.empty()) {
            rules.EventRule(observed, {Single("no")});
        }
        mDir.Write("b/bundle.json", BundleJson());
        mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Version("3").Tree("T", gate).Text());
        mDir.Write("b/rules/FaultTreeRules.xml", rules.Text());
    }

    static std::string Explained(const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments{"explain", "b"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const auto result = RunArborist(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        return result.out;
    }

    TempDir mDir;
};

TEST_F(ExplainCommandTest, TellsTheTreeItsRulesAndTheRootCause)
{
    WriteHotBundle(mDir, "b");
    EXPECT_EQ(Explained(), "b\n"
                           "  T (version 3): FAULT, 1 root cause\n"
                           "  TRUE     T OR  [1 of 1 in error]\n"
                           "  TRUE     └─ HOT  Too hot\n"
                           "                 rule hot (node): TRUE condition_met\n"
                           "                     T = 80 from temperature\n"
                           "                     T 80 > 70 (int): holds\n"
                           "  Root cause HOT  Too hot\n"
                           "      T / HOT\n"
                           "        rule hot: condition_met, T 80 > 70: holds\n"
                           "      description D1  suggestions S1, S2  repairs R1\n"
                           "  1 tree: 1 fault\n");
}

TEST_F(ExplainCommandTest, JsonHasExactlyTheKeysInTheirOrder)
{
    WriteHotBundle(mDir, "b");
    EXPECT_EQ(Explained({"--json"}),
        R"({"schema": "arborist.explain.1", "bundle": "b", "ok": true, "warnings": [], "results": [{"treeId": "T", )"
        R"("version": "3", "isFault": true, )"
        R"("verdict": "fault", "complete": true, "checks": {"total": 1, "decided": 1, "not_applicable": 0, )"
        R"("not_selected": 0, "not_checked": 0, "no_data": 0, "error": 0}, "open": [], "possibleCauses": [], )"
        R"("possibleCausesTruncated": false, )"
        R"("tree": {"id": "T", "name": "", "kind": "intermediate", "gate": "or", )"
        R"("status": "TRUE", "observable": false, "check": "", "restsOnDefault": false, "reason": "", "logic": {"outcome": "TRUE", "below": 1, )"
        R"("inError": 1, "decidedBy": "HOT"}, "children": [{"id": "HOT", "name": "Too hot", "kind": "basic", )"
        R"("gate": "", "status": "TRUE", "observable": false, "check": "decided", "restsOnDefault": false, "reason": "", "evidence": 0, "children": []}]}, )"
        R"("evidence": [{"event": "HOT", "fired": true, "reason": "", "check": "decided", "rules": [{"name": "hot", "family": "node", )"
        R"("verdict": "TRUE", "reason": "condition_met", "check": "decided", "alternative": 0, "files": [{"param": "T", )"
        R"("path": "temperature", "readable": true, "value": "80\n"}], "comparisons": [{"paramId": "t", )"
        R"("key": "T", "type": "int", "observed": "80\n", "logic": "gt", "threshold": "70", "source": "", )"
        R"("sourceId": "", "holds": true}]}]}], "rootCauses": [{"id": "HOT", "name": "Too hot", "userDefined": "{}", )"
        R"("faultDescription": "D1", "suggestions": ["S1", "S2"], "repairs": [{"id": "R1", "extra": )"
        R"("{\"R1\": \"{\\\"operat\\u0069on\\\": \\\"clean\\\"}\"}", "operation": "clean"}], "times": 1, )"
        R"("cutSet": [{"id": "HOT", "status": "TRUE", "path": ["T", "HOT"], "evidence": 0}]}], "cutOffs": []}]})"
        "\n");
}

TEST_F(ExplainCommandTest, GatesTellWhatDecidedThem)
{
    WriteTree(Or({Intermediate("G", And({Basic("A"), Basic("C")})), Basic("X"),
        Xml("House-Event").TextChild("ID", "U")}));
    EXPECT_THAT(Explained(), AllOf(HasSubstr("UNKNOWN  T OR  [0 of 3 in error]\n"),
        HasSubstr("FALSE    ├─ G AND  [1 of 2 in error, C decides]\n"), HasSubstr("FALSE    ├─ X  [no_event_rule]\n"),
        HasSubstr("UNKNOWN  └─ U (undeveloped)\n")));
}

TEST_F(ExplainCommandTest, EventsThatAnObservableOneCutsOffAreNamed)
{
    WriteTree(Or({Intermediate("G", Or({Basic("A"), Basic("B"), Basic("C")}))}), "G");
    EXPECT_THAT(Explained(), AllOf(
        HasSubstr("└─ G OR  [2 of 3 in error; decided by its own rules, its gate says TRUE]\n"),
        EndsWith("  Cut off by G, which its own rules keep from error: A, B\n  1 tree: 1 no fault\n")));
    EXPECT_THAT(Explained({"--near-misses", "1"}), HasSubstr("  Near miss, 1 event short: G beside A\n"
                                                              "      T / G  FALSE\n"
                                                              "        rule no: FALSE condition_not_met, V 0 = 1: fails\n"));
    EXPECT_THAT(Explained({"--json"}), HasSubstr(R"("cutOffs": [{"id": "G", "path": ["T", "G"], "leaves": [{"id": "A")"));
}

TEST_F(ExplainCommandTest, NearMissesBeyondTheLimitAreCounted)
{
    WriteTree(Or({Basic("C"), Basic("D"), Basic("X")}));
    EXPECT_THAT(Explained({"--near-misses", "1", "--limit", "2"}), EndsWith("  1 more left out\n  1 tree: 1 undecided\n"));
    EXPECT_THAT(Explained({"--near-misses", "1", "--limit", "2", "--json"}),
        HasSubstr(R"("nearMisses": {"leftOut": 1, "complete": true, "sets": [{"missing": [{"id": "C")"));
}

TEST_F(ExplainCommandTest, TellsTheNextChecksOfAnUndecidedTree)
{
    WriteTree(Or({Intermediate("G", And({Basic("C"), Basic("D")})), Basic("X")}));
    fs::remove("b/no");
    EXPECT_THAT(Explained({"--next", "3"}), EndsWith(
        "  Fewest checks, not likeliest cause: 1 check can prove a fault, at most 2 rule it out\n"
        "    next: X, because a rule is missing\n"
        "    then: C, rule no, because the node file no is missing\n" // which answers D, too
        "  1 tree: 1 undecided\n"));
    EXPECT_THAT(Explained({"--next", "1"}), Not(HasSubstr("then: ")));
    EXPECT_THAT(Explained(), Not(HasSubstr("Fewest checks")));
}

TEST_F(ExplainCommandTest, TellsACheckToCloseWhereNothingWasDecided)
{
    WriteTree(And({Basic("C"), Basic("E", {"", "", "", "2"})}));
    fs::remove("b/no");
    EXPECT_THAT(Explained({"--next", "2"}), AllOf(StartsWith("b\n  the node file no would decide 1 of 1 undecided tree (1 check)\n"),
        EndsWith("  Fewest checks, not likeliest cause: no check can prove a fault, but nothing was decided yet: 1 check is enough for "
                 "no fault\n"
                 "    next: C, rule no, because the node file no is missing\n"
                 "  1 tree: 1 undecided\n")));
    EXPECT_THAT(Explained({"--next", "2", "--json"}),
        HasSubstr(R"("next": {"toProve": null, "toRuleOut": 1, "aboutCause": false, "atMost": false, "checks": [{"event": "C", )"));
}

TEST_F(ExplainCommandTest, TellsWhatMissingThingWouldDecideFirst)
{
    WriteTree(Or({Basic("C"), Basic("D")}));
    fs::remove("b/no");
    EXPECT_THAT(Explained({"--next", "1"}), StartsWith("b\n  the node file no would decide 1 of 1 undecided tree (2 checks)\n"));
    EXPECT_THAT(Explained({"--next", "1", "--json"}),
        AllOf(HasSubstr(R"("next": {"toProve": 1, "toRuleOut": 2, "aboutCause": true, "atMost": true, "checks": [{"event": "C", )"
                        R"("rule": "no", "reason": "node_unreadable", "detail": "no", "path": ["T", "C"], "toProve": 1, )"
                        R"("toRuleOut": 2}]})"),
            HasSubstr(R"("missing": {"undecided": 1, "sources": [{"reason": "node_unreadable", "detail": "no", "checks": 2, )"
                      R"("decides": 1}]})")));
}

TEST_F(ExplainCommandTest, TellsNoNextChecksOfADecidedTree)
{
    WriteTree(Or({Basic("A"), Basic("X")}));
    EXPECT_THAT(Explained({"--next", "1"}), AllOf(Not(HasSubstr("Fewest")), Not(HasSubstr("would decide"))));
    EXPECT_THAT(Explained({"--next", "1", "--json"}),
        AllOf(HasSubstr(R"("next": null)"), HasSubstr(R"("missing": {"undecided": 0, "sources": []})")));
}

TEST_F(ExplainCommandTest, ACauseThatTheListRepeatsIsToldOnce)
{
    const auto shared = Intermediate("G", And({Basic("A"), Basic("B")}));
    WriteTree(Or({shared, Intermediate("H", Or({shared})), Basic("C")}));
    EXPECT_THAT(Explained(), AllOf(HasSubstr("T (version 3): FAULT, 2 root causes (1 distinct)\n"),
        HasSubstr("  Root cause A + B  (stands 2 times in the list)\n"
                  "      T / G / A\n"
                  "        rule yes: condition_met, V 1 = 1: holds\n"
                  "      T / G / B\n"),
        HasSubstr("rules as above\n")));
    EXPECT_EQ(Explained({"--brief"}), "b\n  T: A + B  (stands 2 times in the list)\n  1 tree: 1 fault\n");
}

TEST_F(ExplainCommandTest, MinimalSetsHaveSharesAndRepairs)
{
    WriteTree(Or({Basic("A"), Intermediate("G", And({Basic("A"), Basic("B")}))}));
    EXPECT_THAT(Explained({"--minimal"}), EndsWith("  Minimal cut sets: 1, of 2 distinct sets and 2 entries of the list\n"
                                                   "      A\n"
                                                   "  Share of the minimal cut sets\n"
                                                   "      100.0%  A\n"
                                                   "  Repair A: no root cause would remain\n"
                                                   "  1 tree: 1 fault\n"));
    EXPECT_THAT(Explained({"--minimal", "--json"}),
        HasSubstr(R"("minimal": {"listed": 2, "distinct": 2, "sets": [{"ids": ["A"], "times": 1}], "shares": )"
                  R"([{"id": "A", "sets": 1, "share": 1.000000}], "repairs": {"ids": ["A"], "smallest": true}})"));
}

TEST_F(ExplainCommandTest, AnEventCanBeSingledOut)
{
    WriteTree(Or({Basic("A"), Intermediate("G", And({Basic("B"), Basic("C")}))}));
    EXPECT_EQ(Explained({"--event", "C"}), "b\n"
                                           "  T (version 3): FAULT, 1 root cause\n"
                                           "  FALSE    C\n"
                                           "              path T / G / C\n"
                                           "              rule no (node): FALSE condition_not_met\n"
                                           "                  V = 0 from no\n"
                                           "                  V 0 = 1 (int): fails\n"
                                           "  1 tree: 1 fault\n");
    EXPECT_THAT(Explained({"--event", "A"}), HasSubstr("  Root cause A\n"));
    EXPECT_THAT(Explained({"--event", "C", "--json"}),
        AllOf(HasSubstr(R"("events": [{"id": "C")"), HasSubstr(R"("path": ["T", "G", "C"])"), Not(HasSubstr("\"tree\""))));
}

TEST_F(ExplainCommandTest, ARuleAndACauseCanBeSingledOut)
{
    WriteTree(Or({Basic("A"), Basic("B"), Basic("C")}));
    EXPECT_THAT(Explained({"--rule", "no"}), AllOf(HasSubstr("  FALSE    C\n"), Not(HasSubstr("rule yes")),
        Not(HasSubstr("Root cause"))));
    EXPECT_THAT(Explained({"--cause", "B"}), AllOf(HasSubstr("  TRUE     B\n"), HasSubstr("Root cause B\n"),
        Not(HasSubstr("Root cause A"))));
}

TEST_F(ExplainCommandTest, ANarrowViewHasTheNearMissesOfItsEvent)
{
    WriteTree(Or({Basic("C"), Intermediate("G", And({Basic("D"), Basic("A")})), Basic("X")}));
    const auto missesOf = [](std::vector<std::string> more) {
        more.insert(more.end(), {"--near-misses", "1"});
        std::string misses;
        std::istringstream lines(Explained(more));
        for (std::string line; std::getline(lines, line);) {
            misses += line.rfind("  Near miss", 0) == 0 ? line.substr(line.find(": ") + 2) + "\n" : "";
        }
        return misses;
    };
    EXPECT_EQ(missesOf({}), "C\nD beside A\nX\n");
    EXPECT_EQ(missesOf({"--event", "G"}), "D beside A\n");
    EXPECT_EQ(missesOf({"--event", "A"}), "D beside A\n");
    EXPECT_EQ(missesOf({"--event", "X"}), "X\n");
    EXPECT_EQ(missesOf({"--rule", "no"}), "C\nD beside A\n");
    EXPECT_THAT(Explained({"--rule", "no", "--near-misses", "1", "--limit", "1"}),
        EndsWith("  1 more left out\n  1 tree: 1 undecided\n"));
}

TEST_F(ExplainCommandTest, AnEventThatIsNoRootCauseIsAskedForWithItsNearMisses)
{
    WriteTree(Or({Basic("A"), Basic("C")}));
    EXPECT_EQ(Explained({"--cause", "C"}), "b\n  nothing in any tree fits --cause C\n  1 tree: 1 fault\n");
    EXPECT_THAT(Explained({"--cause", "C", "--near-misses", "1"}), AllOf(StartsWith("b\n  T (version 3): FAULT"),
        HasSubstr("\n  Near miss, 1 event short: C\n"), Not(HasSubstr("Root cause"))));
}

TEST_F(ExplainCommandTest, AViewThatNothingFitsSaysSo)
{
    WriteTree(Or({Basic("A"), Basic("C")}));
    EXPECT_EQ(Explained({"--event", "A", "--rule", "no"}), "b\n  nothing in any tree fits --event A and --rule no\n  1 tree: 1 fault\n");
}

TEST_F(ExplainCommandTest, BriefTellsWhatElseWasAskedFor)
{
    WriteTree(Or({Basic("A"), Basic("C")}));
    const auto text = Explained({"--brief", "--near-misses", "1", "--minimal"});
    EXPECT_THAT(text, StartsWith("b\n  T: A\n  Near miss, 1 event short: C\n"));
    EXPECT_THAT(text, EndsWith("  Repair A: no root cause would remain\n  1 tree: 1 fault\n"));
}

TEST_F(ExplainCommandTest, ANarrowViewLeavesTreesOutThatHaveNothingOfIt)
{
    WriteTree(Or({Basic("A")}));
    mDir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Version("3").Tree("T1", Or({Basic("A")}))
        .Tree("T2", Or({Basic("C")})).Tree("T3", Or({Basic("A"), Basic("C")})).Text());
    EXPECT_THAT(Explained({"--event", "C"}), AllOf(Not(HasSubstr("T1")),
        StartsWith("b\n  T2 (version 3): no fault\n  FALSE    C\n"), HasSubstr("\n\n  T3 (version 3): FAULT")));
    EXPECT_EQ(Explained({"--brief", "--event", "C"}), "b\n  T2: no fault\n  3 trees: 2 fault, 1 no fault\n");
    EXPECT_THAT(Explained({"--event", "C", "--json"}), AllOf(
        HasSubstr(R"("treeId": "T1", "version": "3", "isFault": true, "verdict": "fault")"), HasSubstr(R"("events": [])")));
    EXPECT_THAT(Explained({"--event", "C", "--minimal"}), HasSubstr("  Minimal cut sets: none\n"));
}

TEST_F(ExplainCommandTest, AnUnknownWordIsWrongUseWithTheNearest)
{
    WriteHotBundle(mDir, "b");
    const auto event = RunArborist({"explain", "--event", "HOTT", "b"});
    EXPECT_EQ(event.err,
        "arborist: b: no event \"HOTT\" in this detection; did you mean \"HOT\"? [unknown_event]\n");
    EXPECT_EQ(event.out, "b\n  NOT DIAGNOSED\n");
    EXPECT_EQ(event.status, 2);
    EXPECT_THAT(RunArborist({"explain", "--rule", "hut", "b"}).err, HasSubstr("did you mean \"hot\"? [unknown_rule]"));
    const auto cause = RunArborist({"explain", "--json", "--cause", "nothing", "b"});
    EXPECT_THAT(cause.out, AllOf(HasSubstr(R"("ok": false)"), HasSubstr(R"("error": {"code": "unknown_cause")")));
}

struct ColourCase {
    const char* name;
    std::vector<std::string> options;
    std::map<std::string, std::string> environment;
    bool onTerminal;
    bool elsewhere;
};
void PrintTo(const ColourCase& colour, std::ostream* out) { *out << colour.name; }
class Colours : public ExplainCommandTest, public testing::WithParamInterface<ColourCase> {};

TEST_P(Colours, ComeOnATerminalUnlessSomebodySaysOtherwise)
{
    WriteHotBundle(mDir, "b");
    const std::string plain = Explained();
    EXPECT_THAT(plain, Not(HasSubstr("\x1b[")));
    ProcessSetup setup;
    setup.environment = {{"NO_COLOR", ""}, {"TERM", "xterm-256color"}};
    for (const auto& [name, value] : GetParam().environment) {
        setup.environment[name] = value;
    }
    for (const std::vector<std::string>& command : {std::vector<std::string>{"explain"}, {"detect", "--explain"}}) {
        std::vector<std::string> arguments = command;
        arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
        arguments.emplace_back("b");
        const auto coloured = [](const std::string& out) { return out.find("\x1b[31;1mFAULT\x1b[0m") != std::string::npos; };
        const std::string onTerminal = RunArboristOnTerminal(arguments, setup).out;
        EXPECT_EQ(coloured(onTerminal), GetParam().onTerminal) << onTerminal;
        EXPECT_EQ(onTerminal.find('\x1b') != std::string::npos, GetParam().onTerminal) << onTerminal;
        EXPECT_EQ(coloured(RunArborist(arguments, setup).out), GetParam().elsewhere);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, Colours, testing::Values(ColourCase{"OfThemselves", {}, {}, true, false},
    ColourCase{"Auto", {"--color=auto"}, {}, true, false}, ColourCase{"Always", {"--color=always"}, {}, true, true},
    ColourCase{"Never", {"--color", "never"}, {}, false, false},
    ColourCase{"NoColor", {}, {{"NO_COLOR", "1"}}, false, false},
    ColourCase{"NoColorAndAlways", {"--color=always"}, {{"NO_COLOR", "1"}}, true, true},
    ColourCase{"DumbTerminal", {}, {{"TERM", "dumb"}}, false, false}), CaseName());

TEST_F(ExplainCommandTest, ColoursOfNoKnownWordAreWrongUse)
{
    WriteHotBundle(mDir, "b");
    EXPECT_EQ(RunArborist({"explain", "--color=sometimes", "b"}).status, 2);
    EXPECT_EQ(RunArborist({"detect", "--color=sometimes", "b"}).status, 2);
}

TEST_F(ExplainCommandTest, JsonIsNeverColoured)
{
    WriteHotBundle(mDir, "b");
    const ProcessSetup setup{{}, {{"NO_COLOR", ""}, {"TERM", "xterm"}}, {}};
    EXPECT_THAT(RunArboristOnTerminal({"explain", "--json", "b"}, setup).out, Not(HasSubstr("\x1b")));
}

TEST_F(ExplainCommandTest, DetectTellsWhyOfTheSameRun)
{
    WriteHotBundle(mDir, "b");
    const std::string plain = RunArborist({"detect", "b"}).out;
    EXPECT_EQ(RunArborist({"detect", "--explain", "b"}).out, plain + Explained());
    const std::string json = RunArborist({"detect", "--json", "b"}).out;
    const std::string both = RunArborist({"detect", "--explain", "--json", "b"}).out;
    EXPECT_THAT(both, StartsWith(json.substr(0, json.find(R"("error": )"))));
    EXPECT_THAT(both, HasSubstr(R"(], "explanation": [{"treeId": "T")"));
}

TEST_F(ExplainCommandTest, ABundleThatCannotBeRunIsToldAndTheNextGoesOn)
{
    WriteHotBundle(mDir, "b");
    const auto result = RunArborist({"explain", "nowhere", "b"});
    EXPECT_THAT(result.out, StartsWith("nowhere\n  NOT DIAGNOSED\nb\n"));
    EXPECT_EQ(result.status, 4);
}

// The line end explains why "on" differs from "on".
TEST_F(ExplainCommandTest, TheLineEndOfATextIsShownWhereItCounts)
{
    WriteTree(Or({Basic("A")}));
    mDir.Write("b/yes", "on\n");
    mDir.Write("b/rules/FaultTreeRules.xml", RuleXml("Tag").EventRule("A", {Single("r")})
        .Rule(NodeRuleXml("r", {NodeInfoXml("V", "yes"), ParamsXml({ParamXml("v", "V", "string")}),
            ConditionXml({SingleLogicXml(TestXml("eq", "v", "on"))})})).Text());
    EXPECT_THAT(Explained(), AllOf(HasSubstr("V = on from yes\n"), HasSubstr("V \"on\\x0A\" = on (string): fails\n")));
}

TEST_F(ExplainCommandTest, TextsOfStrangersAreCutAndDoNotSteerTheTerminal)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("b/temperature", "\x1b[31m" + std::string(100, 'x'));
    EXPECT_THAT(Explained(), AllOf(HasSubstr("T = \"\\x1B[31mxxxx"), HasSubstr("... (105 bytes)"), Not(HasSubstr("\x1b["))));
}

} // namespace
