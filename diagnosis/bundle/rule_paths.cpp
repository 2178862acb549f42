#include "diagnosis/bundle/rule_paths.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>

#include <tinyxml2.h>

#include "arborist/frame/fault_tree_result.h"
#include "diagnosis/text/json_text.h"

namespace diagnosis {

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

// Shows `look` all elements from `top` down, without recursion.
template <typename Look>
void Visit(const XMLElement& top, Look look)
{
    for (const XMLElement* element = &top; element != nullptr;) {
        look(*element);
        const XMLElement* next = element->FirstChildElement();
        while (next == nullptr && element != &top) {
            next = element->NextSiblingElement();
            element = element->Parent()->ToElement();
        }
        element = next;
    }
}

/// One of the two files of a rule set, as the library reads it.
class RuleSetFile {
public:
    explicit RuleSetFile(const std::string& path)
    {
        std::error_code error;
        mIsRead = std::filesystem::is_regular_file(path, error)
            && mDocument.LoadFile(path.c_str()) == tinyxml2::XML_SUCCESS && mDocument.RootElement() != nullptr;
    }

    /// Null when the file can't be read.
    const XMLElement* Root() const { return mIsRead ? mDocument.RootElement() : nullptr; }

private:
    tinyxml2::XMLDocument mDocument{true, tinyxml2::PRESERVE_WHITESPACE};
    bool mIsRead = false;
};

// The ids under which repairs of a rule file's section count, with the operation word behind them.
void AddRepairs(const XMLElement& section, std::set<std::string>& repairs)
{
    Visit(section, [&repairs](const XMLElement& element) {
        const char* const id = element.Attribute("id");
        if (id == nullptr || std::strcmp(element.Name(), "description") != 0) {
            return;
        }
        const char* const extra = element.Attribute("extra");
        const std::string operation = FaultTreeResult::RepairInfo{id, extra == nullptr ? "" : extra}.GetOperation();
        repairs.insert(operation.empty() ? id : id + ("_" + operation));
    });
}

// Those that events of a tree file name in their user-defined texts.
void AddRepairsOfEvents(const XMLElement& trees, std::set<std::string>& repairs)
{
    Visit(trees, [&repairs](const XMLElement& element) {
        const char* const text = std::strcmp(element.Name(), "UserDefined") == 0 ? element.GetText() : nullptr;
        std::string problem;
        const auto value = text == nullptr ? std::nullopt : ParseJson(text, problem);
        if (value && value->isObject() && (*value)["Repairid"].isString()) {
            repairs.insert((*value)["Repairid"].asString());
        }
    });
}

class Reading {
public:
    void Read(const XMLElement& top)
    {
        Visit(top, [this](const XMLElement& element) { Look(element); });
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
    const RuleSetFile file(RuleFilePath(bundle));
    if (file.Root() == nullptr) {
        return {};
    }
    Reading reading;
    const XMLElement* section = file.Root()->FirstChildElement();
    for (; section != nullptr; section = section->NextSiblingElement()) {
        if (const XMLElement* tag = section->FirstChildElement(bundle.treeTag.c_str())) {
            reading.Read(*tag);
        }
    }
    return reading.Result();
}

std::optional<std::vector<std::string>> ReadRepairIds(const Bundle& bundle)
{
    const RuleSetFile rules(RuleFilePath(bundle));
    const RuleSetFile trees(TreeFilePath(bundle));
    if (rules.Root() == nullptr || trees.Root() == nullptr) {
        return std::nullopt;
    }
    std::set<std::string> repairs;
    const char* const tag = bundle.treeTag.c_str();
    if (const XMLElement* section = rules.Root()->FirstChildElement("RepairDescriptions")) {
        if (const XMLElement* content = section->FirstChildElement(tag)) {
            AddRepairs(*content, repairs);
        }
    }
    if (const XMLElement* content = trees.Root()->FirstChildElement(tag)) {
        AddRepairsOfEvents(*content, repairs);
    }
    return std::vector<std::string>(repairs.begin(), repairs.end());
}

std::vector<std::string> ReadTags(const std::string& treeFile)
{
    const RuleSetFile trees(treeFile);
    std::set<std::string> tags;
    const XMLElement* tag = trees.Root() == nullptr ? nullptr : trees.Root()->FirstChildElement();
    for (; tag != nullptr; tag = tag->NextSiblingElement()) {
        tags.insert(tag->Name());
    }
    return {tags.begin(), tags.end()};
}

std::string OnDevice(const std::string& root, const std::string& path)
{
    if (root.empty() || path.empty() || path.front() != '/') {
        return path;
    }
    const bool isPlain = path.find("..") == std::string::npos;
    return root + (isPlain ? path : std::filesystem::path(path).lexically_normal().string());
}

} // namespace diagnosis
