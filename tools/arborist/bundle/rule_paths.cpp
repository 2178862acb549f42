#include "tools/arborist/bundle/rule_paths.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>

#include <tinyxml2.h>

namespace command {

namespace {

using tinyxml2::XMLElement;

// The library's own look-back for a window that tells none, and for derived tables.
constexpr std::int64_t USUAL_DAYS = 30;
// Longer ones wrap around in the library's 32 bits of seconds.
constexpr std::int64_t MOST_DAYS = 24855;

std::string InRuleSet(const Bundle& bundle, const char* name)
{
    const std::string prefix = bundle.ruleFilePrefix.empty() ? "" : bundle.ruleFilePrefix + "_";
    return bundle.ruleFileDir + "/" + prefix + name;
}

class Reading {
public:
    // Visits all below `top` without recursion.
    void Read(const XMLElement& top)
    {
        for (const XMLElement* element = &top; element != nullptr;) {
            Look(*element);
            const XMLElement* next = element->FirstChildElement();
            while (next == nullptr && element != &top) {
                next = element->NextSiblingElement();
                element = element->Parent()->ToElement();
            }
            element = next;
        }
    }

    RulePaths Result() { return std::move(mPaths); }

private:
    void Look(const XMLElement& element)
    {
        const std::string name = element.Name();
        if (name == "nodeInfo") {
            Add(element.Attribute("path"), mPaths.nodeFiles, mNodeFiles);
        } else if (name == "dbPath") {
            Add(element.Attribute("value"), mPaths.searchedFolders, mFolders);
        } else if (name == "detectInfo") {
            Add(element.Attribute("id"), mPaths.codes, mCodes);
        } else if (name == "time") {
            const int period = element.IntAttribute("period", 0);
            Widen(period == 0 ? USUAL_DAYS : period);
        } else if (name == "commonPart") {
            Widen(USUAL_DAYS);
        }
    }

    static void Add(const char* name, std::vector<std::string>& names, std::set<std::string>& known)
    {
        if (name != nullptr && *name != '\0' && known.insert(name).second) {
            names.emplace_back(name);
        }
    }

    void Widen(std::int64_t days)
    {
        if (mPaths.longestWindow) {
            mPaths.longestWindow = days > MOST_DAYS || days < -MOST_DAYS
                ? std::nullopt : std::optional(std::max(*mPaths.longestWindow, days));
        }
    }

    RulePaths mPaths;
    std::set<std::string> mNodeFiles;
    std::set<std::string> mFolders;
    std::set<std::string> mCodes;
};

} // namespace

std::string RuleFilePath(const Bundle& bundle)
{
    return InRuleSet(bundle, "FaultTreeRules.xml");
}

std::string TreeFilePath(const Bundle& bundle)
{
    return InRuleSet(bundle, "FaultTrees.xml");
}

RulePaths ReadRulePaths(const Bundle& bundle)
{
    tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
    const std::string path = RuleFilePath(bundle);
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error) || document.LoadFile(path.c_str()) != tinyxml2::XML_SUCCESS
        || document.RootElement() == nullptr) {
        return {};
    }
    Reading reading;
    const XMLElement* section = document.RootElement()->FirstChildElement();
    for (; section != nullptr; section = section->NextSiblingElement()) {
        if (const XMLElement* tag = section->FirstChildElement(bundle.treeTag.c_str())) {
            reading.Read(*tag);
        }
    }
    return reading.Result();
}

std::string OnDevice(const std::string& root, const std::string& path)
{
    if (root.empty() || path.empty() || path.front() != '/') {
        return path;
    }
    const bool isPlain = path.find("..") == std::string::npos;
    return root + (isPlain ? path : std::filesystem::path(path).lexically_normal().string());
}

} // namespace command
