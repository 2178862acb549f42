#include "arborist/evaluation/rule_checker.h"

#include <algorithm>
#include <compare>
#include <iterator>

#include "arborist/model/condition.h"
#include "arborist/utilities/string_util.h"

namespace {

// `relation` is that of the observed value to the configured one.
bool Holds(const std::string& logic, std::partial_ordering relation)
{
    if (logic == RuleChecker::LOGIC_GT) {
        return relation > 0;
    }
    if (logic == RuleChecker::LOGIC_LT) {
        return relation < 0;
    }
    if (logic == RuleChecker::LOGIC_LE) {
        return relation <= 0;
    }
    if (logic == RuleChecker::LOGIC_GE) {
        return relation >= 0;
    }
    if (logic == RuleChecker::LOGIC_EQ) {
        return relation == 0;
    }
    if (logic == RuleChecker::LOGIC_NE) {
        return relation != 0;
    }
    return false;
}

bool TextHolds(const std::string& logic, const std::string& configured, const std::string& observed)
{
    if (logic == RuleChecker::LOGIC_EQ) {
        return configured == observed;
    }
    return logic == RuleChecker::LOGIC_NE && configured != observed;
}

bool IsLogic(const std::string& word)
{
    constexpr std::string_view WORDS[] = {RuleChecker::LOGIC_GT, RuleChecker::LOGIC_LT, RuleChecker::LOGIC_LE,
                                          RuleChecker::LOGIC_GE, RuleChecker::LOGIC_EQ, RuleChecker::LOGIC_NE};
    return std::find(std::begin(WORDS), std::end(WORDS), word) != std::end(WORDS);
}

bool IsType(const std::string& word)
{
    constexpr std::string_view WORDS[] = {RuleChecker::TYPE_INT, RuleChecker::TYPE_LONG, RuleChecker::TYPE_FLOAT,
                                          RuleChecker::TYPE_DOUBLE, RuleChecker::TYPE_STRING};
    return std::find(std::begin(WORDS), std::end(WORDS), word) != std::end(WORDS);
}

bool IsTakenForZero(const std::string& type, const std::string& text)
{
    if (type == RuleChecker::TYPE_INT || type == RuleChecker::TYPE_LONG) {
        return !StringUtil::Int32Of(text);
    }
    if (type == RuleChecker::TYPE_FLOAT) {
        return !StringUtil::FloatOf(text);
    }
    return type == RuleChecker::TYPE_DOUBLE && !StringUtil::DoubleOf(text);
}

} // namespace

bool RuleChecker::IsFaultForParam(const std::string& logic, const std::string& type, const std::string& configured,
                                  const std::string& observed) const
{
    if (logic.empty() || type.empty() || configured.empty() || observed.empty()) {
        return false;
    }
    if (type == TYPE_STRING) {
        return TextHolds(logic, configured, observed);
    }
    // "long" compares 32-bit numbers, too: rule files rely on it.
    if (type == TYPE_INT || type == TYPE_LONG) {
        const std::int32_t limit = StringUtil::StringToInt32Def(configured, 0, 10);
        const std::int32_t value = StringUtil::StringToInt32Def(observed, 0, 10);
        return CompareValue(logic, limit, value);
    }
    if (type == TYPE_FLOAT) {
        const float limit = StringUtil::StringToFloatDef(configured, 0);
        const float value = StringUtil::StringToFloatDef(observed, 0);
        return CompareValue(logic, limit, value);
    }
    if (type == TYPE_DOUBLE) {
        const double limit = StringUtil::StringToDoubleDef(configured, 0);
        const double value = StringUtil::StringToDoubleDef(observed, 0);
        return CompareValue(logic, limit, value);
    }
    return false;
}

bool RuleChecker::CompareParam(const Param& param, const std::string& logic, const std::string& configured,
                               const std::string& observed, std::string_view source,
                               std::string_view sourceId) const
{
    const bool holds = IsFaultForParam(logic, param.type, configured, observed);
    if (GetRecord() != nullptr && !observed.empty()) {
        NoteConfigured(logic, param.type, configured);
        NoteObserved(param.type, observed);
    }
    if (GetComparisons() != nullptr) {
        GetComparisons()->push_back({param.id, param.key, param.type, logic, observed, configured, std::string(source),
            std::string(sourceId), holds});
    }
    return holds;
}

void RuleChecker::NoteConfigured(
    const std::string& logic, const std::string& type, const std::string& configured) const
{
    if (!IsLogic(logic) || !(type.empty() || IsType(type))) {
        Note(Evidence::Reason::UNKNOWN_NAME);
    }
    if (configured.empty()) {
        Note(Evidence::Reason::NO_THRESHOLD);
    } else if (IsTakenForZero(type, configured)) {
        Note(Evidence::Reason::BAD_NUMBER);
    }
}

void RuleChecker::NoteType(const Param& param) const
{
    if (param.type.empty()) {
        Note(Evidence::Reason::UNKNOWN_NAME);
    }
}

void RuleChecker::NoteObserved(const std::string& type, const std::string& observed) const
{
    if (!observed.empty() && IsTakenForZero(type, observed)) {
        Note(Evidence::Reason::BAD_NUMBER);
    }
}

bool RuleChecker::CompareValue(const std::string& logic, std::int32_t configured, std::int32_t observed)
{
    return Holds(logic, observed <=> configured);
}

bool RuleChecker::CompareValue(const std::string& logic, float configured, float observed)
{
    return Holds(logic, observed <=> configured);
}

bool RuleChecker::CompareValue(const std::string& logic, double configured, double observed)
{
    return Holds(logic, observed <=> configured);
}
