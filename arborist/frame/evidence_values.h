#ifndef ARBORIST_FRAME_EVIDENCE_VALUES_H
#define ARBORIST_FRAME_EVIDENCE_VALUES_H

#include <cstdint>
#include <string>

#include "arborist/frame/comparable.h"
#include "arborist/frame/evidence_words.h"

namespace Evidence {

/// A moment with its local time, in the zone that was in force when the record was made. A default-constructed Moment
/// stands for no moment.
struct Moment {
    /// Seconds since the epoch; 0 stands for no moment.
    std::int64_t seconds = 0;
    /// The local time as "%Y-%m-%d %H:%M:%S"; empty for no moment, and outside of the years 0 to 9999.
    std::string local;

    ARBORIST_COMPARABLE(Moment)
};

/// The moment from which a rule looks at the log: the latest of four moments.
struct Start {
    /// The latest of the four moments below.
    Moment start;
    /// The start of the period, counted back from now.
    Moment period;
    /// The last factory reset; 0 if none counts for the rule.
    Moment reset;
    /// The last system update; 0 if none counts for the rule.
    Moment update;
    /// The last repair of the event; 0 for none.
    Moment repair;
    /// Which of the four moments is the latest.
    Floor floor = Floor::PERIOD;
    /// The length of the period in days.
    std::int32_t periodDays = 0;
    /// "BeginFlag" of the rule, which says which moments count beside the period.
    std::string beginFlag;
    /// The repair with the latest date; empty if there is none.
    std::string repairId;
    /// A repair whose date could not be read, or the reason why the event's own repair id could not be read: the start may
    /// be too early. Empty if everything could be read.
    std::string unreadableRepair;

    ARBORIST_COMPARABLE(Start)
};

/// One comparison of two values.
struct Comparison {
    /// The id of the parameter in the rule.
    std::string paramId;
    /// The column of a command rule, or the result of a formula, that is compared.
    std::string key;
    /// How both values are read: "int", "long", "float", "double" or "string".
    std::string type;
    /// The comparison: "gt", "lt", "le", "ge", "eq" or "ne".
    std::string logic;
    /// The value of the device.
    std::string observed;
    /// The value of the rule set.
    std::string configured;
    /// The source of `configured`: "static", "dynamic", "systemParam", or empty if only the rule's own text can be it.
    std::string source;
    /// Name of the threshold or system parameter in the common part; empty for a "static" value.
    std::string sourceId;
    /// True if the comparison holds.
    bool holds = false;

    ARBORIST_COMPARABLE(Comparison)
};

} // namespace Evidence

#endif
