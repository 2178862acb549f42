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

    /// False for an empty tag, with an error line, and for a document without a root; true otherwise, even if the
    /// section or the tag is missing. Drops a rule without a name; a later rule replaces an earlier one of the same
    /// name.
    bool Parse(const tinyxml2::XMLDocument& document, const std::string& treeTag);

    // Moves what was read out of the parser, which is empty afterwards.
    RuleMap TakeRuleMap() { return std::move(mRuleMap); }
    /// In file order. A code rule stays in this list even if a later rule of its name replaced it in the map.
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
