#ifndef ARBORIST_TOOLS_RENDER_BUNDLE_TEXT_H
#define ARBORIST_TOOLS_RENDER_BUNDLE_TEXT_H

#include <string>
#include <vector>

#include "diagnosis/capture/bundle_contents.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

/// The content of a bundle as text.
std::string BundleText(const BundleContents& contents);

/// The findings of a check of a bundle, one line each.
std::string CheckText(const std::string& bundle, const std::vector<BundleFinding>& findings, Colour colour);

} // namespace diagnosis::command

#endif
