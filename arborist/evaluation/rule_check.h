#ifndef ARBORIST_EVALUATION_RULE_CHECK_H
#define ARBORIST_EVALUATION_RULE_CHECK_H

#include <string>

#include "arborist/frame/evidence.h"

/// The check of a rule, computed from its record: the greatest check of its parts, whatever the rule answered.
///
/// Windows of an alarm rule are alternatives: once one was reached, rows that another may lack change nothing. A window
/// that an item doesn't have counts only where the item has none at all.
Evidence::Check CheckOfRule(const Evidence::Rule& rule);

/// The reason for a rule's check. Of several reasons with this check the rule's own comes first; an alarm rule's are
/// those of its windows.
Evidence::Reason ReasonOfCheck(const Evidence::Rule& rule);

/// The subject of ReasonOfCheck: a path, a name, or a database's message; may be empty.
std::string DetailOfCheck(const Evidence::Rule& rule);

/// What the answer of an alternative rests on. A rule behind the end of its group has no word. A group that ended with
/// an answer is false, whatever its other rules rest on.
Evidence::Check CheckOfAlternative(const Evidence::Alternative& alternative);

#endif
