#ifndef ARBORIST_EVALUATION_COMMON_PART_PREPARATION_H
#define ARBORIST_EVALUATION_COMMON_PART_PREPARATION_H

#include <memory>

class CommonPart;
class DetectionObserver;
class DeviceDetails;

/// Prepares what the rules of a set share, before the first of them is asked: gives `part`, which wraps the block that
/// was loaded, its thresholds by the device's attributes, has the derived tables built, and then the external databases
/// copied and given their tables. Each of the two is left out if the block has no entry for it.
///
/// `device` and `observer` may be null. What can't be built leaves a table missing or empty; the rules that ask for it
/// deal with that. An external database whose pattern is no regular expression raises a std::regex_error.
void PrepareCommonPart(const std::shared_ptr<CommonPart>& part, const DeviceDetails* device,
                       DetectionObserver* observer);

#endif
