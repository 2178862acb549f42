#ifndef ARBORIST_TOOLS_RENDER_BUNDLE_REPORT_H
#define ARBORIST_TOOLS_RENDER_BUNDLE_REPORT_H

#include <string>
#include <vector>

#include "tools/arborist/capture/bundle_contents.h"

namespace command {

/// What a bundle holds: for people, and as one JSON object without a line end.
std::string BundleText(const BundleContents& contents);
std::string BundleJson(const BundleContents& contents);

/// What was found when a bundle was checked, one line each, and as one JSON object without a line end.
std::string CheckText(const std::string& bundle, const std::vector<BundleFinding>& findings);
std::string CheckJson(const std::string& bundle, bool isOk, const std::vector<BundleFinding>& findings);

} // namespace command

#endif
