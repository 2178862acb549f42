// Any bytes as the database file of the event log.

#include "fuzz/fuzz_device.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDevice device;
    device.WriteEventLog(data, size);
    device.Detect();
    return 0;
}
