#include "arborist/evaluation/member_test.h"

#include <charconv>
#include <limits>
#include <string_view>
#include <utility>

#include <json/value.h>

#include "arborist/evaluation/rule_checker.h"
#include "arborist/frame/log.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/utilities/json_text.h"

namespace {

// The member as the log's own text has it, read the long way.
std::string MemberOf(std::string_view extra, const std::string& key)
{
    Json::Value root;
    std::string error;
    if (!ParseJson(extra, root, error)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: parse eventParamJson err. %s ",
            "AlarmRuleEngine::IsErrorForEventWithParam", error.c_str());
        TroubleWatch::Tell(Evidence::Trouble::Kind::BAD_EXTRA, error);
    }
    return MemberText(root, key);
}

bool FitsInt32(std::int64_t number)
{
    return number >= std::numeric_limits<std::int32_t>::min() && number <= std::numeric_limits<std::int32_t>::max();
}

} // namespace

MemberTest::MemberTest(const RuleChecker& checker, TestPara para) : mChecker(checker), mPara(std::move(para))
{
    const std::string& logic = mPara.logic;
    mHoldsLess = logic == RuleChecker::LOGIC_LT || logic == RuleChecker::LOGIC_LE || logic == RuleChecker::LOGIC_NE;
    mHoldsEqual = logic == RuleChecker::LOGIC_LE || logic == RuleChecker::LOGIC_GE || logic == RuleChecker::LOGIC_EQ;
    mHoldsGreater = logic == RuleChecker::LOGIC_GT || logic == RuleChecker::LOGIC_GE || logic == RuleChecker::LOGIC_NE;

    if (mPara.type == RuleChecker::TYPE_STRING) {
        mComparison = Comparison::TEXT;
        return;
    }
    // Only a whole number of 32 bits takes the short way: any other text may log an error for each row.
    const char* const end = mPara.value.data() + mPara.value.size();
    const auto [rest, error] = std::from_chars(mPara.value.data(), end, mInteger);
    if (logic.empty() || error != std::errc() || rest != end || !FitsInt32(mInteger)) {
        return;
    }
    mFloat = static_cast<float>(mInteger);
    mDouble = static_cast<double>(mInteger);
    if (mPara.type == RuleChecker::TYPE_INT || mPara.type == RuleChecker::TYPE_LONG) {
        mComparison = Comparison::INTEGER;
    } else if (mPara.type == RuleChecker::TYPE_FLOAT) {
        mComparison = Comparison::FLOAT;
    } else if (mPara.type == RuleChecker::TYPE_DOUBLE) {
        mComparison = Comparison::DOUBLE;
    }
}

bool MemberTest::Passes(const EventMember& member) const
{
    if (IsComparedAsIs(member)) {
        return mComparison == Comparison::TEXT ? ComparesText(member.text) : Compares(member.number);
    }
    if (member.kind == EventMember::Kind::NO_EXTRA) {
        return false;
    }
    const std::string observed =
        member.kind == EventMember::Kind::RAW ? MemberOf(member.text, mPara.key) : member.ToText();
    return !observed.empty() && mChecker.IsFaultForParam(mPara.logic, mPara.type, mPara.value, observed);
}

bool MemberTest::PassesOther(MemberStore::Code code, const EventMember& member) const
{
    const bool passes = Passes(member);
    if (code < mOutcomes.size() && IsComparedAsIs(member)) {
        mOutcomes[code] = passes ? Outcome::PASSES : Outcome::FAILS;
    }
    return passes;
}

// Without going through the text of a number, and in silence.
bool MemberTest::IsComparedAsIs(const EventMember& member) const
{
    switch (mComparison) {
    case Comparison::OTHER:
        return false;
    case Comparison::TEXT:
        return member.kind == EventMember::Kind::TEXT;
    default:
        return member.kind == EventMember::Kind::INTEGER && FitsInt32(member.number);
    }
}

// Texts are equal or different, nothing else; and an empty one never passes.
bool MemberTest::ComparesText(std::string_view observed) const
{
    if (observed.empty() || mPara.value.empty()) {
        return false;
    }
    return mPara.logic == RuleChecker::LOGIC_EQ ? observed == mPara.value
                                                : mPara.logic == RuleChecker::LOGIC_NE && observed != mPara.value;
}

bool MemberTest::Compares(std::int64_t observed) const
{
    const auto outcome = [this](auto left, auto right) {
        return left < right ? mHoldsLess : left > right ? mHoldsGreater : mHoldsEqual;
    };
    switch (mComparison) {
    case Comparison::FLOAT:
        return outcome(static_cast<float>(observed), mFloat);
    case Comparison::DOUBLE:
        return outcome(static_cast<double>(observed), mDouble);
    default:
        return outcome(observed, mInteger);
    }
}
