#ifndef ARBORIST_EVALUATION_MEMBER_TEST_H
#define ARBORIST_EVALUATION_MEMBER_TEST_H

#include <cstdint>
#include <string>
#include <string_view>

class RuleChecker;
struct EventMember;

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

/// A TestPara made ready to be held against many rows: where both sides are plain numbers it compares without going
/// through text. Refers to the checker, whose IsFaultForParam decides everything else.
class MemberTest {
public:
    MemberTest(const RuleChecker& checker, TestPara para);

    const TestPara& GetPara() const { return mPara; }
    /// Whether the member, that of GetPara().key, passes; an extra that is no JSON logs an error and fails.
    bool Passes(const EventMember& member) const;

private:
    enum class Comparison { OTHER, INTEGER, FLOAT, DOUBLE, TEXT };

    bool IsNumeric() const { return mComparison != Comparison::OTHER && mComparison != Comparison::TEXT; }
    bool Compares(std::int64_t observed) const;
    bool ComparesText(std::string_view observed) const;

    const RuleChecker& mChecker;
    TestPara mPara;
    Comparison mComparison = Comparison::OTHER;
    // Which outcomes hold.
    bool mHoldsLess = false;
    bool mHoldsEqual = false;
    bool mHoldsGreater = false;
    std::int64_t mInteger = 0;
    float mFloat = 0;
    double mDouble = 0;
};

#endif
