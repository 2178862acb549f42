#ifndef ARBORIST_DIAGNOSIS_RESULTS_BUNDLE_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_BUNDLE_JSON_H

#include <string>
#include <vector>

#include "diagnosis/capture/bundle_contents.h"

namespace diagnosis {

/// The content of a bundle as one line of JSON, schema "arborist.bundle.1", without the line end.
std::string BundleJson(const BundleContents& contents);

/// The findings of a check of a bundle as one line of JSON, schema "arborist.verify.1", without the line end.
std::string CheckJson(const std::string& bundle, bool isOk, const std::vector<BundleFinding>& findings);

} // namespace diagnosis

#endif
