#ifndef ARBORIST_DIAGNOSIS_TEXT_PATH_NAMES_H
#define ARBORIST_DIAGNOSIS_TEXT_PATH_NAMES_H

#include <string>
#include <utility>
#include <vector>

namespace diagnosis {

/// What the folders of a scratch stand for: results and logs name a bundle's own paths, which are the same wherever
/// and whenever it is run.
class PathNames {
public:
    void Add(const std::string& path, const std::string& name);
    /// `text` with every path of a scratch as the bundle names it.
    std::string Shown(std::string text) const;

private:
    std::vector<std::pair<std::string, std::string>> mNames;
};

} // namespace diagnosis

#endif
