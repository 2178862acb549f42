#ifndef ARBORIST_EVALUATION_RULE_CHECKER_H
#define ARBORIST_EVALUATION_RULE_CHECKER_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "arborist/frame/evidence.h"

class Rule;
struct Param;

/// Decides the rules of one family.
///
/// A checker lives as long as the driver that created it. Not thread-safe. It writes its evidence into the record of
/// the rule, if there is one, and in any case notes the reason of its last answer with NoteReason.
class RuleChecker {
public:
    static constexpr std::string_view LOGIC_GT = "gt";
    static constexpr std::string_view LOGIC_LT = "lt";
    static constexpr std::string_view LOGIC_LE = "le";
    static constexpr std::string_view LOGIC_GE = "ge";
    static constexpr std::string_view LOGIC_EQ = "eq";
    static constexpr std::string_view LOGIC_NE = "ne";
    static constexpr std::string_view TYPE_INT = "int";
    static constexpr std::string_view TYPE_LONG = "long";
    static constexpr std::string_view TYPE_FLOAT = "float";
    static constexpr std::string_view TYPE_DOUBLE = "double";
    static constexpr std::string_view TYPE_STRING = "string";
    static constexpr std::string_view SINGLE_LOGIC = "single_logic";
    static constexpr std::string_view MULTIPLE_LOGIC = "multiple_logic";

    RuleChecker() = default;
    virtual ~RuleChecker() = default;
    RuleChecker(const RuleChecker&) = delete;
    RuleChecker& operator=(const RuleChecker&) = delete;

    /// True if the rule fires for the event with this id. False for everything that the checker can't use: null, a rule
    /// of another family, missing data.
    virtual bool IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId) = 0;

    /// True if the observed value compares with the configured one as `logic` says: "gt" is observed greater than
    /// configured. `type` is the type of the comparison. False if a text is empty or a word is unknown. A text that is
    /// no number logs an error and compares as 0; the configured text is converted first.
    bool IsFaultForParam(const std::string& logic, const std::string& type, const std::string& configured,
                         const std::string& observed) const;

    /// Sets the record for the evidence of the next rule; null, the default, for none. Not owned: pass null before the
    /// record ends.
    void SetRecord(Evidence::Rule* record)
    {
        mRecord = record;
        mComparisons = nullptr;
    }
    /// Notes an observed text that is taken for 0.
    void NoteObserved(const std::string& type, const std::string& observed) const;

    /// The reason of the last answer of IsFaultHappened.
    Evidence::Reason GetReason() const { return mReason; }

protected:
    /// IsFaultForParam for a parameter of the rule, with its type; records the comparison in the list set by
    /// WriteComparisonsInto. `source` is the source of the configured value ("static", "dynamic", "systemParam"), empty
    /// for the rule's own text, and `sourceId` its name in the common part.
    bool CompareParam(const Param& param, const std::string& logic, const std::string& configured,
                      const std::string& observed, std::string_view source = {}, std::string_view sourceId = {}) const;

    /// The record of the current rule; null without an observer.
    Evidence::Rule* GetRecord() const { return mRecord; }
    /// The family's part of the record; null without an observer.
    template <typename Part>
    Part* GetPart() const
    {
        if (GetRecord() == nullptr) {
            return nullptr;
        }
        Part* const part = std::get_if<Part>(&GetRecord()->part);
        return part != nullptr ? part : &GetRecord()->part.template emplace<Part>();
    }
    /// Sets the list for comparisons; null, the default of every new record, for none.
    void WriteComparisonsInto(std::vector<Evidence::Comparison>* comparisons) { mComparisons = comparisons; }
    std::vector<Evidence::Comparison>* GetComparisons() const { return mComparisons; }
    /// Adds a reason to the record, if there is one, beside the one that decides.
    void Note(Evidence::Reason reason) const
    {
        if (GetRecord() != nullptr) {
            GetRecord()->Note(reason);
        }
    }
    /// Notes what makes a comparison with this configured text less than an answer: a word that is not known, no value
    /// to compare with, a text that is taken for 0. A parameter without a type is no part of the comparison.
    void NoteConfigured(const std::string& logic, const std::string& type, const std::string& configured) const;
    /// Notes a parameter that has no type although a condition names it.
    void NoteType(const Param& param) const;
    void NoteReason(Evidence::Reason reason) { mReason = reason; }
    /// Notes the reason and returns `answer`: `return Decide(Reason::NO_NODES, false);`.
    bool Decide(Evidence::Reason reason, bool answer)
    {
        mReason = reason;
        return answer;
    }

private:
    static bool CompareValue(const std::string& logic, std::int32_t configured, std::int32_t observed);
    static bool CompareValue(const std::string& logic, float configured, float observed);
    static bool CompareValue(const std::string& logic, double configured, double observed);

    Evidence::Rule* mRecord = nullptr;
    std::vector<Evidence::Comparison>* mComparisons = nullptr;
    Evidence::Reason mReason = Evidence::Reason::NONE;
};

#endif
