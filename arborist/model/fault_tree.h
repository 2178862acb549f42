#ifndef ARBORIST_MODEL_FAULT_TREE_H
#define ARBORIST_MODEL_FAULT_TREE_H

#include <memory>
#include <string>

class IntermediateEvent;

/// A top event with everything below it. Can be evaluated more than once: Reset restores the initial statuses.
///
/// Shares ownership of the top event, which may be null. Used by one thread at a time.
class FaultTree {
public:
    FaultTree() = default;
    FaultTree(std::string id, std::string version, std::string type);

    const std::string& GetId() const { return mId; }
    const std::string& GetVersion() const { return mVersion; }
    const std::string& GetType() const { return mType; }
    const std::shared_ptr<IntermediateEvent>& GetIntermediateEvent() const { return mIntermediateEvent; }
    /// Part of the tree as rule code knows it; the library never sets it. FaultTreeVisitor has the result of a
    /// deduction.
    bool IsResult() const { return mResult; }

    /// The loader passes all three to the constructor; these setters are kept for the tests.
    ///@{
    void SetId(std::string id);
    void SetVersion(std::string version);
    void SetType(std::string type);
    ///@}
    void SetIntermediateEvent(std::shared_ptr<IntermediateEvent> event);
    void SetResult(bool result) { mResult = result; }

    /// Folds the statuses up to the top event.
    void Check();
    void Reset();

private:
    std::shared_ptr<IntermediateEvent> mIntermediateEvent;
    std::string mId;
    std::string mVersion;
    std::string mType;
    bool mResult = false;
};

#endif
