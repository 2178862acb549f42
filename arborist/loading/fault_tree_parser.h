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
#include "arborist/frame/detection_observer.h"
#include "arborist/frame/fault_tree_result.h"
#include "arborist/loading/fault_item.h"
#include "arborist/model/common_part.h"
#include "arborist/model/event_rule.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/rule.h"
#include "arborist/utilities/text_hash.h"

/// How the last attempt to read one file of the rule set ended. Without an attempt: missing, with an empty path.
struct RuleSetFileReport {
    using State = DetectionObserver::RuleSetFile::State;

    State state = State::MISSING;
    std::string path;
    /// What the XML library says of a malformed file, and the line from 1 (0 when not known).
    std::string message;
    int line = 0;
    /// Trees or rules of the tag; 0 when the file was not loaded.
    std::size_t count = 0;
};

/// Reads the two XML files of a rule set and keeps all that they say; everyone else asks it by name or id.
///
/// The records are shared: checkers write their run-time fields. Trees, rules and lists are replaced by the next
/// StartParse and live until then; so do the references that the look-ups return. The look-ups answer from indexes,
/// whatever the size of the rule set. One thread at a time; StartParse uses two short-lived threads of its own, one
/// after the other, while the caller waits.
class FaultTreeParser {
public:
    using FaultTreeList = std::vector<std::shared_ptr<FaultTree>>;
    using RuleMap = std::map<std::string, std::shared_ptr<Rule>>;
    using CodeRuleList = std::vector<std::shared_ptr<CodeRule>>;
    using EventRuleMap = std::map<std::string, std::shared_ptr<EventRule>>;
    using FaultItemList = std::vector<std::shared_ptr<FaultItem>>;
    using RepairInfoList = std::vector<FaultTreeResult::RepairInfo>;

    static constexpr char FAULT_TREE_RULES_FILE[] = "FaultTreeRules.xml";
    static constexpr char FAULT_TREE_FILE[] = "FaultTrees.xml";
    static constexpr char SEPARATOR[] = "/";

    /// The tree tag is taken from `detectInfo` here; the rest is read when the parse starts.
    explicit FaultTreeParser(std::shared_ptr<DetectInfo> detectInfo);
    ~FaultTreeParser();
    FaultTreeParser(const FaultTreeParser&) = delete;
    FaultTreeParser& operator=(const FaultTreeParser&) = delete;

    /// Reads the tree file, then the rule file. A missing or malformed file logs a line and leaves what was read
    /// before. With a null DetectInfo nothing happens.
    void StartParse();
    /// True as soon as one StartParse got as far as trying the rule file, even if that turned out malformed; false
    /// while the rule file has only been missing.
    bool IsParseDone() const { return mIsParseDone; }

    /// How often a rule file was read. What the look-ups refer to lives until that changes.
    std::uint64_t GetRuleRevision() const { return mRuleRevision; }

    const RuleSetFileReport& GetTreeFileReport() const { return mTreeFileReport; }
    const RuleSetFileReport& GetRuleFileReport() const { return mRuleFileReport; }

    /// In file order.
    const FaultTreeList& GetFaultTrees() const { return mFaultTrees; }
    /// "-1" when a file that was read names none; empty before the first.
    std::string GetTreeFileVersion() const { return mTreeFileVersion; }
    const RuleMap& GetRuleMap() const { return mRuleMap; }
    /// In file order, with those that a later rule of the same name replaced in the rule map.
    const CodeRuleList& GetCodeRuleList() const { return mCodeRuleList; }
    const EventRuleMap& GetEventRuleMap() const { return mEventRuleMap; }
    /// In file order. An event id may stand in several items of these lists; the look-ups take the last.
    const FaultItemList& GetFaultDescList() const { return mFaultDescList; }
    const FaultItemList& GetSuggestionList() const { return mSuggestionList; }
    /// Null when the rule set has no common part.
    std::shared_ptr<CommonPart::CombineCommonPart> GetCommonPart() const { return mCombineCommonPart; }

    /// Null when there is no rule of this name.
    const std::shared_ptr<Rule>& GetRuleByRuleName(const std::string& ruleName) const;
    /// Null when no rules decide this event.
    const std::shared_ptr<EventRule>& GetEventRuleByEventId(const std::string& eventId) const;
    /// Name of the first code rule with this detect code that is still a code rule in the rule map; empty when none is.
    std::string GetCodeRuleNameById(const std::string& detectCode) const;
    /// The ids that the last item of this event id holds; empty when there is none, and for the empty id.
    const std::vector<std::string>& GetFaultDescListById(const std::string& eventId) const;
    const std::vector<std::string>& GetSuggestionListById(const std::string& eventId) const;
    const RepairInfoList& GetRepairInfoById(const std::string& eventId) const;
    /// For each repair of the event its id, followed by "_" and the operation where it has one.
    std::vector<std::string> GetRepairListById(const std::string& eventId) const;

private:
    class InnerXmlHelper;

    // The keys refer to texts of the records in the lists and maps below, the values to the records.
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

    RuleSetFileReport mTreeFileReport;
    RuleSetFileReport mRuleFileReport;
    // Made by the first look-up after a parse: a detection without a fault asks for none of them.
    mutable std::optional<CodeRuleIndex> mCodeRuleByDetectCode;
    mutable std::optional<FaultItemIndex> mFaultDescById;
    mutable std::optional<FaultItemIndex> mSuggestionById;
    mutable std::optional<FaultItemIndex> mRepairById;
};

#endif
