#ifndef ARBORIST_DEDUCTION_ROOT_CAUSE_H
#define ARBORIST_DEDUCTION_ROOT_CAUSE_H

#include <memory>
#include <string>
#include <vector>

class Event;

/// One explanation of a fault: the members of a cut set and all events above them, leaves first.
///
/// Shares ownership of its events. The lists of events and ids have the same order. The deduction sets both lists
/// whole; AddEvent and AddPath are kept for the plain expansion and the tests.
class RootCause {
public:
    virtual ~RootCause() = default;

    void AddEvent(std::shared_ptr<Event> event);
    void AddPath(std::string id);

    const std::vector<std::shared_ptr<Event>>& GetLeaf() const { return mLeaf; }
    /// The ids of the events, each once. Despite the name they are no paths.
    const std::vector<std::string>& GetPaths() const { return mPaths; }
    void SetLeaf(std::vector<std::shared_ptr<Event>> leaf);
    void SetPaths(std::vector<std::string> paths);

private:
    std::vector<std::shared_ptr<Event>> mLeaf;
    std::vector<std::string> mPaths;
};

#endif
