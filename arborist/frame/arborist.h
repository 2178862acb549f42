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
/// A call that fails logs a line and returns an empty answer. Only the exceptions that StartDetection names leave a call.
/// Call from one thread at a time, except for RequestStop; each call blocks until it is done.
class ARBORIST_EXPORT Arborist {
public:
    /// Shares ownership of the input and never writes to it. With null every call returns an empty answer. Reads no
    /// rule file yet.
    explicit Arborist(std::shared_ptr<DetectInfo> detectInfo);
    /// Uses a rule set that was read before: where the calls below say that they read the rule set, they take this one.
    /// The three fields of the input that name a rule set are not used. Shares ownership of the set. With null the engine
    /// reads the rule set itself, as above.
    Arborist(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<LoadedRuleSet> ruleSet);
    ~Arborist();
    Arborist(const Arborist&) = delete;
    Arborist& operator=(const Arborist&) = delete;

    /// Reads the rule set anew, runs every tree of the tag and returns one result for each tree, in file order, fault or
    /// not. The results outlive this object and later calls. The list is empty if the rule file is missing or there is no
    /// tree; a warning says which. If an earlier call has read a rule set and a file is missing or malformed now, the
    /// content that was read earlier stays in use, and the events that fired then are still true.
    ///
    /// With a loaded rule set the call reads no file: it starts from what the set held when it was read, and logs the
    /// lines that were logged then. The list is empty, with a warning, if another detection is using the set.
    ///
    /// Throws std::regex_error for a `dbName` of the rule set that is no regular expression, std::bad_alloc if memory runs
    /// out, and what the host's own runner, observer or logger throws. The engine can be used again afterwards.
    std::vector<std::shared_ptr<FaultTreeResult>> StartDetection();

    /// Asks the running detection to end early: at the next rule, SQLite step, file or archive entry. Every tree still has
    /// its result; trees that were not decided by then are marked FaultTreeResult::mIsStopped, and their verdict is
    /// UNDECIDED with the reason STOPPED. A rule set that is being read is read to its end first. The engine can be used
    /// again at once, and no store is left half written.
    ///
    /// Any thread and any signal handler may call it. Without a running detection it does nothing: a detection that
    /// starts later is not stopped.
    void RequestStop() noexcept;

    /// Returns true if the code rule of a detect code would run on this device and scene. The first code rule of the file
    /// whose code contains the text `codeRuleId` decides. Reads the rule set if no call has read it yet.
    bool IsRunRule(const std::string& codeRuleId);

    /// Returns the first fault description, suggestion or repair id of the event that uses the code rule of this detect
    /// code; empty if there is none. Reads the rule set if no call has read it yet. Searches the events of all trees
    /// before the first detection, and only those of the last tree after it.
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

    // The rule archive: only InitFaultTree unpacks it, and nothing in the library calls InitFaultTree. A detection reads
    // unpacked files.
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
    // Directory into which InitFaultTree unpacks the rule archive; empty until then.
    std::string mUnzipDir;
    std::shared_ptr<DetectionObserver> mObserver;
};

#endif
