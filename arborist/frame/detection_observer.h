#ifndef ARBORIST_FRAME_DETECTION_OBSERVER_H
#define ARBORIST_FRAME_DETECTION_OBSERVER_H

#include <vector>

#include "arborist/arborist_export.h"
#include "arborist/frame/evidence.h"
#include "arborist/frame/trouble.h"

/// Interface that receives everything that decides the result of a detection, in the order in which it happens.
///
/// A host derives from this class, overrides the calls that it needs and passes the object to Arborist::SetObserver. The
/// library makes the calls on the thread that called it. Records are complete when they are passed, own their texts and
/// belong to the observer, which may keep them. Nothing that an observer does changes a result or a log line; its
/// exceptions leave StartDetection. An observer must not call the Arborist that it observes.
class ARBORIST_EXPORT DetectionObserver {
public:
    virtual ~DetectionObserver();

    /// Called each time that the engine has tried to read the two files of the rule set.
    virtual void OnRuleSetRead(Evidence::RuleSet ruleSet);
    /// Called before the rules of a tree run.
    virtual void OnTreeStarted(Evidence::TreeHead tree);
    /// Called once an event is decided, for each event with an entry in the event rules, in pre-order.
    virtual void OnEventDecided(Evidence::Event event);
    /// Called with all events of a tree after its statuses are folded. They are in pre-order, so that their depths give
    /// the shape of the tree.
    virtual void OnTreeFolded(std::vector<Evidence::FoldedEvent> events);
    /// Called for each entry of the list of root causes, in order.
    virtual void OnRootCause(Evidence::RootCause rootCause);
    /// Called last for each tree, with its verdict.
    virtual void OnTreeFinished(Evidence::TreeResult result);
    /// Called for a problem that belongs to no record of a rule.
    virtual void OnTrouble(Evidence::Trouble trouble);
};

#endif
