#ifndef ARBORIST_STORES_EVENT_LOG_ROW_QUESTION_H
#define ARBORIST_STORES_EVENT_LOG_ROW_QUESTION_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// A question of alarm rules about the JSON text of a row: whether it passes a test, or how much the row weighs.
class RowQuestion {
public:
    virtual ~RowQuestion() = default;

    /// Equal for questions with equal answers, different for all others.
    virtual std::string GetName() const = 0;
    /// The member of the text that determines the answer.
    virtual const std::string& GetKey() const = 0;
    /// True if the answer is any number; otherwise it is 1 for yes and 0 for no.
    virtual bool IsNumber() const = 0;
    /// The answer for a row with a non-empty text, given its `member`, which is empty if the text has none. Nothing if
    /// computing the answer would log a line: such a row is asked again each time, and so is one whose text is no JSON
    /// object, or whose member is an object or an array.
    virtual std::optional<std::int32_t> AnswerInSilence(std::string_view member) const = 0;
    /// The answer for a non-empty text; logs its lines. Not called for an empty text, whose answer is 0.
    virtual std::int32_t Answer(std::string_view extra) const = 0;
};

#endif
