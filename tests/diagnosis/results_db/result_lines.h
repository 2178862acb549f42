#ifndef ARBORIST_TESTS_DIAGNOSIS_RESULTS_DB_RESULT_LINES_H
#define ARBORIST_TESTS_DIAGNOSIS_RESULTS_DB_RESULT_LINES_H

#include <string>
#include <utility>
#include <vector>

/// Builds lines of "arborist detect --json". Each call adds something and returns the object.
class LineOf {
public:
    explicit LineOf(std::string bundle);

    /// A tree with a fault and one root cause for each cut set, whose members are named without the top event: "A & B".
    LineOf& Fault(const std::string& tree, const std::vector<std::string>& cutSets);
    LineOf& NoFault(const std::string& tree);
    /// A tree without root cause that an open check of `event` keeps undecided.
    LineOf& Undecided(const std::string& tree, const std::string& event, const std::string& reason = "no_runner");
    /// Opens the check of an event in a tree that was added before, whose verdict stays.
    LineOf& Open(const std::string& tree, const std::string& event, const std::string& reason = "no_runner");
    LineOf& Warning(const std::string& code, const std::string& message);
    LineOf& Failed(const std::string& code, bool retry = false);
    LineOf& RuleSet(const std::string& digest);
    LineOf& Engine(const std::string& version);
    LineOf& Now(const std::string& now);
    LineOf& Seconds(const std::string& seconds);
    LineOf& Device(const std::string& device);
    /// A repair on record.
    LineOf& Repaired(const std::string& repair, const std::string& date);
    /// The objects of evidence of one tree.
    LineOf& Explained(const std::string& tree, const std::string& evidence);

    /// The line with its line end.
    std::string Text() const;

private:
    LineOf& Tree(const std::string& tree, const std::string& verdict, const std::string& open, const std::string& causes);

    std::string mBundle;
    std::string mWarnings;
    std::string mResults;
    std::string mExplanation;
    std::string mError;
    std::string mRuleSet = "sha256:aa";
    std::string mEngine = "1.0";
    std::string mNow = "2024-05-20 12:00:00";
    std::string mSeconds = "0.25";
    std::string mDevice;
    std::string mRepaired;
};

#endif
