// Any bytes as a bundle.json: it is used whole, or told why not.

#include "fuzz/fuzz_support.h"
#include "tools/arborist/bundle/bundle_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    command::Bundle bundle;
    std::vector<command::Warning> warnings;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto failure = command::ReadBundleText("bundle.json", text, bundle, warnings);
    if (failure ? failure->message.empty() : bundle.treeTag.empty()) {
        std::abort();
    }
    return 0;
}
