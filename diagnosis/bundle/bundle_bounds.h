#ifndef ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_BOUNDS_H
#define ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_BOUNDS_H

#include <optional>
#include <string>

#include "diagnosis/bundle/bundle.h"

namespace diagnosis {

/// Of the places in which a detection reads or writes the bundle in `folder`, a canonical path, the first that leads
/// out of it by a link: the captured device, the data, a database or what SQLite keeps beside one. Also a place at
/// which nothing is yet, as a file made there would lie elsewhere. The name is relative to the bundle.
std::optional<std::string> PlaceOutside(const std::string& folder, const Bundle& bundle);

/// True if the rules of the bundle in `folder`, a canonical path, lie outside of it, by their path or by a link.
bool AreRulesOutside(const std::string& folder, const Bundle& bundle);

} // namespace diagnosis

#endif
