#include "arborist/evaluation/detection_customize.h"

#include <json/value.h>

#include "arborist/frame/log.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/stores/event_log/event_member_cache.h"
#include "arborist/stores/event_log/log_event.h"
#include "arborist/utilities/json_text.h"
#include "arborist/utilities/string_util.h"

namespace {

std::string CountIn(std::string_view extra)
{
    Json::Value root;
    std::string error;
    if (!ParseJson(extra, root, error)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: parseJson err. %s ",
            "DetectionCustomize::CheckDmdEventCount", error.c_str());
        TroubleWatch::Tell(Evidence::Trouble::Kind::BAD_EXTRA, error);
    }
    return MemberText(root, DetectionCustomize::KEY_COUNT);
}

std::int32_t WeightOf(const std::string& count)
{
    return count.empty() ? 1 : static_cast<std::int32_t>(StringUtil::StringToInt64Def(count, 0, 10));
}

} // namespace

bool DetectionCustomize::IsDmdEvent(std::int32_t eventId)
{
    for (const IdRange& range : DMD_RANGES) {
        if (eventId >= range.first && eventId <= range.last) {
            return true;
        }
    }
    return false;
}

std::int32_t DetectionCustomize::CheckDmdEventCount(const LogEvent& event)
{
    return event.extra.empty() ? 0 : WeightOf(CountIn(event.extra));
}

std::int32_t DetectionCustomize::CheckDmdEventCount(const EventMember& count)
{
    switch (count.kind) {
    case EventMember::Kind::NO_EXTRA:
        return 0;
    case EventMember::Kind::INTEGER:
        return static_cast<std::int32_t>(count.number);
    case EventMember::Kind::TEXT:
        return WeightOf(std::string(count.text));
    default:
        return WeightOf(CountIn(count.text));
    }
}
