#ifndef ARBORIST_EVALUATION_MEMBER_TEST_H
#define ARBORIST_EVALUATION_MEMBER_TEST_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "arborist/stores/event_log/event_member_cache.h"

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
            return member.number < mInteger ? mHoldsLess : member.number > mInteger ? mHoldsGreater : mHoldsEqual;
        }
        if (mComparison == Comparison::TEXT && member.code != 0) {
            return PassesText(member);
        }
        return PassesOther(member);
    }

private:
    enum class Comparison { OTHER, INTEGER, FLOAT, DOUBLE, TEXT };

    // What was found for a text, so that it is compared once for many rows.
    struct Found {
        std::uint32_t code = 0;
        bool passes = false;
    };

    bool PassesText(const EventMember& member) const
    {
        Found& found = mFound[member.code * 2654435769U >> 24];
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
