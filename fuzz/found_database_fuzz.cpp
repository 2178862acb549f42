// Any bytes as a database of the device that a rule set searches, copies, extends by its SQL and queries.

#include "fuzz/fuzz_device.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDevice device;
    device.WriteFoundDatabase(data, size);
    device.Detect();
    return 0;
}
