#ifndef ARBORIST_LOADING_RULE_SET_RECORD_H
#define ARBORIST_LOADING_RULE_SET_RECORD_H

#include "arborist/frame/evidence.h"

class FaultTreeParser;

/// What an observer is told of a rule set after the attempt to read it.
Evidence::RuleSet RuleSetRecordOf(const FaultTreeParser& parser);

#endif
