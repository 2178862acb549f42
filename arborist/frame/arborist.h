#ifndef ARBORIST_FRAME_ARBORIST_H
#define ARBORIST_FRAME_ARBORIST_H

#include <memory>
#include <string>
#include <vector>

#include "arborist/arborist_export.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/detection_observer.h"
#include "arborist/frame/fault_tree_result.h"

class FaultTree;
class FaultTreeParser;
class FaultTreeVisitor;
class LoadedRuleSet;
class RuleEngine;
class StopRequest;

/// Diagnoses one device: runs every fault tree of a rule set and returns the root causes of each.
///
/// A call that fails logs a line and returns an empty answer; no call throws on purpose. Call from one thread at a
/// time, except for RequestStop; each call blocks until it is done.
class ARBORIST_EXPORT Arborist {
public:
    /// Shares ownership of the input and never writes to it. With null every call returns an empty answer. Reads no
    /// rule file yet.
    explicit Arborist(std::shared_ptr<DetectInfo> detectInfo);
    /// Starts from a rule set that was read before, wherever the other calls say that they read it; the three fields of
    /// the input that name a rule set are not used. Shares ownership of the set. With null reads by itself, as above.
    Arborist(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<LoadedRuleSet> ruleSet);
    ~Arborist();
    Arborist(const Arborist&) = delete;
    Arborist& operator=(const Arborist&) = delete;

    /// Reads the rule set anew and runs every tree of the tag. One result for each tree, in file order, fault or not;
    /// they outlive this object and later calls. Empty if the rule file is missing or there is no tree; a warning says
    /// which. If an earlier call has read a rule set and a file is missing or malformed now, that earlier content stays
    /// in use, with the events that fired then still true.
    ///
    /// With a loaded rule set reads no file: each call starts from what the set held when it was read, and logs the lines
    /// that were logged then. Empty, with a warning, if another detection is using the set.
    std::vector<std::shared_ptr<FaultTreeResult>> StartDetection();

    /// Asks the running detection to end early: at the next rule, SQLite step, file or archive entry. Every tree has its
    /// result all the same; those that were not decided by then are marked FaultTreeResult::mIsStopped, and their
    /// verdict is UNDECIDED with the reason STOPPED. The rule set is read to its end first. The engine can be used
    /// again at once, and no store is left half written.
    ///
    /// Any thread and any signal handler may call it. Without a running detection it does nothing: a detection that
    /// starts later is not stopped.
    void RequestStop() noexcept;

    /// True if the code rule of a detect code would run on this device and scene. The first code rule of the file whose
    /// code contains the text `codeRuleId` decides. Reads the rule set if that has not happened yet.
    bool IsRunRule(const std::string& codeRuleId);

    /// The first fault description, suggestion or repair id of the event that uses the code rule of this detect code;
    /// empty when there is none. Reads the rule set if that has not happened yet. Before the first detection the events
    /// of all trees are searched, after it those of the last tree.
    ///@{
    std::string GetCodeRuleFaultDescId(const std::string& detectCode);
    std::string GetCodeRuleSuggestionId(const std::string& detectCode);
    std::string GetCodeRuleRepairId(const std::string& detectCode);
    ///@}

    /// Sets the observer, which is notified of everything that decides the results of later calls, and shares its
    /// ownership; null removes it. Don't call this from within an observer.
    void SetObserver(std::shared_ptr<DetectionObserver> observer);

private:
    friend struct ArboristPeer; // tests reach the private steps through it

    struct FaultDescQuery;
    struct SuggestionQuery;
    struct RepairQuery;
    class Turn;

    static constexpr char FAULT_TREE_NAME[] = "FaultTree.zip";
    static constexpr char TEMP_NAME[] = "temp_";
    static constexpr char SEPARATOR[] = "/";

    void Parse();
    bool IsParsed();
    std::vector<std::shared_ptr<FaultTreeResult>> Detect();
    void PrepareRules();
    bool DeduceRootCauses(const std::shared_ptr<FaultTree>& faultTree);
    std::vector<std::shared_ptr<FaultTreeResult>> RunFaultTrees(
        const std::vector<std::shared_ptr<FaultTree>>& faultTrees);
    std::shared_ptr<FaultTreeResult> RunFaultTree(const std::shared_ptr<FaultTree>& faultTree);
    std::vector<std::shared_ptr<FaultTreeResult::RootCauseResult>> GetRootCauseResultList(
        const std::vector<std::shared_ptr<FaultTreeNode>>& nodes) const;
    template <typename Query>
    std::string GetCodeRuleId(const std::string& detectCode);
    bool InitFaultTree();

    // Null for an engine that reads its rule set itself.
    std::shared_ptr<LoadedRuleSet> mRuleSet;
    // Whether the lines of the rule set were logged, and the observer was told of it.
    bool mHasParsed = false;
    std::shared_ptr<FaultTreeParser> mFaultTreeParser;
    std::shared_ptr<RuleEngine> mRuleEngine;
    std::shared_ptr<FaultTreeVisitor> mFaultTreeVisitor;
    std::unique_ptr<StopRequest> mStop;
    std::shared_ptr<DetectInfo> mDetectInfo;
    // Directory into which the rule archive is unpacked.
    std::string mUnzipDir;
    std::shared_ptr<DetectionObserver> mObserver;
};

#endif
