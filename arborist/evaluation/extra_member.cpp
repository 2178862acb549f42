#include "arborist/evaluation/extra_member.h"

#include <json/value.h>

#include "arborist/frame/trouble_watch.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/json_text.h"

namespace {

void Tell(std::string_view words, std::string_view member)
{
    TroubleWatch::Tell(Evidence::Trouble::Kind::BAD_EXTRA, words, {member, DevicePaths::EventLog()});
}

} // namespace

std::string ExtraMember::Read(
    std::string_view extra, const std::string& key, void (*logNoJson)(const std::string& error))
{
    Json::Value root;
    std::string error;
    if (!ParseJson(extra, root, error)) {
        logNoJson(error);
        Tell(error, {});
    } else if (!root.isObject()) {
        Tell("no JSON object", {});
    } else if (!IsMemberReadable(root, key)) {
        Tell("a list or an object", key);
    }
    return MemberText(root, key);
}
