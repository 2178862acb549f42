#ifndef ARBORIST_EVALUATION_DETECTION_CUSTOMIZE_H
#define ARBORIST_EVALUATION_DETECTION_CUSTOMIZE_H

#include <cstdint>
#include <memory>

class LogEvent;
class RowQuestion;

/// How single kinds of events count.
class DetectionCustomize {
public:
    static constexpr char KEY_COUNT[] = "COUNT";

    /// Event ids from `first` to `last`.
    struct IdRange {
        std::int32_t first;
        std::int32_t last;
    };
    /// Where the ids of DMD events lie.
    static constexpr IdRange DMD_RANGES[] = {{920000000, 929999999}, {909030000, 909031999}, {912001000, 912001999}};

    DetectionCustomize() = delete;

    /// Whether events of this id are DMD events: one row stands for as many events as its "COUNT" says.
    static bool IsDmdEvent(std::int32_t eventId);

    /// The weight of a DMD event: low 32 bits of "COUNT" in its extra; 1 when there is none or the extra is no JSON
    /// object, 0 when the extra is empty or "COUNT" is no number. What can't be read logs an error.
    static std::int32_t CheckDmdEventCount(const LogEvent& event);
    /// The same as a question to the rows of a log.
    static const std::shared_ptr<const RowQuestion>& WeightQuestion();
};

#endif
