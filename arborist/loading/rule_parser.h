#ifndef ARBORIST_LOADING_RULE_PARSER_H
#define ARBORIST_LOADING_RULE_PARSER_H

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "arborist/model/rule.h"

namespace tinyxml2 {
class XMLDocument;
class XMLElement;
}

/// Reads the "RuleList" of one tag: rules of all four families, by name.
class RuleParser {
public:
    using RuleMap = std::map<std::string, std::shared_ptr<Rule>>;
    using CodeRuleList = std::vector<std::shared_ptr<CodeRule>>;

    /// False for an empty tag, with an error line, and for a document without a root; true otherwise, also where the
    /// section or the tag is missing. A rule without a name is dropped, a later one replaces an earlier of its name.
    bool Parse(const tinyxml2::XMLDocument& document, const std::string& treeTag);

    // What was read, handed over: the parser is left with none.
    RuleMap TakeRuleMap() { return std::move(mRuleMap); }
    /// In file order. A code rule that a later rule of its name replaced in the map stays in this list.
    CodeRuleList TakeCodeRuleList() { return std::move(mCodeRuleList); }
    std::vector<std::string> TakeCodeRuleNames() { return std::move(mCodeRuleNames); }

private:
    void HandleParseRuleList(const tinyxml2::XMLDocument& document, const std::string& treeTag);
    void HandleParseRuleElement(const tinyxml2::XMLElement& element);

    RuleMap mRuleMap;
    CodeRuleList mCodeRuleList;
    std::vector<std::string> mCodeRuleNames;
};

#endif
