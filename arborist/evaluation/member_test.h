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
    bool Passes(const EventMember& member) const
    {
        if (mComparison == Comparison::INTEGER && member.kind == EventMember::Kind::INTEGER &&
            member.number == static_cast<std::int32_t>(member.number)) {
            return PassesInteger(member.number);
        }
        if (mComparison == Comparison::TEXT && member.code != 0) {
            return PassesText(member);
        }
        return PassesOther(member);
    }

    /// As Passes for the member of that row. Most rows are told by the codes of their members alone.
    bool Passes(const EventRows& rows, std::size_t row, std::size_t keyNumber) const
    {
        const MemberStore::Handle code = rows.GetCode(row, keyNumber);
        if (mComparison == Comparison::INTEGER && MemberStore::IsInteger(code)) {
            return PassesInteger(MemberStore::IntegerOf(code)); // of 32 bits, all of them
        }
        if (mComparison == Comparison::TEXT && MemberStore::IsText(code) && FoundFor(code).code == code) {
            return FoundFor(code).passes;
        }
        return Passes(rows.GetMember(row, keyNumber));
    }

private:
    enum class Comparison { OTHER, INTEGER, FLOAT, DOUBLE, TEXT };

    // What was found for a text, so that it is compared once for many rows.
    struct Found {
        std::uint32_t code = 0;
        bool passes = false;
    };

    bool PassesInteger(std::int64_t observed) const
    {
        return observed < mInteger ? mHoldsLess : observed > mInteger ? mHoldsGreater : mHoldsEqual;
    }
    Found& FoundFor(std::uint32_t code) const { return mFound[code * 2654435769U >> 24]; }
    bool PassesText(const EventMember& member) const
    {
        Found& found = FoundFor(member.code);
        if (found.code != member.code) {
            found = {member.code, ComparesText(member.text)};
        }
        return found.passes;
    }
    bool PassesOther(const EventMember& member) const;
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
    mutable std::array<Found, 256> mFound;
};

#endif
