#ifndef ARBORIST_LOADING_FRESH_RECORDS_H
#define ARBORIST_LOADING_FRESH_RECORDS_H

class FaultTreeParser;

/// Gives every field that a detection writes, in all records that the parser holds, the value that the parser gave it:
/// the next detection finds the records as if the files had just been read. Writes to no field that has that value, as
/// processes may share their memory.
void MakeRecordsFresh(const FaultTreeParser& parser);

#endif
