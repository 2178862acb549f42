#ifndef ARBORIST_BINDINGS_C_CALLS_H
#define ARBORIST_BINDINGS_C_CALLS_H

#include "bindings/c/answer.h"
#include "bindings/c/engine.h"
#include "bindings/c/request.h"

namespace diagnosis::bindings {

/// One of the calls below.
using Call = Answer (*)(arborist_engine& engine, Request& request);

/// Each reads its keys of the request, and does the work if nothing is wrong with it. Call them within a Turn.
Answer Detect(arborist_engine& engine, Request& request);
Answer Explain(arborist_engine& engine, Request& request);
Answer Query(arborist_engine& engine, Request& request);
Answer RepairRecord(arborist_engine& engine, Request& request);
Answer RepairList(arborist_engine& engine, Request& request);
Answer RuleSet(arborist_engine& engine, Request& request);

} // namespace diagnosis::bindings

#endif
