#include "arborist/evaluation/member_test.h"

#include <utility>

#include <json/value.h>

#include "arborist/evaluation/rule_checker.h"
#include "arborist/evaluation/silent_number.h"
#include "arborist/frame/log.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/utilities/json_text.h"
#include "arborist/utilities/string_util.h"

namespace {

// Reads the member with the full JSON reader.
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

} // namespace

MemberTest::MemberTest(const RuleChecker& checker, TestPara para)
    : mChecker(checker), mPara(std::move(para)), mComparison(ComparisonOf())
{
    const std::string& logic = mPara.logic;
    mHoldsLess = logic == RuleChecker::LOGIC_LT || logic == RuleChecker::LOGIC_LE || logic == RuleChecker::LOGIC_NE;
    mHoldsEqual = logic == RuleChecker::LOGIC_LE || logic == RuleChecker::LOGIC_GE || logic == RuleChecker::LOGIC_EQ;
    mHoldsGreater = logic == RuleChecker::LOGIC_GT || logic == RuleChecker::LOGIC_GE || logic == RuleChecker::LOGIC_NE;
    if (mComparison == Comparison::INTEGER) {
        mInteger = *SilentNumber::Int32Of(mPara.value);
    } else if (mComparison == Comparison::FLOAT) {
        mFloat = StringUtil::StringToFloatDef(mPara.value, 0);
    } else if (mComparison == Comparison::DOUBLE) {
        mDouble = StringUtil::StringToDoubleDef(mPara.value, 0);
    }
}

MemberTest::Comparison MemberTest::ComparisonOf() const
{
    const std::string& type = mPara.type;
    if (mPara.logic.empty() || mPara.value.empty()) {
        return Comparison::NONE;
    }
    if (type == RuleChecker::TYPE_STRING) {
        return Comparison::TEXT;
    }
    if (type == RuleChecker::TYPE_INT || type == RuleChecker::TYPE_LONG) {
        return SilentNumber::Int32Of(mPara.value) ? Comparison::INTEGER : Comparison::LOUD;
    }
    if (type != RuleChecker::TYPE_FLOAT && type != RuleChecker::TYPE_DOUBLE) {
        return Comparison::NONE;
    }
    if (!SilentNumber::IsReal(mPara.value)) {
        return Comparison::LOUD;
    }
    return type == RuleChecker::TYPE_FLOAT ? Comparison::FLOAT : Comparison::DOUBLE;
}

std::string MemberTest::GetName() const
{
    // Separates the parts of the name: texts of XML have no zero bytes.
    const char end = '\0';
    return "test" + (mPara.type + end) + (mPara.logic + end) + (mPara.key + end) + mPara.value;
}

std::optional<std::int32_t> MemberTest::AnswerInSilence(std::string_view member) const
{
    if (member.empty()) {
        return 0;
    }
    switch (mComparison) {
    case Comparison::NONE:
        return 0;
    case Comparison::TEXT:
        return HoldsText(member);
    case Comparison::INTEGER: {
        const std::optional<std::int32_t> observed = SilentNumber::Int32Of(member);
        return observed ? std::optional<std::int32_t>(Holds(*observed, mInteger)) : std::nullopt;
    }
    case Comparison::LOUD:
        return std::nullopt;
    default:
        break;
    }
    if (!SilentNumber::IsReal(member)) {
        return std::nullopt;
    }
    const std::string observed(member);
    return mComparison == Comparison::FLOAT ? Holds(StringUtil::StringToFloatDef(observed, 0), mFloat)
                                            : Holds(StringUtil::StringToDoubleDef(observed, 0), mDouble);
}

std::int32_t MemberTest::Answer(std::string_view extra) const
{
    const std::string observed = MemberOf(extra, mPara.key);
    return !observed.empty() && mChecker.IsFaultForParam(mPara.logic, mPara.type, mPara.value, observed) ? 1 : 0;
}

template <typename Number>
bool MemberTest::Holds(Number observed, Number configured) const
{
    return observed < configured ? mHoldsLess : observed > configured ? mHoldsGreater : mHoldsEqual;
}

// Texts can only be equal or different; they have no order.
bool MemberTest::HoldsText(std::string_view observed) const
{
    return mPara.logic == RuleChecker::LOGIC_EQ ? observed == mPara.value
                                                : mPara.logic == RuleChecker::LOGIC_NE && observed != mPara.value;
}
