#ifndef ARBORIST_DIAGNOSIS_BUNDLE_REPAIRS_H
#define ARBORIST_DIAGNOSIS_BUNDLE_REPAIRS_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/bundle/repair_records.h"
#include "diagnosis/problem.h"

namespace diagnosis {

/// Repair records of a bundle, after they were read or one was made.
struct RepairReport {
    std::string bundle;
    /// Set if the records could not be read or made; there are none then.
    std::optional<Failure> failure;
    std::vector<Warning> warnings;
    std::vector<RepairRecord> records;
};

/// Records in the bundle, which can't be a zip, that a repair was carried out now. The report has the new record, read
/// back, and a warning if no event of the rule set names the repair.
RepairReport RecordRepair(const BundlePath& bundle, const std::string& id, const BundleOverrides& overrides);

/// All records of a bundle, in the order in which they were first made.
RepairReport ListRepairs(const BundlePath& bundle, const BundleOverrides& overrides);

} // namespace diagnosis

#endif
