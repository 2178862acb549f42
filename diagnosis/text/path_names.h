#ifndef ARBORIST_DIAGNOSIS_TEXT_PATH_NAMES_H
#define ARBORIST_DIAGNOSIS_TEXT_PATH_NAMES_H

#include <string>
#include <utility>
#include <vector>

namespace diagnosis {

/// Maps paths in scratch folders to the paths of the bundle, so that results and logs are the same wherever and
/// whenever a bundle is run.
class PathNames {
public:
    void Add(const std::string& path, const std::string& name);
    /// `text` with every path of a scratch folder replaced by the bundle's own path.
    std::string Shown(std::string text) const;

private:
    std::vector<std::pair<std::string, std::string>> mNames;
};

} // namespace diagnosis

#endif
