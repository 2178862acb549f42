#include <algorithm>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/lint/base/event_counts.h"
#include "diagnosis/lint/device_profiles.h"
#include "diagnosis/lint/lint.h"
#include "diagnosis/lint/registry.h"
#include "tests/diagnosis/lint/sample.h"
#include "tests/support/case_name.h"
#include "tests/support/example_run.h"

namespace {

using diagnosis::lint::AllChecks;
using diagnosis::lint::Check;
using diagnosis::lint::CheckClass;
using diagnosis::lint::Severity;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;

// Samples are small on purpose, and have one code rule for all where they can: this is found in many of them.
const std::set<std::string> FOUND_IN_MANY = {"A216", "A302", "A309", "A901", "A910"};

// Lines "event rows" of a sample that is about an event log.
std::map<std::int64_t, std::uint64_t> ReadCounts(const LintSample& sample)
{
    std::ifstream file(sample.folder + "/counts.txt");
    std::map<std::int64_t, std::uint64_t> counts;
    std::int64_t id = 0;
    for (std::uint64_t rows = 0; file >> id >> rows;) {
        counts[id] = rows;
    }
    return counts;
}

std::set<std::string> FoundIn(const LintSample& sample, const std::string& which)
{
    diagnosis::lint::LintOptions options;
    std::string problem;
    if (std::filesystem::exists(sample.folder + "/device.json")) {
        options.devices = *diagnosis::lint::ReadDeviceProfiles(sample.folder + "/device.json", problem);
    }
    const auto rows = ReadCounts(sample);
    const diagnosis::lint::EventCounts counts(rows);
    options.counts = rows.empty() ? nullptr : &counts;
    if (std::filesystem::exists(sample.folder + "/device")) {
        options.deviceRoot = sample.folder + "/device";
    }
    std::set<std::string> found;
    for (const auto& finding : diagnosis::lint::LintFiles(sample.Files(which), options).findings) {
        if (FOUND_IN_MANY.count(finding.check->id) == 0 || finding.check->id == sample.id) {
            found.insert(finding.check->id);
        }
    }
    return found;
}

PageExample Detection(const LintSample& sample, const std::string& which, const LintEffect& effect)
{
    PageExample example;
    example.entries = effect.scene;
    for (const std::string& folder : sample.Folders(which)) {
        example.entries.emplace_back("rule set", folder);
    }
    return example;
}

void ExpectOutcomes(const LintSample& sample, const std::string& which, const std::vector<std::string>& outcomes)
{
    const LintEffect effect = ReadEffect(sample);
    const PageExample example = Detection(sample, which, effect);
    for (const auto& [key, text] : example.entries) {
        EXPECT_THAT(KnownKeys(), Contains(key));
    }
    ExampleRun run(example);
    for (const std::string& outcome : outcomes) {
        EXPECT_EQ(run.FaultOf(outcome), "") << which << ": " << outcome;
    }
}

class SampleOf : public testing::TestWithParam<LintSample> {};

TEST_P(SampleOf, IsFoundWhereItIsBadAndNotWhereItIsGood)
{
    const LintSample& sample = GetParam();
    std::set<std::string> expected = ReadEffect(sample).also;
    const std::set<std::string> inGood = FoundIn(sample, "good");
    EXPECT_TRUE(std::includes(expected.begin(), expected.end(), inGood.begin(), inGood.end()))
        << testing::PrintToString(inGood);
    EXPECT_THAT(inGood, Not(Contains(sample.id)));
    expected.insert(sample.id);
    EXPECT_EQ(FoundIn(sample, "bad"), expected);
}

TEST_P(SampleOf, HasTheEffectThatItsCheckTells)
{
    const LintSample& sample = GetParam();
    const LintEffect effect = ReadEffect(sample);
    const Check* const check = diagnosis::lint::FindCheck(sample.id);
    ASSERT_NE(check, nullptr);
    if (check->severity != Severity::INFO) {
        EXPECT_THAT(effect.bad, Not(IsEmpty()));
        EXPECT_THAT(effect.good, Not(IsEmpty()));
        EXPECT_NE(effect.bad, effect.good);
    }
    ExpectOutcomes(sample, "bad", effect.bad);
    ExpectOutcomes(sample, "good", effect.good);
}

INSTANTIATE_TEST_SUITE_P(All, SampleOf, testing::ValuesIn(AllLintSamples()), CaseName());

/// The lines of a file of this folder, without comments: the first word of each, and the rest.
std::map<std::string, std::string> ReadList(const std::string& name)
{
    std::ifstream file(std::string(ARBORIST_SOURCE_DIR) + "/tests/diagnosis/lint/" + name);
    std::map<std::string, std::string> list;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.front() != '#') {
            const std::size_t space = std::min(line.find(' '), line.size());
            list[line.substr(0, space)] = space == line.size() ? "" : line.substr(space + 1);
        }
    }
    return list;
}

std::string KindOf(const Check& check)
{
    const std::string severity = check.severity == Severity::ERROR ? "E" : check.severity == Severity::WARNING ? "W" : "I";
    return severity + (check.kind == CheckClass::SQL ? " S" : check.kind == CheckClass::DEVICE ? " D"
            : check.kind == CheckClass::HOST                                                   ? " H"
                                                                                               : "");
}

TEST(LintCatalogue, HasEveryCheckWithItsSeverityButThoseThatAreListedAsNotDoneYet)
{
    std::map<std::string, std::string> expected = ReadList("catalogue.txt");
    for (const auto& [id, reason] : ReadList("not_yet.txt")) {
        EXPECT_EQ(expected.erase(id), 1U) << id << " is in not_yet.txt and not in catalogue.txt";
    }
    std::map<std::string, std::string> checks;
    for (const Check* check : AllChecks()) {
        EXPECT_TRUE(checks.emplace(check->id, KindOf(*check)).second) << check->id << " stands twice";
    }
    EXPECT_EQ(checks, expected);
}

TEST(LintCatalogue, HasASampleForEachCheckAndNoneForAnother)
{
    std::set<std::string> sampled;
    for (const LintSample& sample : AllLintSamples()) {
        EXPECT_TRUE(sampled.insert(sample.id).second || !sample.id.empty()) << sample.folder;
        EXPECT_NE(diagnosis::lint::FindCheck(sample.id), nullptr) << sample.folder;
    }
    for (const Check* check : AllChecks()) {
        EXPECT_EQ(sampled.count(check->id), 1U) << check->id;
        EXPECT_NE(diagnosis::lint::FindSample(check->id), nullptr) << check->id;
    }
}

TEST(LintCatalogue, TellsOfEachCheckInWholeSentences)
{
    for (const Check* check : AllChecks()) {
        const std::string finds = check->finds;
        const std::string atRunTime = check->atRunTime;
        EXPECT_EQ(finds.back(), '.') << check->id;
        EXPECT_NE(atRunTime.back(), '.') << check->id << ": it follows \"at run time\" and is given its full stop";
        EXPECT_LT(std::string(check->title).size(), 60U) << check->id;
    }
}

} // namespace
