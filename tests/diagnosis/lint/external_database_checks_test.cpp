#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/lint/lint.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAreArray;

struct PatternCase {
    const char* name;
    std::vector<std::string> folders;
    std::string pattern;
    std::vector<std::string> findings;
};

void PrintTo(const PatternCase& patternCase, std::ostream* out) { *out << patternCase.pattern; }

std::vector<std::string> FindingsInDatabases(const std::vector<std::string>& folders, const std::string& pattern)
{
    std::string paths;
    for (const std::string& folder : folders) {
        paths += "<dbPath decompression='false' type='x' value='" + folder + "'/>";
    }
    const TempDir dir;
    dir.Write("FaultTrees.xml", "<F version='1'><Laptop/></F>");
    dir.Write("FaultTreeRules.xml",
        "<R><RuleCommonPart><Laptop><commonPart><defDBTable name='d'><dbPaths>" + paths + "</dbPaths><dbName name='"
            + pattern + "'/></defDBTable></commonPart></Laptop></RuleCommonPart></R>");
    diagnosis::lint::LintOptions options;
    options.only = {"A816"};
    std::vector<std::string> found;
    for (const auto& finding : diagnosis::lint::LintFolder(dir.Path(), options).findings) {
        found.push_back(finding.message);
    }
    return found;
}

class PatternChecks : public testing::TestWithParam<PatternCase> {};

TEST_P(PatternChecks, FindAPatternThatMatchesNothingBelowTheFoldersThatAreSearched)
{
    EXPECT_THAT(FindingsInDatabases(GetParam().folders, GetParam().pattern), ElementsAreArray(GetParam().findings));
}

std::vector<std::string> Outside(const std::string& folder)
{
    return {"the pattern of the databases \"d\" matches no path below \"" + folder + "\", which is searched"};
}

const std::vector<std::string> NO_PATH = {"the pattern of the databases \"d\" does not cover the folders of a path"};

INSTANTIATE_TEST_SUITE_P(Each, PatternChecks,
    testing::ValuesIn(std::vector<PatternCase>{
        {"OtherFolder", {"/data"}, "/other/usage\\.db", Outside("/data")},
        {"FolderOfALongerName", {"/data"}, "/database/usage\\.db", Outside("/data")},
        {"SlashAtTheEnd", {"/data/"}, "^/other/.*", Outside("/data/")},
        {"OtherThanBoth", {"/data", "/more"}, "/other/.*", Outside("/data")},
        {"Same", {"/data"}, "/data/usage\\.db", {}},
        {"Below", {"/data"}, "/data/app/usage\\.db", {}},
        {"Above", {"/data/app"}, "/data/.*", {}},
        {"Letters", {"/Data"}, "/dATA/.*", {}},
        {"SecondOfTwo", {"/data", "/other"}, "/other/.*", {}},
        {"Alternatives", {"/data"}, "/other/x|/data/x", {}},
        {"AlternativesOutside", {"/data"}, "/(other|more)/x\\.db", Outside("/data")},
        {"FolderItself", {"/data"}, "/data/?", Outside("/data")},
        {"CharacterOfASet", {"/data"}, "/[^d].*", Outside("/data")},
        {"NameOfAFile", {"/data"}, "usage\\.db", NO_PATH},
        {"NamesOfFiles", {"/data"}, "(usage|battery)\\.db", NO_PATH},
        {"LettersWithoutFolders", {"/data"}, "\\w+\\.db", NO_PATH},
        {"SetWithoutFolders", {"/data"}, "[a-z0-9_]+\\.db", NO_PATH},
        {"Drive", {"data"}, "c:/data/.*", {}},
        {"CapitalClassIsPutInLowerCase", {"/data"}, "\\D+", NO_PATH},
        {"NoPattern", {"/data"}, "(usage", {}},
        {"ManyPaths", {"/a", "/b", "/c", "/d", "/e"}, "/other/.*", {}},
        {"AnyFolder", {"/data"}, ".*/usage\\.db", {}},
        {"CharacterThatMayBeLeftOut", {"/data"}, "/data/?x", {}},
        {"TopFolder", {"/"}, "/other/.*", {}},
        {"FolderFromHere", {"data"}, "/other/.*", {}},
        {"FolderAbove", {"/data/../other"}, "/other/.*", {}},
        {"NoPath", {}, "/other/.*", {}},
        {"EmptyPath", {""}, "/other/.*", {}},
    }),
    CaseName());

} // namespace
