#include "diagnosis/text/in_seconds.h"

#include <sstream>

namespace diagnosis {

std::string InSeconds(std::chrono::milliseconds time)
{
    std::ostringstream text;
    text << static_cast<double>(time.count()) / 1000 << " s";
    return text.str();
}

} // namespace diagnosis
