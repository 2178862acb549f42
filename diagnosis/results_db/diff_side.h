#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_DIFF_SIDE_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_DIFF_SIDE_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "diagnosis/results_db/definitions.h"
#include "diagnosis/results_db/results_diff.h"
#include "diagnosis/sqlite/questions.h"

namespace diagnosis::results_db {

/// Numbers for trees, events, root causes and open checks that are the same on both sides of a comparison.
class DiffCatalogue {
public:
    using Number = std::int64_t;

    struct Cause {
        std::string tree;
        std::vector<std::string> cutSet;
        std::string id;
        std::string name;
        /// All events on its paths, sorted.
        std::vector<Number> events;
        Number treeNumber = 0;
    };
    struct Check {
        std::string tree;
        std::string event;
        std::string rule;
        std::string reason;
        Number treeNumber = 0;
        Number eventNumber = 0;
        /// True if the event's id has the separator of paths, so that paths don't show whether they pass it.
        bool mayBeAnywhere = false;
    };

    Number Tree(const std::string& id);
    /// The cut set is sorted, and has each path once. Id and name of the last call count; of one side, the smallest.
    Number AddCause(const std::string& tree, std::vector<std::string> cutSet, const std::string& id, const std::string& name);
    Number AddCheck(const Check& check);
    /// Call before the later side is read: its ids and names replace those of the earlier one.
    void BeginLaterSide();

    const std::string& TreeOf(Number tree) const { return mTreeIds[Place(tree)]; }
    const Cause& CauseOf(Number cause) const { return mCauses[Place(cause)]; }
    const Check& CheckOf(Number check) const { return mChecks[Place(check)]; }
    std::size_t CauseCount() const { return mCauses.size(); }

private:
    static std::size_t Place(Number number) { return static_cast<std::size_t>(number - 1); }
    Number Event(const std::string& id);
    std::vector<Number> EventsOf(const std::vector<std::string>& cutSet);

    Definitions mTrees;
    Definitions mEvents;
    Definitions mCauseNumbers;
    Definitions mCheckNumbers;
    std::vector<std::string> mTreeIds;
    std::vector<Cause> mCauses;
    std::vector<Check> mChecks;
    /// By the place of a cause: how many sides have named it.
    std::vector<int> mNamedBy;
    int mSide = 1;
};

/// What one line of a bundle says, in the catalogue's numbers, each list sorted.
struct DiffLine {
    std::vector<std::pair<DiffCatalogue::Number, TreeVerdict>> trees;
    std::vector<DiffCatalogue::Number> causes;
    std::vector<DiffCatalogue::Number> checks;
};

/// Reads one side of a comparison, bundle by bundle in the order of their names.
class DiffSide {
public:
    /// A line of the current bundle.
    struct Line {
        std::int64_t id = 0;
        bool ok = false;
        std::string now;
        double seconds = 0;
    };

    /// Reads the definitions of the side into the catalogue. What can't be read stays with the questions, and ends the
    /// bundles.
    DiffSide(Questions& questions, DiffCatalogue& catalogue);

    /// Moves to the next bundle. False at the end.
    bool Next();
    const std::string& Bundle() const { return mBundle; }
    /// Its lines, the latest moment first; of one moment those that were diagnosed, of whatever runs, come first.
    const std::vector<Line>& Lines() const { return mLines; }
    DiffLine Read(const Line& line);

private:
    using Numbers = std::map<std::int64_t, DiffCatalogue::Number>;

    void LoadTrees(DiffCatalogue& catalogue);
    void LoadCauses(DiffCatalogue& catalogue);
    void LoadChecks(DiffCatalogue& catalogue);
    bool NextRow() { return mBundles && mQuestions.Next(*mBundles); }

    Questions& mQuestions;
    Numbers mTrees;
    Numbers mCauses;
    Numbers mChecks;
    std::map<std::int64_t, TreeVerdict> mOutcomes;
    std::optional<Statement> mBundles;
    std::optional<Statement> mFindTrees;
    std::optional<Statement> mFindCauses;
    std::optional<Statement> mFindChecks;
    bool mHasRow = false;
    std::string mBundle;
    std::vector<Line> mLines;
};

} // namespace diagnosis::results_db

#endif
