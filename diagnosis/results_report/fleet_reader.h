#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_FLEET_READER_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_FLEET_READER_H

#include <cstdint>
#include <optional>
#include <string>

#include "diagnosis/problem.h"
#include "diagnosis/results_report/fleet.h"

namespace diagnosis {

/// Reads all figures of the results database at `path`, which is not changed: as of one moment, while another process may
/// import. Devices are followed for `withinDays` days after a repair.
std::optional<Failure> ReadFleet(const std::string& path, std::int64_t withinDays, Fleet& fleet);

} // namespace diagnosis

#endif
