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
/// A checker lives as long as the driver that made it and serves one thread. What it sees on its way it writes into the
/// record of the rule, if there is one; what decided its last answer it notes with NoteReason, record or not.
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

    /// Whether the rule counts as a fault for the event with this id. Anything that a checker can't use (null, a rule
    /// of another family, missing data) is false.
    virtual bool IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId) = 0;

    /// Whether the observed value stands to the configured one as `logic` demands: "gt" asks for observed greater than
    /// configured. `type` says as what they compare. False when a text is empty or a word is not known. A text that is
    /// no number compares as 0, after an error in the log; the configured text is converted first.
    bool IsFaultForParam(const std::string& logic, const std::string& type, const std::string& configured,
                         const std::string& observed) const;

    /// Where to write down what the next rule's answer rests on; null, as at first, for nowhere. Not owned: it is taken
    /// away before it ends.
    void SetRecord(Evidence::Rule* record)
    {
        mRecord = record;
        mComparisons = nullptr;
    }
    /// What decided the last answer of IsFaultHappened.
    Evidence::Reason GetReason() const { return mReason; }

protected:
    /// IsFaultForParam for a parameter of the rule, with its type, written down where WriteComparisonsInto says. `source`
    /// is where the configured value came from ("static", "dynamic", "systemParam"), empty for the rule's own text, and
    /// `sourceId` its name in the common part.
    bool CompareParam(const Param& param, const std::string& logic, const std::string& configured,
                      const std::string& observed, std::string_view source = {}, std::string_view sourceId = {}) const;

    /// The record of the rule that is being asked; null when nobody listens.
    Evidence::Rule* GetRecord() const { return mRecord; }
    /// The part of it that belongs to a family; null when nobody listens.
    template <typename Part>
    Part* GetPart() const
    {
        if (GetRecord() == nullptr) {
            return nullptr;
        }
        Part* const part = std::get_if<Part>(&GetRecord()->part);
        return part != nullptr ? part : &GetRecord()->part.template emplace<Part>();
    }
    /// Null for nowhere, as for every new record.
    void WriteComparisonsInto(std::vector<Evidence::Comparison>* comparisons) { mComparisons = comparisons; }
    std::vector<Evidence::Comparison>* GetComparisons() const { return mComparisons; }
    void NoteReason(Evidence::Reason reason) { mReason = reason; }
    /// Notes the reason and passes the answer on: `return Decide(Reason::NO_NODES, false);`.
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
