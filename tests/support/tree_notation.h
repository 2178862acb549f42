#ifndef ARBORIST_TESTS_SUPPORT_TREE_NOTATION_H
#define ARBORIST_TESTS_SUPPORT_TREE_NOTATION_H

#include <string>

/// The XML of a tree's top event from the short form of the pages: "T = OR(A, U?, G = AND(B, C))", where "A" is a basic
/// event, "U?" an undeveloped one, and "G = AND(...)" an intermediate event with its gate. Text of another form fails
/// the running test.
std::string XmlOfTree(const std::string& notation);

#endif
