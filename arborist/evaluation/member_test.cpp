#include "arborist/evaluation/member_test.h"

#include <utility>

#include "arborist/evaluation/extra_member.h"
#include "arborist/evaluation/rule_checker.h"
#include "arborist/frame/log.h"
#include "arborist/utilities/string_util.h"

namespace {

void LogNoJson(const std::string& error)
{
    FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: parse eventParamJson err. %s ",
        "AlarmRuleEngine::IsErrorForEventWithParam", error.c_str());
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
        mInteger = *StringUtil::Int32Of(mPara.value);
    } else if (mComparison == Comparison::FLOAT) {
        mFloat = *StringUtil::FloatOf(mPara.value);
    } else if (mComparison == Comparison::DOUBLE) {
        mDouble = *StringUtil::DoubleOf(mPara.value);
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
        return StringUtil::Int32Of(mPara.value) ? Comparison::INTEGER : Comparison::LOUD;
    }
    if (type == RuleChecker::TYPE_FLOAT) {
        return StringUtil::FloatOf(mPara.value) ? Comparison::FLOAT : Comparison::LOUD;
    }
    if (type == RuleChecker::TYPE_DOUBLE) {
        return StringUtil::DoubleOf(mPara.value) ? Comparison::DOUBLE : Comparison::LOUD;
    }
    return Comparison::NONE;
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
    case Comparison::INTEGER:
        return Compare(StringUtil::Int32Of(member), mInteger);
    case Comparison::FLOAT:
        return Compare(StringUtil::FloatOf(std::string(member)), mFloat);
    case Comparison::DOUBLE:
        return Compare(StringUtil::DoubleOf(std::string(member)), mDouble);
    case Comparison::LOUD:
        break;
    }
    return std::nullopt;
}

std::int32_t MemberTest::Answer(std::string_view extra) const
{
    const std::string observed = ExtraMember::Read(extra, mPara.key, LogNoJson);
    mChecker.NoteObserved(mPara.type, observed);
    return !observed.empty() && mChecker.IsFaultForParam(mPara.logic, mPara.type, mPara.value, observed) ? 1 : 0;
}

// Nothing for a text that is no number, which logs a line.
template <typename Number>
std::optional<std::int32_t> MemberTest::Compare(std::optional<Number> observed, Number configured) const
{
    if (!observed) {
        return std::nullopt;
    }
    if (*observed < configured) {
        return mHoldsLess;
    }
    if (*observed > configured) {
        return mHoldsGreater;
    }
    const bool isDifferent = !(*observed == configured); // as "nan" is from every number
    return isDifferent ? mPara.logic == RuleChecker::LOGIC_NE : mHoldsEqual;
}

// Texts can only be equal or different; they have no order.
bool MemberTest::HoldsText(std::string_view observed) const
{
    return mPara.logic == RuleChecker::LOGIC_EQ ? observed == mPara.value
                                                : mPara.logic == RuleChecker::LOGIC_NE && observed != mPara.value;
}
