#ifndef ARBORIST_FUZZ_SMALL_RULE_SET_H
#define ARBORIST_FUZZ_SMALL_RULE_SET_H

/// The files of a rule set with the tag "t", for targets that get one of the two as input.
inline constexpr char SMALL_TREE_FILE[] =
    "<r version='1'><t><T id='T' version='1' type='t'><Intermediate-Event><ID>T</ID><And-Gate><Basic-Event><ID>E</ID>"
    "</Basic-Event><Basic-Event><ID>F</ID></Basic-Event></And-Gate></Intermediate-Event></T></t></r>";
inline constexpr char SMALL_RULE_FILE[] =
    "<r><EventRules><t><Event><ID>E</ID><or type='singleRule'><Rule><Rule-name>r</Rule-name></Rule></or></Event></t>"
    "</EventRules></r>";

#endif
