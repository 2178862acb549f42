#ifndef ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_FILE_H
#define ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_FILE_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle.h"
#include "diagnosis/problem.h"

namespace diagnosis {

/// Reads the bundle.json of a bundle's folder into `bundle`; unknown keys become `warnings`. Returns the failure, if
/// any; its message lists everything that is wrong in the file.
std::optional<Failure> ReadBundleFile(const BundlePath& path, Bundle& bundle, std::vector<Warning>& warnings);

/// The same for the text of a bundle.json; `path` is its name in messages.
std::optional<Failure> ReadBundleText(const std::string& path, const std::string& text, Bundle& bundle,
    std::vector<Warning>& warnings);

/// The text of a bundle.json with all values of `bundle`.
std::string BundleText(const Bundle& bundle);

} // namespace diagnosis

#endif
