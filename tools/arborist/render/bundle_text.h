#ifndef ARBORIST_TOOLS_RENDER_BUNDLE_TEXT_H
#define ARBORIST_TOOLS_RENDER_BUNDLE_TEXT_H

#include <string>
#include <vector>

#include "diagnosis/capture/bundle_contents.h"

namespace diagnosis::command {

/// What a bundle holds, for people.
std::string BundleText(const BundleContents& contents);

/// What was found when a bundle was checked, one line each.
std::string CheckText(const std::string& bundle, const std::vector<BundleFinding>& findings);

} // namespace diagnosis::command

#endif
