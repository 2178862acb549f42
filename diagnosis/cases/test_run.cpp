#include "diagnosis/cases/test_run.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <set>

#include "diagnosis/cases/case_file.h"

namespace diagnosis::cases {

namespace fs = std::filesystem;

namespace {

std::vector<std::string> CaseFilesBelow(const std::string& folder)
{
    std::vector<std::string> files;
    std::error_code error;
    const auto options = fs::directory_options::skip_permission_denied;
    for (fs::recursive_directory_iterator entry(folder, options, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().generic_string().ends_with(CASE_FILE_END) && entry->is_regular_file(error)) {
            files.push_back(entry->path().generic_string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

// What a folder has, in order of names.
std::vector<fs::directory_entry> EntriesOf(const fs::path& folder, std::size_t most)
{
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end && entries.size() < most;
         entry.increment(error)) {
        entries.push_back(*entry);
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

bool IsHidden(const fs::path& path)
{
    return path.filename().generic_string().starts_with('.');
}

/// Runs the cases of one path after the other.
class TestRunner {
public:
    explicit TestRunner(const TestOptions& options) : mOptions(options), mRunner(options.rules) {}

    void RunPath(const std::string& path)
    {
        std::error_code error;
        if (!fs::is_directory(path, error)) {
            RunFile(path);
            return;
        }
        for (const std::string& file : CaseFilesBelow(path)) {
            RunFile(file);
        }
    }

    TestRun& Run()
    {
        mRun.coverage = mCoverage.Result();
        return mRun;
    }

private:
    bool IsWanted(const TestCase& testCase) const
    {
        std::error_code error;
        return testCase.name.find(mOptions.filter) != std::string::npos
            && (mOptions.onlyRules.empty() || fs::equivalent(testCase.bundle.ruleFileDir, mOptions.onlyRules, error));
    }

    void RunFile(const std::string& path)
    {
        std::error_code error;
        if (!mSeen.insert(fs::weakly_canonical(path, error).generic_string()).second) {
            return;
        }
        const CaseFile file = ReadCaseFile(path);
        mRun.failures.insert(mRun.failures.end(), file.failures.begin(), file.failures.end());
        for (const TestCase& testCase : file.cases) {
            if (IsWanted(testCase)) {
                RunCase(testCase);
            }
        }
    }

    void RunCase(const TestCase& testCase)
    {
        mRun.cases.push_back(mRunner.Run(testCase));
        if (mOptions.withCoverage && !mRunner.LastReport().failure) {
            const RuleSets::Key& key = mRunner.LastRuleSet();
            mCoverage.Add(key, mRunner.GetRuleSets().Get(key), mRunner.LastReport().trees);
        }
        if (mOptions.onCase) {
            mOptions.onCase(mRun.cases.back());
        }
    }

    const TestOptions& mOptions;
    CaseRunner mRunner;
    std::set<std::string> mSeen;
    Coverage mCoverage;
    TestRun mRun;
};

bool IsSameEnd(const CaseOutcome& one, const CaseOutcome& other)
{
    const bool isFailureSame = one.failure.has_value() == other.failure.has_value()
        && (!one.failure || one.failure->code == other.failure->code);
    return isFailureSame && one.differences == other.differences;
}

} // namespace

std::size_t TestRun::Passed() const
{
    return static_cast<std::size_t>(
        std::count_if(cases.begin(), cases.end(), [](const CaseOutcome& outcome) { return outcome.HasPassed(); }));
}

std::size_t TestRun::Unreviewed() const
{
    return static_cast<std::size_t>(
        std::count_if(cases.begin(), cases.end(), [](const CaseOutcome& outcome) { return !outcome.isReviewed; }));
}

ExitStatus TestRun::Status() const
{
    ExitStatus status = cases.empty() || Passed() < cases.size() ? ExitStatus::FAULT_FOUND : ExitStatus::SUCCESS;
    for (const Failure& failure : failures) {
        status = MoreSerious(status, failure.status);
    }
    for (const CaseOutcome& outcome : cases) {
        status = outcome.failure ? MoreSerious(status, outcome.failure->status) : status;
    }
    return status;
}

TestRun RunTests(const std::vector<std::string>& paths, const TestOptions& options)
{
    TestRunner runner(options);
    for (const std::string& path : paths) {
        runner.RunPath(path);
    }
    return std::move(runner.Run());
}

NearbyCases FindCasesNear(const std::string& folder, std::size_t most)
{
    std::error_code error;
    NearbyCases near;
    const fs::path start = fs::canonical(folder, error).parent_path();
    near.folder = start.generic_string();
    std::deque<fs::path> open(error ? 0 : 1, start);
    for (std::size_t left = most; near.isComplete && !open.empty(); open.pop_front()) {
        const auto entries = EntriesOf(open.front(), left + 1);
        near.isComplete = entries.size() <= left;
        left -= std::min(left, entries.size());
        for (const fs::directory_entry& entry : entries) {
            if (entry.is_directory(error) && !entry.is_symlink(error) && !IsHidden(entry.path())) {
                open.push_back(entry.path());
            } else if (entry.path().generic_string().ends_with(CASE_FILE_END) && entry.is_regular_file(error)) {
                near.files.push_back(entry.path().generic_string());
            }
        }
    }
    return near;
}

std::optional<std::string> FirstOtherAnswer(
    const std::vector<std::string>& paths, const std::string& folder, const std::string& changed)
{
    TestOptions options;
    options.onlyRules = folder;
    const TestRun before = RunTests(paths, options);
    std::error_code error;
    options.rules = fs::absolute(changed, error).lexically_normal().generic_string();
    const TestRun after = RunTests(paths, options);
    for (std::size_t i = 0; i < std::min(before.cases.size(), after.cases.size()); ++i) {
        if (!IsSameEnd(before.cases[i], after.cases[i])) {
            return before.cases[i].file + ": " + before.cases[i].name;
        }
    }
    return std::nullopt;
}

} // namespace diagnosis::cases
