// Any bytes as a file of fault trees in the Open-PSA Model Exchange Format. A tree file that comes of it can be read.

#include <cstdlib>

#include "diagnosis/rule_set/open_psa/import.h"
#include "diagnosis/rule_source/source_file.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    diagnosis::rule_set::open_psa::ImportedTrees imported;
    if (diagnosis::rule_set::open_psa::Import(dir.Write("model.xml", data, size), "Tag", imported)) {
        return 0;
    }
    const auto file = diagnosis::rule_source::SourceFile::Of("FaultTrees.xml", imported.text);
    if (!file->IsLoaded() || imported.trees == 0) {
        std::abort();
    }
    return 0;
}
