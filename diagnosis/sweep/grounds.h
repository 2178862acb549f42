#ifndef ARBORIST_DIAGNOSIS_SWEEP_GROUNDS_H
#define ARBORIST_DIAGNOSIS_SWEEP_GROUNDS_H

#include <string>
#include <vector>

namespace diagnosis {

/// Where the history of a rule comes from.
enum class SweptSource {
    LOG, ///< the event log
    TABLES, ///< derived tables, built for each of its moments
    CAPTURED, ///< data without a history: one answer for all moments
};

/// "log", "tables", "captured".
const char* SweptSourceText(SweptSource source);

/// What answers of a sweep rest on.
class Grounds {
public:
    Grounds() = default;
    /// Those of a rule. With `isFloored` its time begins at a repair at some moment.
    Grounds(SweptSource source, bool isFloored);

    void Add(const Grounds& other);

    /// Whether data without a history count.
    bool AreCaptured() const { return mHasCaptured; }
    /// Whether the stored date of a repair counts: of each repair the store has the latest.
    bool HaveRepairDate() const { return mHasRepairDate; }

    /// Those of "log", "tables", "captured" and "repair date" that count, in this order.
    std::vector<std::string> Words() const;
    /// The same as "log, captured"; "-" without any.
    std::string Text() const;

private:
    bool mHasLog = false;
    bool mHasTables = false;
    bool mHasCaptured = false;
    bool mHasRepairDate = false;
};

/// What to say below a table or drawing of these grounds: a line for each that needs one, without line ends.
std::vector<std::string> LegendOf(const Grounds& all);

} // namespace diagnosis

#endif
