#ifndef ARBORIST_EVALUATION_MEMBER_TEST_H
#define ARBORIST_EVALUATION_MEMBER_TEST_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "arborist/stores/event_log/row_question.h"

class RuleChecker;

/// One test of one value inside an event's JSON.
struct TestPara {
    /// Name of the member.
    std::string key;
    /// What it is compared to.
    std::string value;
    /// As what: "int", "long", "float", "double" or "string".
    std::string type;
    /// How: "gt", "lt", "le", "ge", "eq" or "ne".
    std::string logic;
};

/// A TestPara made ready to be held against many rows: it compares numbers without going through text where that
/// leaves no line in the log. Refers to the checker, whose IsFaultForParam decides everything else.
class MemberTest : public RowQuestion {
public:
    MemberTest(const RuleChecker& checker, TestPara para);

    const TestPara& GetPara() const { return mPara; }

    std::string GetName() const override;
    const std::string& GetKey() const override { return mPara.key; }
    bool IsNumber() const override { return false; }
    std::optional<std::int32_t> AnswerInSilence(std::string_view member) const override;
    /// Whether the member passes; an extra that is no JSON logs an error and fails.
    std::int32_t Answer(std::string_view extra) const override;

private:
    enum class Comparison {
        NONE, ///< nothing passes
        INTEGER,
        FLOAT,
        DOUBLE,
        TEXT,
        LOUD ///< each comparison leaves a line
    };

    Comparison ComparisonOf() const;
    template <typename Number>
    bool Holds(Number observed, Number configured) const;
    bool HoldsText(std::string_view observed) const;

    const RuleChecker& mChecker;
    TestPara mPara;
    Comparison mComparison;
    // Which outcomes hold.
    bool mHoldsLess;
    bool mHoldsEqual;
    bool mHoldsGreater;
    // What it is compared to, as the comparison needs it.
    std::int32_t mInteger = 0;
    float mFloat = 0;
    double mDouble = 0;
};

#endif
