#ifndef ARBORIST_DIAGNOSIS_DETECTION_BAD_PATTERN_H
#define ARBORIST_DIAGNOSIS_DETECTION_BAD_PATTERN_H

#include <string>
#include <vector>

#include "diagnosis/evidence/detection_recorder.h"

namespace diagnosis {

/// The message for a file name pattern that is no regular expression, which the library lets out of a detection as
/// an exception without saying which one: names the "defDBTable" entry and the text of each such pattern.
std::string BadPatternMessage(const std::vector<RecordedFile>& files, const std::vector<RecordedPattern>& patterns,
    const std::string& reason);

} // namespace diagnosis

#endif
