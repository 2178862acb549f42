#include "arborist/frame/stoppable_detection.h"

#include <chrono>
#include <optional>
#include <string>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/settings.h"
#include "arborist/utilities/string_util.h"

namespace {

std::optional<std::chrono::duration<double>> TimeLimit()
{
    const std::string text = FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(Settings::TIME_LIMIT, "");
    const double seconds = StringUtil::DoubleOf(text).value_or(0);
    return seconds > 0 ? std::optional(std::chrono::duration<double>(seconds)) : std::nullopt;
}

} // namespace

StoppableDetection::StoppableDetection(StopRequest& request) : mRequest(request), mScope(&request)
{
    request.Start(TimeLimit());
}
