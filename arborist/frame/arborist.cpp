#include "arborist/frame/arborist.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "arborist/deduction/fault_tree_visitor.h"
#include "arborist/deduction/judge_tree.h"
#include "arborist/evaluation/rule_engine.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/loaded_rule_set.h"
#include "arborist/frame/log.h"
#include "arborist/frame/stoppable_detection.h"
#include "arborist/frame/stopping.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/loading/rule_set_record.h"
#include "arborist/model/common_part.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/utilities/file_util.h"
#include "arborist/utilities/zip_util.h"

namespace {

// At its end, which an exception may bring, the rules of a detection let go of their databases.
class RunOfRules {
public:
    explicit RunOfRules(RuleEngine& rules) : mRules(rules) {}
    ~RunOfRules() { mRules.EndDetection(); }
    RunOfRules(const RunOfRules&) = delete;
    RunOfRules& operator=(const RunOfRules&) = delete;

private:
    RuleEngine& mRules;
};

// Makes the verdict UNDECIDED. The reason STOPPED is always in it, even if all rules ran and only the root causes are
// missing.
void MarkStopped(Evidence::TreeVerdict& verdict, const FaultTree& tree)
{
    verdict.word = Evidence::TreeVerdict::Word::UNDECIDED;
    verdict.isComplete = false;
    verdict.isTrueWithoutCause = false;
    const bool isTold = std::any_of(verdict.open.begin(), verdict.open.end(),
        [](const Evidence::OpenCheck& open) { return open.reason == Evidence::Reason::STOPPED; });
    if (!isTold) {
        const auto& top = tree.GetIntermediateEvent();
        verdict.open.push_back({top == nullptr ? std::string() : top->GetId(), {},
            Evidence::CheckOf(Evidence::Reason::STOPPED), Evidence::Reason::STOPPED, {}, false});
    }
}

} // namespace

// The formats in which the three calls for one id of a detect code differ. A host's logger receives them as they are.
struct Arborist::FaultDescQuery {
    static constexpr std::string_view TYPE = RuleHelper::FAULT;
    static constexpr char FUNCTION[] = "Arborist::GetCodeRuleFaultDescId";
    static constexpr char EMPTY_CODE[] = "FUNc:%s: detectCode is empty in getCodeRuleFaultDescId";
    static constexpr char NOT_PARSED[] = "FUNc:%s: parse time out in GetCodeRuleFaultDescId";
    static constexpr char FOUND[] = "FUNc:%s: get the fault Description id by fault tree : %s ";
};

struct Arborist::SuggestionQuery {
    static constexpr std::string_view TYPE = RuleHelper::SUGGESTION;
    static constexpr char FUNCTION[] = "Arborist::GetCodeRuleSuggestionId";
    static constexpr char EMPTY_CODE[] = "FUNc:%s: detectCode is empty in GetCodeRuleSuggestionId";
    static constexpr char NOT_PARSED[] = "FUNc:%s: parse time out in GetCodeRuleSuggestionId";
    static constexpr char FOUND[] = "FUNc:%s: get the Suggestions id by fault tree : %s ";
};

struct Arborist::RepairQuery {
    static constexpr std::string_view TYPE = RuleHelper::REPAIR;
    static constexpr char FUNCTION[] = "Arborist::GetCodeRuleRepairId";
    static constexpr char EMPTY_CODE[] = "FUNc:%s: detectCode is empty in GetCodeRuleRepairId";
    static constexpr char NOT_PARSED[] = "FUNc:%s: parse time out in GetCodeRuleRepairId";
    static constexpr char FOUND[] = "FUNc:%s: get the Repair id by fault tree : %s ";
};

/// While it exists, a detection uses the engine's loaded rule set, if it has one.
class Arborist::Turn {
public:
    explicit Turn(LoadedRuleSet* ruleSet) : mRuleSet(ruleSet), mIsTaken(ruleSet == nullptr || ruleSet->Take()) {}
    ~Turn()
    {
        if (mRuleSet != nullptr && mIsTaken) {
            mRuleSet->Release();
        }
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    /// False if another detection uses it.
    bool IsTaken() const { return mIsTaken; }

private:
    LoadedRuleSet* mRuleSet;
    bool mIsTaken;
};

Arborist::Arborist(std::shared_ptr<DetectInfo> detectInfo) : Arborist(std::move(detectInfo), nullptr) {}

// Without an input there is nothing to diagnose, whatever the rule set has.
Arborist::Arborist(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<LoadedRuleSet> ruleSet)
    : mRuleSet(detectInfo == nullptr ? nullptr : std::move(ruleSet)),
      mFaultTreeParser(mRuleSet == nullptr ? std::make_shared<FaultTreeParser>(detectInfo) : mRuleSet->GetParser()),
      mRuleEngine(std::make_shared<RuleEngine>(detectInfo, mFaultTreeParser)),
      mFaultTreeVisitor(std::make_shared<FaultTreeVisitor>(mFaultTreeParser)), mStop(std::make_unique<StopRequest>()),
      mDetectInfo(std::move(detectInfo))
{
}

Arborist::~Arborist() = default;

std::vector<std::shared_ptr<FaultTreeResult>> Arborist::StartDetection()
{
    const StoppableDetection stoppable(*mStop);
    const Turn turn(mRuleSet.get());
    if (!turn.IsTaken()) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: StartDetection rule set is in use by another detection",
            "Arborist::StartDetection");
        return {};
    }
    return Detect();
}

void Arborist::RequestStop() noexcept
{
    mStop->Request();
}

std::vector<std::shared_ptr<FaultTreeResult>> Arborist::Detect()
{
    constexpr char FUNCTION[] = "Arborist::StartDetection";
    auto& log = FT::Log::GetInstance();
    Parse();
    // There is no timer: the line says that the parse did not finish, as without a rule file.
    if (!mFaultTreeParser->IsParseDone()) {
        log.Output(FT::LEVEL_WARN, "FUNc:%s: startDetection time out", FUNCTION);
        return {};
    }
    log.Output(FT::LEVEL_DEBUG, "FUNc:%s: StartDetection Parse finished", FUNCTION);
    const RunOfRules run(*mRuleEngine);
    PrepareRules();
    const auto faultTrees = mFaultTreeParser->GetFaultTrees();
    if (faultTrees.empty()) {
        log.Output(FT::LEVEL_WARN, "FUNc:%s: StartDetection fault tree is invalid", FUNCTION);
        return {};
    }
    auto results = RunFaultTrees(faultTrees);
    if (mStop->HasStopped()) {
        const auto stopped = std::count_if(
            results.begin(), results.end(), [](const auto& result) { return result->mIsStopped; });
        log.Output(FT::LEVEL_WARN, "FUNc:%s: StartDetection stopped, %zu of %zu trees not decided", FUNCTION,
            static_cast<std::size_t>(stopped), results.size());
    }
    log.Output(FT::LEVEL_DEBUG, "FUNc:%s: StartDetection Run finished", FUNCTION);
    return results;
}

void Arborist::PrepareRules()
{
    try {
        mRuleEngine->Init();
    } catch (const DetectionStopped&) {
        // No rule runs from here on; each tree reports that itself.
    }
}

bool Arborist::IsRunRule(const std::string& codeRuleId)
{
    const StopScope unstoppable(nullptr);
    constexpr char FUNCTION[] = "Arborist::IsRunRule";
    if (mDetectInfo == nullptr || codeRuleId.empty()) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_WARN, "FUNc:%s: mDetectInfo or codeRuleId is null in isRunRule()", FUNCTION);
        return false;
    }
    if (!IsParsed()) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: parse time out in isRunRule", FUNCTION);
        return false;
    }
    return mRuleEngine->GetRuleHelper()->IsSpecifiedCodeRuleSupported(codeRuleId, mFaultTreeParser);
}

template <typename Query>
std::string Arborist::GetCodeRuleId(const std::string& detectCode)
{
    const StopScope unstoppable(nullptr);
    auto& log = FT::Log::GetInstance();
    if (detectCode.empty()) {
        log.Output(FT::LEVEL_WARN, Query::EMPTY_CODE, Query::FUNCTION);
        return RuleHelper::EMPTY_STRING;
    }
    if (!IsParsed()) {
        log.Output(FT::LEVEL_WARN, Query::NOT_PARSED, Query::FUNCTION);
        return RuleHelper::EMPTY_STRING;
    }
    const auto ids = mRuleEngine->GetCodeRuleInfoByType(Query::TYPE, detectCode);
    if (ids.empty()) {
        log.Output(FT::LEVEL_WARN, "FUNc:%s: resolutionSuggestions is null or empty", Query::FUNCTION);
        return RuleHelper::EMPTY_STRING;
    }
    log.Output(FT::LEVEL_INFO, Query::FOUND, Query::FUNCTION, ids.front().c_str());
    return ids.front();
}

std::string Arborist::GetCodeRuleFaultDescId(const std::string& detectCode)
{
    return GetCodeRuleId<FaultDescQuery>(detectCode);
}

std::string Arborist::GetCodeRuleSuggestionId(const std::string& detectCode)
{
    return GetCodeRuleId<SuggestionQuery>(detectCode);
}

std::string Arborist::GetCodeRuleRepairId(const std::string& detectCode)
{
    return GetCodeRuleId<RepairQuery>(detectCode);
}

void Arborist::SetObserver(std::shared_ptr<DetectionObserver> observer)
{
    mRuleEngine->SetObserver(observer.get());
    mFaultTreeVisitor->SetObserver(observer.get());
    mObserver = std::move(observer); // releases the previous observer
}

void Arborist::Parse()
{
    if (mRuleSet == nullptr) {
        mFaultTreeParser->StartParse();
    } else {
        mRuleSet->LogLines();
    }
    mHasParsed = true;
    if (mObserver != nullptr) {
        mObserver->OnRuleSetRead(RuleSetRecordOf(*mFaultTreeParser));
    }
}

bool Arborist::IsParsed()
{
    if (!mHasParsed || !mFaultTreeParser->IsParseDone()) {
        Parse();
    }
    return mFaultTreeParser->IsParseDone();
}

std::vector<std::shared_ptr<FaultTreeResult>> Arborist::RunFaultTrees(
    const std::vector<std::shared_ptr<FaultTree>>& faultTrees)
{
    std::vector<std::shared_ptr<FaultTreeResult>> results;
    results.reserve(faultTrees.size());
    for (const auto& faultTree : faultTrees) {
        if (faultTree != nullptr) {
            results.push_back(RunFaultTree(faultTree));
        }
    }
    return results;
}

std::shared_ptr<FaultTreeResult> Arborist::RunFaultTree(const std::shared_ptr<FaultTree>& faultTree)
{
    if (mObserver != nullptr) {
        mObserver->OnTreeStarted({faultTree->GetId(), faultTree->GetVersion(), faultTree->GetType()});
    }
    mRuleEngine->StartRunRules(faultTree);
    const TreeChecks& checks = mRuleEngine->GetTreeChecks();
    const bool isDeduced = DeduceRootCauses(faultTree);
    const auto& nodes = mFaultTreeVisitor->GetRootCauseNodeList();

    auto result = std::make_shared<FaultTreeResult>(faultTree->GetId());
    result->mVersion = mFaultTreeParser->GetTreeFileVersion();
    result->mIsStopped = !isDeduced;
    result->mIsFault = isDeduced && mFaultTreeVisitor->IsFault() && !nodes.empty();
    if (result->mIsFault) {
        result->mRootCauseResults = GetRootCauseResultList(nodes);
    }
    if (mObserver != nullptr) {
        Evidence::TreeVerdict verdict = JudgeTree(*faultTree, result->mIsFault, checks.GetChecks());
        verdict.open = checks.ListOpen(verdict.checks);
        if (result->mIsStopped) {
            MarkStopped(verdict, *faultTree);
        }
        mObserver->OnTreeFinished({result->mTreeId, result->mIsFault, std::move(verdict)});
    }
    return result;
}

// False if the detection was stopped before or during the deduction. Folds the statuses in any case, for the observer.
bool Arborist::DeduceRootCauses(const std::shared_ptr<FaultTree>& faultTree)
{
    const auto& checks = mRuleEngine->GetTreeChecks().GetChecks();
    if (mStop->HasStopped()) {
        mFaultTreeVisitor->FoldStatuses(faultTree, checks);
        return false;
    }
    try {
        mFaultTreeVisitor->DeduceRootCause(faultTree, checks);
        return true;
    } catch (const DetectionStopped&) {
        return false;
    }
}

std::vector<std::shared_ptr<FaultTreeResult::RootCauseResult>> Arborist::GetRootCauseResultList(
    const std::vector<std::shared_ptr<FaultTreeNode>>& nodes) const
{
    std::vector<std::shared_ptr<FaultTreeResult::RootCauseResult>> causes;
    causes.reserve(nodes.size());
    for (const auto& node : nodes) {
        if (node == nullptr) {
            continue;
        }
        auto cause = std::make_shared<FaultTreeResult::RootCauseResult>();
        cause->mNode = node;
        cause->mSuggestions = mFaultTreeParser->GetSuggestionListById(node->mId);
        cause->mRepairInfos = mFaultTreeParser->GetRepairInfoById(node->mId);
        const auto& descriptions = mFaultTreeParser->GetFaultDescListById(node->mId);
        if (!descriptions.empty()) {
            cause->mFaultDescription = descriptions.front(); // a cause has one; further ones are dropped
        }
        causes.push_back(std::move(cause));
    }
    return causes;
}

// Not called by a detection, which reads unpacked files. Private: only the tests call it, through ArboristPeer.
bool Arborist::InitFaultTree()
{
    if (mDetectInfo == nullptr) {
        return false;
    }
    const std::string archive = mDetectInfo->mRuleFileDir + SEPARATOR + FAULT_TREE_NAME;
    if (!FileUtil::FileExists(archive)) {
        return false;
    }
    mUnzipDir = mDetectInfo->mRuleFileDir + SEPARATOR + TEMP_NAME + mDetectInfo->mTreeTag + SEPARATOR;
    return ZipUtil::UnZipFile(archive, mUnzipDir);
}
