#ifndef ARBORIST_LOADING_FRESH_RECORDS_H
#define ARBORIST_LOADING_FRESH_RECORDS_H

class FaultTreeParser;
class Rule;

/// Gives every field that a detection writes the value that the parser gave it: the next detection finds the records as if
/// the files had just been read. Looks at what a detection may come to, the trees, the entries of their events, the rules
/// that these name, and the common part, whatever else the rule set has. Writes to no field that has its value, as
/// processes may share their memory.
void MakeRecordsFresh(FaultTreeParser& parser);

/// The same for one rule.
void MakeRuleFresh(Rule& rule);

#endif
