#ifndef ARBORIST_EVALUATION_MEMBER_TEST_H
#define ARBORIST_EVALUATION_MEMBER_TEST_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "arborist/stores/event_log/row_question.h"

class RuleChecker;

/// A test of one member of an event's JSON.
struct TestPara {
    /// Name of the member.
    std::string key;
    /// The configured value to compare with.
    std::string value;
    /// Type of the comparison: "int", "long", "float", "double" or "string".
    std::string type;
    /// Comparison word: "gt", "lt", "le", "ge", "eq" or "ne".
    std::string logic;
};

/// A TestPara prepared for many rows: compares numbers without converting texts each time if that logs nothing. Refers
/// to the checker, whose IsFaultForParam decides everything else.
class MemberTest : public RowQuestion {
public:
    MemberTest(const RuleChecker& checker, TestPara para);

    const TestPara& GetPara() const { return mPara; }

    std::string GetName() const override;
    const std::string& GetKey() const override { return mPara.key; }
    bool IsNumber() const override { return false; }
    std::optional<std::int32_t> AnswerInSilence(std::string_view member) const override;
    /// 1 if the member passes, otherwise 0; an extra that is no JSON logs an error and fails.
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
    std::optional<std::int32_t> Compare(std::optional<Number> observed, Number configured) const;
    bool HoldsText(std::string_view observed) const;

    const RuleChecker& mChecker;
    TestPara mPara;
    Comparison mComparison;
    // For each order of the observed to the configured value: true if it passes.
    bool mHoldsLess;
    bool mHoldsEqual;
    bool mHoldsGreater;
    // The configured value in the type of the comparison.
    std::int32_t mInteger = 0;
    float mFloat = 0;
    double mDouble = 0;
};

#endif
