#ifndef ARBORIST_EVALUATION_RULE_CHECK_H
#define ARBORIST_EVALUATION_RULE_CHECK_H

#include <string>

#include "arborist/frame/evidence.h"

/// What the answer of a rule rests on, by its record alone: the worst word of its parts, whatever it answered.
///
/// Windows of an alarm rule are alternatives: once one was reached, rows that another may lack change nothing. A window
/// that an item doesn't have counts only where the item has none at all.
Evidence::Check CheckOfRule(const Evidence::Rule& rule);

/// The reason that gave a rule its word: its own where several have it.
Evidence::Reason ReasonOfCheck(const Evidence::Rule& rule);

/// What that reason is about: a path, a name, a database's message; may be empty.
std::string DetailOfCheck(const Evidence::Rule& rule);

/// What the answer of an alternative rests on. A rule behind the end of its group has no word. A group that ended with
/// an answer is false, whatever its other rules rest on.
Evidence::Check CheckOfAlternative(const Evidence::Alternative& alternative);

#endif
