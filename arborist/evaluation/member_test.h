#ifndef ARBORIST_EVALUATION_MEMBER_TEST_H
#define ARBORIST_EVALUATION_MEMBER_TEST_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "arborist/stores/event_log/event_rows.h"

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

/// A TestPara made ready to be held against many rows: where both sides are plain numbers it compares without going
/// through text. Refers to the checker, whose IsFaultForParam decides everything else.
class MemberTest {
public:
    MemberTest(const RuleChecker& checker, TestPara para);

    const TestPara& GetPara() const { return mPara; }
    /// Whether the member, that of GetPara().key, passes; an extra that is no JSON logs an error and fails.
    bool Passes(const EventMember& member) const;

    /// As Passes for the member of that row. Each of the more frequent members is compared once.
    bool Passes(const EventRows& rows, std::size_t row, std::size_t keyNumber) const
    {
        const MemberStore::Code code = rows.GetCode(row, keyNumber);
        if (code < mOutcomes.size() && mOutcomes[code] != Outcome::UNKNOWN) {
            return mOutcomes[code] == Outcome::PASSES;
        }
        return PassesOther(code, rows.GetMember(row, keyNumber));
    }

private:
    enum class Comparison { OTHER, INTEGER, FLOAT, DOUBLE, TEXT };

    // Of a code. Not known for those that have none of their own or may log an error each time.
    enum class Outcome : std::uint8_t { UNKNOWN, FAILS, PASSES };

    bool PassesOther(MemberStore::Code code, const EventMember& member) const;
    bool IsComparedAsIs(const EventMember& member) const;
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
    mutable std::array<Outcome, 1024> mOutcomes{};
};

#endif
