#ifndef ARBORIST_FRAME_STOPPABLE_DETECTION_H
#define ARBORIST_FRAME_STOPPABLE_DETECTION_H

#include "arborist/frame/stopping.h"

/// While it exists, a detection or a sweep runs on this thread, which a request or Settings::TIME_LIMIT stops.
class StoppableDetection {
public:
    explicit StoppableDetection(StopRequest& request);
    ~StoppableDetection() { mRequest.End(); }
    StoppableDetection(const StoppableDetection&) = delete;
    StoppableDetection& operator=(const StoppableDetection&) = delete;

private:
    StopRequest& mRequest;
    StopScope mScope;
};

#endif
