#include "arborist/loading/fault_tree_parser.h"

#include <exception>
#include <functional>
#include <system_error>
#include <thread>
#include <utility>

#include <tinyxml2.h>

#include "arborist/frame/log.h"
#include "arborist/frame/log_recording.h"
#include "arborist/loading/common_part_parser.h"
#include "arborist/loading/description_parser.h"
#include "arborist/loading/event_rule_parser.h"
#include "arborist/loading/named_rules.h"
#include "arborist/loading/rule_parser.h"
#include "arborist/loading/tree_parser.h"
#include "arborist/loading/xml_file.h"
#include "arborist/utilities/file_util.h"

namespace {

using Evidence::RuleSetFile;
using Evidence::RuleSetFileType;
using State = Evidence::RuleSetFileState;

// Loads a file into `document`. Reports the outcome, and logs a line if the file can't be used.
bool LoadDocument(
    tinyxml2::XMLDocument& document, const std::string& path, const char* function, RuleSetFile& report)
{
    XmlFile::Outcome outcome = XmlFile::Load(document, path);
    if (outcome.error == tinyxml2::XML_SUCCESS) {
        report = {report.type, State::LOADED, path, "", 0, 0};
        return true;
    }
    report = {report.type, State::MALFORMED, path, std::move(outcome.message), outcome.line, 0};
    FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: load tree rules xml failed %s, errno %d", function,
        path.c_str(), static_cast<int>(outcome.error));
    return false;
}

// Runs `job` on a thread of its own and waits for it; on the caller's thread if the system has no thread left. An
// exception of the job reaches the caller: one that left its thread would end the process. So do its log lines, if the
// caller records them.
void RunOnThread(const std::function<void()>& job)
{
    std::exception_ptr failure;
    const auto guarded = [&job, &failure, lines = FT::LogRecording::OfThread()] {
        const FT::LogRecording recording(lines);
        try {
            job();
        } catch (...) {
            failure = std::current_exception();
        }
    };
    try {
        std::thread(guarded).join();
    } catch (const std::system_error&) {
        guarded();
    }
    if (failure != nullptr) {
        std::rethrow_exception(failure);
    }
}

} // namespace

/// Owner of the rule file's document.
class FaultTreeParser::InnerXmlHelper {
public:
    InnerXmlHelper() = default;
    ~InnerXmlHelper() { mDocument.Clear(); }
    InnerXmlHelper(const InnerXmlHelper&) = delete;
    InnerXmlHelper& operator=(const InnerXmlHelper&) = delete;

    bool LoadXmlFile(const std::string& path, RuleSetFile& report)
    {
        return LoadDocument(mDocument, path, "FaultTreeParser::InnerXmlHelper::LoadXmlFile", report);
    }
    const tinyxml2::XMLDocument& GetDocument() const { return mDocument; }
    void Forget() { mDocument.Clear(); }

private:
    tinyxml2::XMLDocument mDocument{true, tinyxml2::PRESERVE_WHITESPACE};
};

FaultTreeParser::FaultTreeParser(std::shared_ptr<DetectInfo> detectInfo)
    : mDetectInfo(std::move(detectInfo)), mXmlHelper(std::make_unique<InnerXmlHelper>())
{
    if (mDetectInfo != nullptr) {
        mTreeTag = mDetectInfo->mTreeTag;
    }
}

FaultTreeParser::~FaultTreeParser() = default;

std::string FaultTreeParser::GetFaultTreePath(const std::string& fileName) const
{
    return mDetectInfo->mRuleFileDir + SEPARATOR + fileName;
}

std::string FaultTreeParser::PrefixedFileName(const std::string& fileName) const
{
    return mDetectInfo->mRuleFilePrefix.empty() ? fileName : mDetectInfo->mRuleFilePrefix + "_" + fileName;
}

void FaultTreeParser::StartParse()
{
    if (mDetectInfo == nullptr) {
        return;
    }
    mNamedRules.reset();
    RunOnThread([this] { ParseTreeXml(); });
    if (mXmlHelper == nullptr) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: xmlHelper is nullptr.", "FaultTreeParser::StartParse");
        return;
    }
    const std::string path = GetFaultTreePath(PrefixedFileName(FAULT_TREE_RULES_FILE));
    FT::Log::GetInstance().Output(
        FT::LEVEL_DEBUG, "FUNc:%s: fault tree rule xml path %s", "FaultTreeParser::StartParse", path.c_str());
    if (!FileUtil::FileExists(path)) {
        mRuleFileReport = {RuleSetFileType::RULES, State::MISSING, path, "", 0, 0};
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: fault tree rule xml file %s not exist.",
            "FaultTreeParser::StartParse", path.c_str());
        return;
    }
    mIsParseDone = false; // until the new rules are whole, should memory run out on the way
    RunOnThread([this, &path] { ParseRuleXml(path); });
    // Also done after a malformed file: a second attempt would read the same bytes.
    mIsParseDone = true;
}

void FaultTreeParser::ForgetDocument()
{
    mXmlHelper->Forget();
}

void FaultTreeParser::BuildIndexes()
{
    const std::string someId = "0"; // each look-up builds its index, whatever it finds
    GetNamedRules();
    GetCodeRuleNameById(someId);
    GetFaultDescListById(someId);
    GetSuggestionListById(someId);
    GetRepairInfoById(someId);
}

void FaultTreeParser::ParseTreeXml()
{
    StartFaultTreeParse();
}

void FaultTreeParser::StartFaultTreeParse()
{
    const std::string path = GetFaultTreePath(PrefixedFileName(FAULT_TREE_FILE));
    FT::Log::GetInstance().Output(
        FT::LEVEL_DEBUG, "FUNc:%s: fault tree xml path %s", "FaultTreeParser::StartFaultTreeParse", path.c_str());
    if (!FileUtil::FileExists(path)) {
        mTreeFileReport = {RuleSetFileType::TREES, State::MISSING, path, "", 0, 0};
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: fault tree xml file %s not exist.",
            "FaultTreeParser::StartFaultTreeParse", path.c_str());
        return;
    }
    // Local to this call: the trees don't refer to the document, and it takes many times the memory of the file.
    tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
    if (!LoadDocument(document, path, "FaultTreeParser::StartFaultTreeParse", mTreeFileReport)) {
        return;
    }
    TreeParser parser;
    mFaultTrees = parser.GetTreeList(document, mTreeTag);
    mTreeFileVersion = parser.GetTreeFileVersion();
    mTreeFileReport.count = mFaultTrees.size();
}

void FaultTreeParser::ParseRuleXml(const std::string& path)
{
    if (!mXmlHelper->LoadXmlFile(path, mRuleFileReport)) {
        return;
    }
    ++mRuleRevision;
    ParseOtherInfo();
    StartRuleParse();
    mRuleFileReport.count = mRuleMap.size();
}

void FaultTreeParser::ParseOtherInfo()
{
    StartEventRuleParse();
    StartFaultDescriptionParse();
    StartSuggestionParse();
    StartRepairDescriptionParse();
    StartCommonPartParse();
}

void FaultTreeParser::StartEventRuleParse()
{
    EventRuleParser parser(mTreeTag);
    parser.Parse(mXmlHelper->GetDocument());
    mEventRuleMap = parser.TakeEventRuleMap();
}

void FaultTreeParser::StartFaultDescriptionParse()
{
    FaultDescriptionParser parser(mTreeTag);
    parser.Parse(mXmlHelper->GetDocument());
    mFaultDescById.reset();
    mFaultDescList = parser.TakeItemList();
}

void FaultTreeParser::StartSuggestionParse()
{
    SuggestionParser parser(mTreeTag);
    parser.Parse(mXmlHelper->GetDocument());
    mSuggestionById.reset();
    mSuggestionList = parser.TakeItemList();
}

void FaultTreeParser::StartRepairDescriptionParse()
{
    RepairDescriptionParser parser(mTreeTag);
    parser.Parse(mXmlHelper->GetDocument());
    mRepairById.reset();
    mRepairList = parser.TakeItemList();
}

void FaultTreeParser::StartCommonPartParse()
{
    CommonPartParser parser;
    if (parser.Parse(mXmlHelper->GetDocument(), mTreeTag)) {
        mCombineCommonPart = parser.GetCommonPart();
    }
}

void FaultTreeParser::StartRuleParse()
{
    RuleParser parser;
    parser.Parse(mXmlHelper->GetDocument(), mTreeTag);
    mCodeRuleByDetectCode.reset();
    mRuleMap = parser.TakeRuleMap();
    mCodeRuleList = parser.TakeCodeRuleList();
    mCodeRuleNames = parser.TakeCodeRuleNames();
}

const FaultTreeParser::RuleList& FaultTreeParser::GetNamedRules()
{
    if (!mNamedRules) {
        mNamedRules = FindNamedRules(mFaultTrees, mEventRuleMap, mRuleMap);
    }
    return *mNamedRules;
}

const std::shared_ptr<Rule>& FaultTreeParser::GetRuleByRuleName(const std::string& ruleName) const
{
    static const std::shared_ptr<Rule> NONE;
    const auto entry = mRuleMap.find(ruleName);
    return entry == mRuleMap.end() ? NONE : entry->second;
}

const std::shared_ptr<EventRule>& FaultTreeParser::GetEventRuleByEventId(const std::string& eventId) const
{
    static const std::shared_ptr<EventRule> NONE;
    const auto entry = mEventRuleMap.find(eventId);
    return entry == mEventRuleMap.end() ? NONE : entry->second;
}

std::string FaultTreeParser::GetCodeRuleNameById(const std::string& detectCode)
{
    if (!mCodeRuleByDetectCode) {
        mCodeRuleByDetectCode = IndexCodeRules();
    }
    const auto entry = mCodeRuleByDetectCode->find(detectCode);
    return entry == mCodeRuleByDetectCode->end() ? "" : entry->second->name;
}

FaultTreeParser::CodeRuleIndex FaultTreeParser::IndexCodeRules() const
{
    CodeRuleIndex index;
    index.reserve(mCodeRuleNames.size());
    for (const std::string& name : mCodeRuleNames) {
        // A later rule of the same name may have replaced this one, by another family or by another code.
        const auto* codeRule = dynamic_cast<const CodeRule*>(GetRuleByRuleName(name).get());
        if (codeRule != nullptr) {
            index.emplace(codeRule->codeItem.id, codeRule);
        }
    }
    return index;
}

const std::vector<std::string>& FaultTreeParser::GetFaultDescListById(const std::string& eventId)
{
    return GetListById(mFaultDescList, mFaultDescById, eventId);
}

const std::vector<std::string>& FaultTreeParser::GetSuggestionListById(const std::string& eventId)
{
    return GetListById(mSuggestionList, mSuggestionById, eventId);
}

const std::vector<std::string>& FaultTreeParser::GetListById(
    const FaultItemList& items, std::optional<FaultItemIndex>& index, const std::string& eventId)
{
    static const std::vector<std::string> NONE;
    const FaultItem* item = FindItem(items, index, eventId);
    return item == nullptr ? NONE : item->GetResolutionSuggestions();
}

const FaultTreeParser::RepairInfoList& FaultTreeParser::GetRepairInfoById(const std::string& eventId)
{
    static const RepairInfoList NONE;
    const FaultItem* item = FindItem(mRepairList, mRepairById, eventId);
    return item == nullptr ? NONE : item->GetRepairInfo();
}

const FaultItem* FaultTreeParser::FindItem(
    const FaultItemList& items, std::optional<FaultItemIndex>& index, const std::string& eventId)
{
    if (eventId.empty()) {
        return nullptr;
    }
    if (!index) {
        index.emplace(items.size());
        for (const auto& item : items) {
            (*index)[item->GetFaultItemId()] = item.get();
        }
    }
    const auto entry = index->find(eventId);
    return entry == index->end() ? nullptr : entry->second;
}

std::vector<std::string> FaultTreeParser::GetRepairListById(const std::string& eventId)
{
    std::vector<std::string> repairs;
    for (const auto& repair : GetRepairInfoById(eventId)) {
        const std::string operation = repair.GetOperation();
        repairs.push_back(operation.empty() ? repair.mId : repair.mId + "_" + operation);
    }
    return repairs;
}
