#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_RESULT_WRITER_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_RESULT_WRITER_H

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "diagnosis/results_db/definition_tables.h"
#include "diagnosis/results_db/number_rows.h"
#include "diagnosis/results_db/result_line.h"
#include "diagnosis/results_db/statement_runner.h"

namespace diagnosis::results_db {

/// What became of a line.
enum class Added {
    NEW,
    /// It took the place of a line of a bundle that had failed.
    REPLACED,
    /// The database had it, or a better one: see ResultWriter.
    THERE,
    FAILED, ///< see ResultWriter::Error
};

/// The rows of records that lines share, for as long as the records live.
template <typename Record, typename Rows>
class RowsOfRecords {
public:
    /// The rows of a record; those of a new one are made by `make()`.
    template <typename Make>
    const Rows& Find(const std::shared_ptr<const Record>& record, Make make)
    {
        if (mRows.size() > MOST) {
            mRows.clear();
        }
        auto& [owner, rows] = mRows[record.get()];
        // A new record may have the address of one that was freed.
        if (owner.lock() != record) {
            rows = make();
            owner = record;
        }
        return rows;
    }

private:
    static constexpr std::size_t MOST = 100'000;

    std::unordered_map<const Record*, std::pair<std::weak_ptr<const Record>, Rows>> mRows;
};

/// Adds lines to a results database; the caller has begun a transaction.
///
/// Lines of one engine and one rule set are a run. A bundle that was diagnosed has one line for each run and `now`: a
/// second one adds nothing. A bundle that failed has one line, which a later failure replaces. A diagnosis in the same
/// run removes it; so does a diagnosis in any run if the rule set of the failed line is unknown.
class ResultWriter {
public:
    ResultWriter(Connection& database, bool withEvidence);

    Added Add(const ResultLine& line);
    /// Writes what is not written yet; call it at the end. False on a failure, as one of an earlier line may be noted late.
    bool Finish();
    /// SQLite's reason of the first failure; empty if there was none.
    const std::string& Error() const { return mRunner.Error(); }

private:
    /// The rows of a tree of a line.
    struct TreeRows {
        std::int64_t treeDef = 0;
        std::int64_t outcome = 0;
        std::vector<std::int64_t> causes;
        std::vector<std::int64_t> open;
    };
    /// The bundle and its run, 0 for one without rule set.
    using FailedKey = std::pair<std::string, std::int64_t>;

    using Failed = std::map<FailedKey, std::int64_t>;

    void Load(Connection& database);
    Added AddDiagnosed(const ResultLine& line, std::int64_t run);
    Added AddFailed(const ResultLine& line, std::int64_t run);
    Failed::iterator FailedBefore(const FailedKey& key);
    bool RemoveFailed(Failed::iterator place);
    std::int64_t AddBundle(const ResultLine& line, std::int64_t run);
    void AddWarnings(std::int64_t bundle, const ResultLine& line);
    void AddTrees(std::int64_t bundle, const ResultLine& line);
    void AddRepaired(std::int64_t bundle, const ResultLine& line);
    void AddEvidence(std::int64_t bundle, const ResultLine& line);
    const TreeRows& RowsOf(const std::shared_ptr<const ResultTree>& tree);

    StatementRunner mRunner;
    DefinitionTables mDefinitions;
    std::optional<Statement> mAddBundle;
    std::optional<Statement> mAddFailure;
    std::optional<Statement> mAddRepaired;
    NumberRows mTrees;
    NumberRows mCauses;
    NumberRows mOpenChecks;
    NumberRows mWarnings;
    std::optional<Statement> mAddEvidence;
    std::optional<Statement> mFindUndated;
    std::optional<Statement> mFindInRun;
    std::optional<Statement> mFindInAnyRun;
    std::optional<Statement> mFindFailure;
    std::vector<std::optional<Statement>> mRemove;
    std::int64_t mLastBundle = 0;
    Failed mFailed;
    RowsOfRecords<ResultTree, TreeRows> mTreeRows;
    RowsOfRecords<ResultWarning, std::int64_t> mWarningRows;
};

} // namespace diagnosis::results_db

#endif
