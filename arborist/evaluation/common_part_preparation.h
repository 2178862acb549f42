#ifndef ARBORIST_EVALUATION_COMMON_PART_PREPARATION_H
#define ARBORIST_EVALUATION_COMMON_PART_PREPARATION_H

#include <memory>
#include <string>

class CommonPart;
class DetectionObserver;
class DeviceDetails;

/// Prepares the shared data of a rule set before the first rule runs: sets the thresholds of `part`, which wraps the
/// loaded common part, by the device's attributes, builds the derived tables, then copies the external databases and
/// creates their tables. Skips either of the two if the common part has no entry for it.
///
/// `ruleFile` is the path of the rule file. `device` and `observer` may be null. A failure leaves a table missing or
/// empty, which the rules handle. Throws std::regex_error if the pattern of an external database is no regular
/// expression.
void PrepareCommonPart(const std::shared_ptr<CommonPart>& part, const std::string& ruleFile,
    const DeviceDetails* device, DetectionObserver* observer);

#endif
