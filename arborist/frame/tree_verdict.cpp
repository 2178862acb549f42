#include "arborist/frame/tree_verdict.h"

namespace Evidence {

const char* TreeVerdictText(TreeVerdict::Word word)
{
    switch (word) {
    case TreeVerdict::Word::FAULT:
        return "fault";
    case TreeVerdict::Word::UNDECIDED:
        return "undecided";
    case TreeVerdict::Word::NO_FAULT:
        return "no_fault";
    case TreeVerdict::Word::NOT_APPLICABLE:
        return "not_applicable";
    }
    return "";
}

} // namespace Evidence
