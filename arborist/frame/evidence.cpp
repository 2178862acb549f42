#include "arborist/frame/evidence.h"

namespace Evidence {

void Rule::SetFamily(Family family)
{
    switch (family) {
    case Family::NONE:
        part.emplace<std::monostate>();
        break;
    case Family::ALARM:
        part.emplace<Alarm>();
        break;
    case Family::COMMAND:
        part.emplace<Command>();
        break;
    case Family::NODE:
        part.emplace<Node>();
        break;
    case Family::CODE:
        part.emplace<Code>();
        break;
    }
}

} // namespace Evidence
