#include "diagnosis/results_db/import_results.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "diagnosis/results_db/result_writer.h"
#include "diagnosis/results_db/results_database.h"
#include "diagnosis/scratch/folder_lock.h"
#include "diagnosis/scratch/new_file.h"
#include "diagnosis/sqlite/questions.h"
#include "diagnosis/text/input_lines.h"

namespace diagnosis::results_db {

namespace {

constexpr std::size_t MOST_FAILURES = 20;

Failure NotWritten(const std::string& message)
{
    return {FailureCode::RESULTS_NOT_WRITTEN, message};
}

bool IsMissing(const std::string& path)
{
    std::error_code error;
    return !std::filesystem::exists(path, error) || std::filesystem::file_size(path, error) == 0;
}

/// The database in which an import works: an existing one, or a new file that is put in its place at the end. Imports that
/// make one take turns, so that the second adds to the file of the first.
class Target {
public:
    explicit Target(const std::function<bool(int tries)>& tryAgain) : mTryAgain(tryAgain) {}

    std::optional<Failure> Open(const std::string& path)
    {
        mPath = path;
        mIsNew = IsMissing(path);
        if (const auto failure = mIsNew ? MakeFile() : OpenFile()) {
            return failure;
        }
        if (!mDatabase.Execute("BEGIN IMMEDIATE")) {
            return DatabaseFailure(mPath, mDatabase);
        }
        if (mIsNew) {
            return CreateSchema(mDatabase, mPath);
        }
        mDatabase.LimitToFile(); // it may have grown while others had it locked
        return std::nullopt;
    }

    std::optional<Failure> Commit()
    {
        if (!mDatabase.Execute("COMMIT")) {
            return DatabaseFailure(mPath, mDatabase);
        }
        if (mIsNew) {
            mDatabase.Close();
            if (const auto problem = mReplacesEmptyFile ? mFile->PutInPlace() : mFile->PutInFreePlace()) {
                return NotWritten(mPath + ": " + *problem);
            }
        }
        return std::nullopt;
    }

    Connection& Database() { return mDatabase; }

private:
    std::optional<Failure> MakeFile()
    {
        mFile.emplace();
        if (const auto problem = mFile->MakeWithFolders(mPath)) {
            return NotWritten(mPath + ": " + *problem);
        }
        const std::filesystem::path folder = std::filesystem::path(mPath).parent_path();
        if (!mTurn.Take(folder.empty() ? "." : folder.generic_string(), mTryAgain)) {
            return NotWritten(mPath + ": another program is making a database in this folder");
        }
        if (!IsMissing(mPath)) {
            mIsNew = false;
            mFile.reset();
            return OpenFile();
        }
        std::error_code error;
        mReplacesEmptyFile = std::filesystem::exists(mPath, error);
        // Nobody sees the file before it is complete, so it needs no journal.
        const bool isOpen = mDatabase.Open(mFile->TemporaryPath(), Connection::Mode::CREATE)
            && mDatabase.Execute("PRAGMA journal_mode = OFF");
        return isOpen ? std::nullopt : std::optional(DatabaseFailure(mPath, mDatabase));
    }

    std::optional<Failure> OpenFile()
    {
        if (!mDatabase.Open(mPath, Connection::Mode::CREATE)) {
            return DatabaseFailure(mPath, mDatabase);
        }
        mDatabase.WhileLocked(mTryAgain);
        mDatabase.LimitToFile();
        return CheckSchema(mDatabase, mPath);
    }

    const std::function<bool(int tries)>& mTryAgain;
    std::string mPath;
    bool mIsNew = false;
    bool mReplacesEmptyFile = false;
    FolderLock mTurn;
    // In this order, so that the connection is closed before its file is removed.
    std::optional<NewFile> mFile;
    Connection mDatabase;
};

/// One import: its lines, one after the other.
class Import {
public:
    Import(const ImportOptions& options, ImportReport& report)
        : mOptions(options), mReport(report), mReader(options.withEvidence), mTarget(options.tryAgain)
    {
    }

    std::optional<Failure> Run(const std::vector<std::string>& files, const std::string& path)
    {
        for (const std::string& file : files) {
            if (file != "-" && IsOneFile(file, path)) {
                return Failure{FailureCode::RESULTS_NOT_WRITTEN, path + ": is a file that is read", ExitStatus::WRONG_USE};
            }
        }
        mPath = path;
        if (auto failure = mTarget.Open(path)) {
            return failure;
        }
        if (auto failure = LoadRuleSets()) {
            return failure;
        }
        mWriter.emplace(mTarget.Database(), mOptions.withEvidence);
        for (const std::string& file : files) {
            if (auto failure = ReadFile(file)) {
                return failure;
            }
        }
        if (!mWriter->Finish()) {
            return NotWritten(mPath + ": " + mWriter->Error());
        }
        mWriter.reset();
        return mReport.failures.empty() || mOptions.skipsBadLines ? mTarget.Commit() : std::nullopt;
    }

private:
    std::optional<Failure> LoadRuleSets()
    {
        Questions questions(mTarget.Database());
        questions.Ask("SELECT DISTINCT rule_set FROM run WHERE rule_set <> ''",
            [this](const Statement& row) { mRuleSets.insert(row.Text(0)); });
        return questions.Problem().empty()
            ? std::nullopt
            : std::optional(Failure{FailureCode::BAD_RESULTS, mPath + ": " + questions.Problem()});
    }

    std::optional<Failure> ReadFile(const std::string& file)
    {
        InputLines lines(file);
        while (!IsGivenUp() && lines.Next()) {
            mTarget.Database().AllowBytes(lines.Line().size());
            std::string problem;
            auto line = ReadLine(lines, problem);
            if (line && mOptions.redact) {
                mOptions.redact(*line);
            }
            if (!line) {
                NoteBadLine(lines.Place() + ": " + problem);
            } else if (auto failure = AddLine(*line, lines)) {
                return failure;
            }
        }
        return lines.Problem().empty() ? std::nullopt : std::optional(Failure{FailureCode::NO_RESULTS, lines.Problem()});
    }

    std::optional<ResultLine> ReadLine(const InputLines& lines, std::string& problem)
    {
        if (lines.LineProblem() != nullptr) {
            problem = lines.LineProblem();
            return std::nullopt;
        }
        return mReader.Read(lines.Line(), problem);
    }

    // More bad lines than these are not looked for, unless they are skipped.
    bool IsGivenUp() const { return !mOptions.skipsBadLines && mReport.failures.size() > MOST_FAILURES; }

    void NoteBadLine(const std::string& message)
    {
        ++mReport.counts.skipped;
        if (mReport.failures.size() < MOST_FAILURES) {
            mReport.failures.push_back({FailureCode::BAD_LINE, message});
        } else if (mReport.failures.size() == MOST_FAILURES) {
            mReport.failures.push_back({FailureCode::BAD_LINE, "further lines that can't be used are not listed"});
        }
    }

    std::optional<Failure> AddLine(const ResultLine& line, const InputLines& lines)
    {
        if (auto failure = OtherRules(line, lines)) {
            return failure;
        }
        switch (mWriter->Add(line)) {
        case Added::NEW:
            ++mReport.counts.added;
            break;
        case Added::REPLACED:
            ++mReport.counts.replaced;
            break;
        case Added::THERE:
            ++mReport.counts.there;
            break;
        case Added::FAILED:
            return NotWritten(mPath + ": " + mWriter->Error());
        }
        return std::nullopt;
    }

    std::optional<Failure> OtherRules(const ResultLine& line, const InputLines& lines)
    {
        if (line.ruleSet.empty() || mRuleSets.contains(line.ruleSet)) {
            return std::nullopt;
        }
        if (!mRuleSets.empty() && !mOptions.acceptsMixedRules) {
            return Failure{FailureCode::MIXED_RULES, lines.Place() + ": is of the rule set \"" + line.ruleSet + "\", and " + mPath
                + " has results of \"" + *mRuleSets.begin() + "\"; --mixed-rules takes both"};
        }
        mRuleSets.insert(line.ruleSet);
        return std::nullopt;
    }

    const ImportOptions& mOptions;
    ImportReport& mReport;
    std::string mPath;
    ResultLineReader mReader;
    Target mTarget;
    std::optional<ResultWriter> mWriter;
    std::set<std::string> mRuleSets;
};

} // namespace

ImportReport ImportResults(const std::vector<std::string>& files, const std::string& target, const ImportOptions& options)
{
    ImportReport report;
    if (const auto failure = Import(options, report).Run(files, target)) {
        report.failures.push_back(*failure);
        return report;
    }
    report.isImported = report.failures.empty() || options.skipsBadLines;
    return report;
}

} // namespace diagnosis::results_db
