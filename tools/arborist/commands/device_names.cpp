#include "tools/arborist/commands/device_names.h"

namespace diagnosis::command {

void AddDeviceNames(Command app, DeviceNames& names)
{
    const auto read = [&names](const std::string& path) -> std::string {
        std::string problem;
        const auto key = ReadHashKey(path, problem);
        names.key = key.value_or("");
        return problem;
    };
    const Option key = app.Add("--device-key", [](const std::string&) {}, "Name devices in JSON by the hash of their "
        "\"deviceId\" under the key that is this file's content; nothing else shows the id")
        .Takes("FILE")
        .Check(read);
    app.AddFlag("--plain-ids", names.isPlain, "Name devices in JSON by their \"deviceId\" as it is").Excludes(key);
}

} // namespace diagnosis::command
