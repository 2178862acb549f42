#ifndef ARBORIST_TESTS_SUPPORT_RULE_SET_DUMP_H
#define ARBORIST_TESTS_SUPPORT_RULE_SET_DUMP_H

#include <string>
#include <vector>

class FaultTreeParser;

/// Every field of every record that a parser holds, as lines of text: two parsers whose dumps are equal hold the same.
std::vector<std::string> DumpOf(const FaultTreeParser& parser);

#endif
