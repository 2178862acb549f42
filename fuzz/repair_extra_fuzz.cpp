// Any bytes as the "extra" of a repair, of which a host asks the operation.

#include "arborist/frame/fault_tree_result.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir quiet;
    FaultTreeResult::RepairInfo repair;
    repair.mExtra.assign(reinterpret_cast<const char*>(data), size);
    for (const char* id : {"", "R1", "operation", "R.*(a|b)+$"}) {
        repair.mId = id;
        repair.GetOperation();
    }
    return 0;
}
