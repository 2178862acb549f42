#include "diagnosis/text/path_names.h"

namespace diagnosis {

void PathNames::Add(const std::string& path, const std::string& name)
{
    mNames.emplace_back(path, name);
}

std::string PathNames::Shown(std::string text) const
{
    for (const auto& [path, name] : mNames) {
        for (auto at = text.find(path); at != std::string::npos; at = text.find(path, at + name.size())) {
            text.replace(at, path.size(), name);
        }
    }
    return text;
}

} // namespace diagnosis
