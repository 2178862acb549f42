#ifndef ARBORIST_EVALUATION_DETECTION_CUSTOMIZE_H
#define ARBORIST_EVALUATION_DETECTION_CUSTOMIZE_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "arborist/model/id_range.h"

class LogEvent;
class RowQuestion;

/// Weights of special kinds of events.
class DetectionCustomize {
public:
    static constexpr char KEY_COUNT[] = "COUNT";

    /// The ids of DMD events.
    static constexpr IdRange DMD_RANGES[] = {{920000000, 929999999}, {909030000, 909031999}, {912001000, 912001999}};

    DetectionCustomize() = delete;

    /// True for DMD events: one row counts as many events as its "COUNT" says.
    static bool IsDmdEvent(std::int32_t eventId);

    /// The weight of a DMD event: low 32 bits of "COUNT" in its extra; 1 if there is none or the extra is no JSON
    /// object, 0 if the extra is empty or "COUNT" is no number. Logs an error for a text that can't be read.
    /// Kept for the tests, which count with it row by row; the engine asks WeightQuestion.
    static std::int32_t CheckDmdEventCount(const LogEvent& event);
    /// The same as a question about the rows of a log. Tells the text of each "COUNT" that is read with log lines.
    static std::shared_ptr<const RowQuestion> WeightQuestion(std::function<void(const std::string& count)> tell = {});
};

#endif
