#ifndef ARBORIST_STORES_COMMON_PART_PATTERN_STATES_H
#define ARBORIST_STORES_COMMON_PART_PATTERN_STATES_H

#include <string_view>

/// True if the automaton that the standard library makes of an ECMAScript pattern may have more than 1000 states; certain
/// if it has. The library compiles and matches by functions that call themselves, for some patterns once for each state:
/// thousands of states overflow a stack of 1 MiB, and "(){9999}" has that many. Takes time proportional to the length.
bool HasTooManyStates(std::string_view pattern);

#endif
