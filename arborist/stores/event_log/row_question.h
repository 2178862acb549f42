#ifndef ARBORIST_STORES_EVENT_LOG_ROW_QUESTION_H
#define ARBORIST_STORES_EVENT_LOG_ROW_QUESTION_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What alarm rules ask of the JSON text that a row carries: whether it passes a test, or how much the row weighs.
class RowQuestion {
public:
    virtual ~RowQuestion() = default;

    /// The same for questions that answer alike, different for all others.
    virtual std::string GetName() const = 0;
    /// The member of the text on which the answer depends.
    virtual const std::string& GetKey() const = 0;
    /// Whether the answer is any number. Otherwise it is 1 for yes and 0 for no.
    virtual bool IsNumber() const = 0;
    /// The answer to a row whose text is not empty and holds `member`, which is empty where the text has none. Nothing
    /// where finding that answer leaves a line in the log: such a row is asked again each time.
    virtual std::optional<std::int32_t> AnswerInSilence(std::string_view member) const = 0;
    /// The answer to a text that is not empty, with its lines in the log. An empty text answers 0 without being asked.
    virtual std::int32_t Answer(std::string_view extra) const = 0;
};

#endif
