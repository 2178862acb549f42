#include "arborist/frame/rule_set_summary.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include <tinyxml2.h>

#include "arborist/frame/fault_tree_result.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/loading/xml_file.h"
#include "arborist/loading/xml_walk.h"
#include "arborist/utilities/json_text.h"
#include "arborist/utilities/rooted_path.h"

namespace {

using tinyxml2::XMLElement;
using XmlWalk::Children;
using XmlWalk::IsNamed;

// The look-back of a window that names no period, and of derived tables.
constexpr std::int64_t USUAL_DAYS = 30;
// The seconds of a longer one exceed 32 bits and wrap around.
constexpr std::int64_t MOST_DAYS = 24855;

std::string InRuleSet(const std::string& folder, const std::string& prefix, const char* name)
{
    return folder + FaultTreeParser::SEPARATOR + (prefix.empty() ? "" : prefix + "_") + name;
}

/// One of the two files of a rule set.
class File {
public:
    explicit File(const std::string& path)
    {
        mIsRead = XmlFile::Load(mDocument, path).error == tinyxml2::XML_SUCCESS;
    }

    bool IsRead() const { return mIsRead; }
    /// Has no root if the file was not read: nothing before an error is kept.
    const tinyxml2::XMLDocument& Document() const { return mDocument; }

private:
    tinyxml2::XMLDocument mDocument{true, tinyxml2::PRESERVE_WHITESPACE};
    bool mIsRead = false;
};

// Passes all elements from `top` down to `look`, without recursion, as a file may nest them to any depth.
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

/// A list that takes each name once.
class Names {
public:
    explicit Names(std::vector<std::string>& names) : mNames(names) {}

    void Add(const char* name)
    {
        if (name != nullptr && *name != '\0' && mKnown.insert(name).second) {
            mNames.emplace_back(name);
        }
    }

private:
    std::vector<std::string>& mNames;
    std::set<std::string> mKnown;
};

/// Gathers what the elements of a rule file name.
class RuleNames {
public:
    explicit RuleNames(RuleSetSummary& summary)
        : mSummary(summary), mNodeFiles(summary.nodeFiles), mFolders(summary.searchedFolders),
          mCodes(summary.detectCodes)
    {
    }

    void Look(const XMLElement& element)
    {
        if (IsNamed(element, "nodeInfo")) {
            mNodeFiles.Add(element.Attribute("path"));
        } else if (IsNamed(element, "dbPath")) {
            mFolders.Add(element.Attribute("value"));
        } else if (IsNamed(element, "detectInfo")) {
            mCodes.Add(element.Attribute("id"));
        } else if (IsNamed(element, "time")) {
            const int period = element.IntAttribute("period", 0);
            Widen(period == 0 ? USUAL_DAYS : period);
        } else if (IsNamed(element, "commonPart")) {
            Widen(USUAL_DAYS);
        }
    }

private:
    void Widen(std::int64_t days)
    {
        auto& longest = mSummary.longestWindow;
        if (longest) {
            longest = days > MOST_DAYS || days < -MOST_DAYS ? std::nullopt : std::optional(std::max(*longest, days));
        }
    }

    RuleSetSummary& mSummary;
    Names mNodeFiles;
    Names mFolders;
    Names mCodes;
};

// The repairs that a section of the rule file describes: their ids, followed by the operation word.
void AddRepairs(const XMLElement& section, std::set<std::string>& repairs)
{
    Visit(section, [&repairs](const XMLElement& element) {
        const char* const id = IsNamed(element, "description") ? element.Attribute("id") : nullptr;
        if (id != nullptr) {
            const std::string operation =
                FaultTreeResult::RepairInfo{id, XmlWalk::Attribute(element, "extra")}.GetOperation();
            repairs.insert(operation.empty() ? id : id + ("_" + operation));
        }
    });
}

// Those that events of the tree file name in their user-defined texts.
void AddRepairsOfEvents(const XMLElement& trees, std::set<std::string>& repairs)
{
    Visit(trees, [&repairs](const XMLElement& element) {
        const char* const text = IsNamed(element, "UserDefined") ? XmlWalk::TextOf(&element) : nullptr;
        if (text != nullptr) {
            Json::Value root;
            std::string error;
            ParseJson(text, root, error); // as in a detection, what precedes the error counts
            repairs.insert(MemberText(root, "Repairid"));
        }
    });
}

void AddRuleFile(const File& file, const std::string& treeTag, RuleSetSummary& summary, std::set<std::string>& repairs)
{
    RuleNames names(summary);
    for (const XMLElement& section : Children(file.Document().RootElement())) {
        if (const XMLElement* content = section.FirstChildElement(treeTag.c_str())) {
            Visit(*content, [&names](const XMLElement& element) { names.Look(element); });
        }
    }
    if (const XMLElement* content = XmlWalk::FindTagElement(file.Document(), "RepairDescriptions", treeTag)) {
        AddRepairs(*content, repairs);
    }
}

void AddTreeFile(const File& file, const std::string& treeTag, RuleSetSummary& summary, std::set<std::string>& repairs)
{
    std::set<std::string_view> known;
    for (const XMLElement& tag : Children(file.Document().RootElement())) {
        if (known.insert(tag.Name()).second) {
            summary.tags.push_back({tag.Name(), tag.GetLineNum()});
            if (tag.Name() == treeTag) {
                AddRepairsOfEvents(tag, repairs);
            }
        }
    }
}

} // namespace

std::string TreeFilePath(const std::string& folder, const std::string& prefix)
{
    return InRuleSet(folder, prefix, FaultTreeParser::FAULT_TREE_FILE);
}

std::string RuleFilePath(const std::string& folder, const std::string& prefix)
{
    return InRuleSet(folder, prefix, FaultTreeParser::FAULT_TREE_RULES_FILE);
}

std::string PathOnDevice(const std::string& root, const std::string& path)
{
    return RootedPath::OnDevice(root, path);
}

RuleSetSummary SummariseRuleSet(const std::string& folder, const std::string& prefix, const std::string& treeTag)
{
    const File trees(TreeFilePath(folder, prefix));
    const File rules(RuleFilePath(folder, prefix));
    RuleSetSummary summary;
    summary.isTreeFileRead = trees.IsRead();
    summary.isRuleFileRead = rules.IsRead();
    std::set<std::string> repairs;
    AddTreeFile(trees, treeTag, summary, repairs);
    AddRuleFile(rules, treeTag, summary, repairs);
    repairs.erase("");
    summary.repairIds.assign(repairs.begin(), repairs.end());
    return summary;
}
