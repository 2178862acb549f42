// Any bytes as a bundle.json: it is either accepted or refused with a reason.

#include "diagnosis/bundle/bundle_file.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    diagnosis::Bundle bundle;
    std::vector<diagnosis::Warning> warnings;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto failure = diagnosis::ReadBundleText("bundle.json", text, bundle, warnings);
    if (failure ? failure->message.empty() : bundle.treeTag.empty()) {
        std::abort();
    }
    return 0;
}
