#ifndef ARBORIST_TOOLS_COMMANDS_DEVICE_NAMES_H
#define ARBORIST_TOOLS_COMMANDS_DEVICE_NAMES_H

#include "diagnosis/redaction/hash_key.h"
#include "tools/arborist/options/options.h"

namespace diagnosis::command {

/// --device-key and --plain-ids: how lines of JSON name devices. The key is read while the command line is parsed.
void AddDeviceNames(Command app, DeviceNames& names);

} // namespace diagnosis::command

#endif
