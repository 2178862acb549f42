#ifndef ARBORIST_FRAME_DETECTION_OBSERVER_H
#define ARBORIST_FRAME_DETECTION_OBSERVER_H

#include <vector>

#include "arborist/arborist_export.h"
#include "arborist/frame/evidence.h"
#include "arborist/frame/trouble.h"

/// Told, while a detection runs, of everything that decides its result, in the order in which it happens.
///
/// A host derives from it, overrides what it wants to hear and hands the object to Arborist::SetObserver. The calls
/// come on the thread that called the library. Records are complete when they are handed over, own their texts and are
/// the observer's: it may keep them. An observer sees; nothing that it does changes a result or a log line. It must not
/// call back into the Arborist that it observes.
class ARBORIST_EXPORT DetectionObserver {
public:
    virtual ~DetectionObserver();

    /// The two files of the rule set were looked for, at each parse.
    virtual void OnRuleSetRead(Evidence::RuleSet ruleSet);
    /// The rules of a tree are about to be asked.
    virtual void OnTreeStarted(Evidence::TreeHead tree);
    /// An event with an entry in the event rules is decided; the events of a tree come in pre-order.
    virtual void OnEventDecided(Evidence::Event event);
    /// The statuses of a tree are folded up: all its events in pre-order, so that their depths give the shape.
    virtual void OnTreeFolded(std::vector<Evidence::FoldedEvent> events);
    /// One entry of the list of root causes, in its order.
    virtual void OnRootCause(Evidence::RootCause rootCause);
    virtual void OnTreeFinished(Evidence::TreeResult result);
    /// Something went wrong that a record of a rule has no place for, or before the first of them.
    virtual void OnTrouble(Evidence::Trouble trouble);
};

#endif
