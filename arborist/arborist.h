#ifndef ARBORIST_ARBORIST_H
#define ARBORIST_ARBORIST_H

/// The one header that a host includes: the facade, what goes in, what comes out, what a rule set names, the log and
/// the settings.

#include "arborist/arborist_version.h"
#include "arborist/frame/arborist.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/detection_observer.h"
#include "arborist/frame/evidence.h"
#include "arborist/frame/fault_tree_result.h"
#include "arborist/frame/loaded_rule_set.h"
#include "arborist/frame/log.h"
#include "arborist/frame/log_sweep.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/rule_set_summary.h"
#include "arborist/frame/settings.h"
#include "arborist/frame/sweep_observer.h"
#include "arborist/frame/trouble.h"

#endif
