#ifndef ARBORIST_LOADING_FAULT_TREE_PARSER_H
#define ARBORIST_LOADING_FAULT_TREE_PARSER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "arborist/frame/detect_info.h"
#include "arborist/frame/evidence.h"
#include "arborist/frame/fault_tree_result.h"
#include "arborist/loading/fault_item.h"
#include "arborist/model/common_part.h"
#include "arborist/model/event_rule.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/rule.h"
#include "arborist/utilities/text_hash.h"

/// Reads the two XML files of a rule set, keeps their contents and answers look-ups by name and id.
///
/// The records are shared: checkers write their run-time fields. The next StartParse replaces trees, rules and lists,
/// and with them invalidates every reference that a look-up returned. Look-ups use indexes, so their cost does not grow
/// with the rule set. Not thread-safe; StartParse itself runs two short-lived threads, one after the other, and waits.
class FaultTreeParser {
public:
    using FaultTreeList = std::vector<std::shared_ptr<FaultTree>>;
    using RuleMap = std::map<std::string, std::shared_ptr<Rule>>;
    using RuleList = std::vector<std::shared_ptr<Rule>>;
    using CodeRuleList = std::vector<std::shared_ptr<CodeRule>>;
    using EventRuleMap = std::map<std::string, std::shared_ptr<EventRule>>;
    using FaultItemList = std::vector<std::shared_ptr<FaultItem>>;
    using RepairInfoList = std::vector<FaultTreeResult::RepairInfo>;

    static constexpr char FAULT_TREE_RULES_FILE[] = "FaultTreeRules.xml";
    static constexpr char FAULT_TREE_FILE[] = "FaultTrees.xml";
    static constexpr char SEPARATOR[] = "/";

    /// Copies the tree tag from `detectInfo` now; StartParse reads the other fields.
    explicit FaultTreeParser(std::shared_ptr<DetectInfo> detectInfo);
    ~FaultTreeParser();
    FaultTreeParser(const FaultTreeParser&) = delete;
    FaultTreeParser& operator=(const FaultTreeParser&) = delete;

    /// Reads the tree file, then the rule file. A missing or malformed file logs a line and leaves what was read
    /// before. With a null DetectInfo nothing happens.
    void StartParse();
    /// Frees the XML of the rule file, which takes many times the memory of what was read of it.
    void ForgetDocument();
    /// Builds the indexes of all look-ups now. Until the next StartParse look-ups then write nothing, and any number of
    /// threads may look up at a time.
    void BuildIndexes();
    /// True once a StartParse has found a rule file, even a malformed one; false as long as the file was missing each
    /// time.
    bool IsParseDone() const { return mIsParseDone; }

    /// Number of rule files read so far. References from look-ups are valid until it changes.
    std::uint64_t GetRuleRevision() const { return mRuleRevision; }

    /// How the last attempt to read a file ended. Without an attempt: missing, with an empty path.
    const Evidence::RuleSetFile& GetTreeFileReport() const { return mTreeFileReport; }
    const Evidence::RuleSetFile& GetRuleFileReport() const { return mRuleFileReport; }

    /// In file order.
    const FaultTreeList& GetFaultTrees() const { return mFaultTrees; }
    /// Version of the tree file; "-1" if the file names none, empty before the first file was read.
    std::string GetTreeFileVersion() const { return mTreeFileVersion; }
    /// By name. Kept for the tests.
    const RuleMap& GetRuleMap() const { return mRuleMap; }
    /// The rules that a detection may ask: see FindNamedRules. Finds them at the first call after a parse.
    const RuleList& GetNamedRules();
    /// All code rules in file order, including those that a later rule of the same name replaced in the rule map.
    const CodeRuleList& GetCodeRuleList() const { return mCodeRuleList; }
    const EventRuleMap& GetEventRuleMap() const { return mEventRuleMap; }
    /// In file order. If several items have the same event id, the look-ups take the last. Kept for the tests.
    const FaultItemList& GetFaultDescList() const { return mFaultDescList; }
    const FaultItemList& GetSuggestionList() const { return mSuggestionList; }
    /// Null if the rule set has no common part.
    std::shared_ptr<CommonPart::CombineCommonPart> GetCommonPart() const { return mCombineCommonPart; }

    /// Null if no rule has this name.
    const std::shared_ptr<Rule>& GetRuleByRuleName(const std::string& ruleName) const;
    /// Null if the event rules have no entry for this event.
    const std::shared_ptr<EventRule>& GetEventRuleByEventId(const std::string& eventId) const;
    // The look-ups below index their list at the first call after a parse: a detection without a fault needs none.

    /// Name of the first code rule with this detect code that is still in the rule map; empty if there is none.
    std::string GetCodeRuleNameById(const std::string& detectCode);
    /// The ids in the last item of this event id; empty if there is no item, and for the empty id.
    const std::vector<std::string>& GetFaultDescListById(const std::string& eventId);
    const std::vector<std::string>& GetSuggestionListById(const std::string& eventId);
    const RepairInfoList& GetRepairInfoById(const std::string& eventId);
    /// One text for each repair of the event: its id, followed by "_" and the operation if it has one.
    std::vector<std::string> GetRepairListById(const std::string& eventId);

private:
    class InnerXmlHelper;

    // The keys are views into the records of the lists and maps below; the values point at the records.
    using FaultItemIndex = std::unordered_map<std::string_view, const FaultItem*, TextHash>;
    using CodeRuleIndex = std::unordered_map<std::string_view, const CodeRule*, TextHash>;

    std::string GetFaultTreePath(const std::string& fileName) const;
    std::string PrefixedFileName(const std::string& fileName) const;
    void ParseTreeXml();
    void ParseRuleXml(const std::string& path);
    void StartFaultTreeParse();
    void ParseOtherInfo();
    void StartEventRuleParse();
    void StartFaultDescriptionParse();
    void StartSuggestionParse();
    void StartRepairDescriptionParse();
    void StartCommonPartParse();
    void StartRuleParse();
    CodeRuleIndex IndexCodeRules() const;
    static const FaultItem* FindItem(
        const FaultItemList& items, std::optional<FaultItemIndex>& index, const std::string& eventId);
    static const std::vector<std::string>& GetListById(
        const FaultItemList& items, std::optional<FaultItemIndex>& index, const std::string& eventId);

    std::string mTreeTag;
    std::string mTreeFileVersion;
    std::shared_ptr<DetectInfo> mDetectInfo;
    bool mIsParseDone = false;
    std::uint64_t mRuleRevision = 0;
    FaultTreeList mFaultTrees;
    RuleMap mRuleMap;
    CodeRuleList mCodeRuleList;
    EventRuleMap mEventRuleMap;
    FaultItemList mFaultDescList;
    FaultItemList mSuggestionList;
    FaultItemList mRepairList;
    std::vector<std::string> mCodeRuleNames;
    std::shared_ptr<CommonPart::CombineCommonPart> mCombineCommonPart;
    std::unique_ptr<InnerXmlHelper> mXmlHelper;

    Evidence::RuleSetFile mTreeFileReport{
        Evidence::RuleSetFileType::TREES, Evidence::RuleSetFileState::MISSING, {}, {}, 0, 0};
    Evidence::RuleSetFile mRuleFileReport{
        Evidence::RuleSetFileType::RULES, Evidence::RuleSetFileState::MISSING, {}, {}, 0, 0};
    // Built by the first look-up after a parse: a detection without alarm rules and without a fault needs none of them.
    std::optional<RuleList> mNamedRules;
    std::optional<CodeRuleIndex> mCodeRuleByDetectCode;
    std::optional<FaultItemIndex> mFaultDescById;
    std::optional<FaultItemIndex> mSuggestionById;
    std::optional<FaultItemIndex> mRepairById;
};

#endif
