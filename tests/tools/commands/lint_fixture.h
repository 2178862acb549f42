#ifndef ARBORIST_TESTS_TOOLS_COMMANDS_LINT_FIXTURE_H
#define ARBORIST_TESTS_TOOLS_COMMANDS_LINT_FIXTURE_H

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

inline constexpr char SAMPLES[] = ARBORIST_SOURCE_DIR "/tests/diagnosis/lint/samples/";

/// A rule file whose line 12 names no scene.
inline std::string RuleFile(const std::string& attributes = "", const std::string& before = "")
{
    return "<FaultTreeRules>\n"
           "  <EventRules>\n    <Laptop>\n"
           "      <Event><ID>E</ID><or type=\"singleRule\"><Rule><Rule-name>r</Rule-name></Rule></or></Event>\n"
           "    </Laptop>\n  </EventRules>\n"
           "  <EventFaultDescriptions><Laptop><Event><ID>E</ID><FaultDescriptions><description id=\"D\"/>"
           "</FaultDescriptions></Event></Laptop></EventFaultDescriptions>\n"
           "  <RuleList>\n    <Laptop>\n      <rule>\n" + before +
           "\n        <codeRule name=\"r\"" + attributes + "><detectInfo id=\"C\"/></codeRule>\n"
           "      </rule>\n    </Laptop>\n  </RuleList>\n</FaultTreeRules>\n";
}

/// "arborist lint" of a small rule set.
class LintFixture : public testing::Test {
protected:
    // A rule set in "rules" whose only finding is A401 in line 12.
    void SetUp() override
    {
        std::filesystem::create_directory("rules");
        std::filesystem::copy_file(std::string(SAMPLES) + "plain/FaultTrees.xml", "rules/FaultTrees.xml");
        Write(RuleFile());
    }

    void Write(const std::string& ruleFile) { mDir.Write("rules/FaultTreeRules.xml", ruleFile); }
    void Mend() { Write(RuleFile(" detectScene=\"1\"")); }

    ProcessResult Lint(std::vector<std::string> options, const ProcessSetup& setup = {})
    {
        options.insert(options.begin(), "lint");
        return RunArborist(options, setup);
    }

    TempDir mDir;
};

#endif
