// Any bytes as an archive: nothing may be written outside the target.

#include "arborist/utilities/zip_util.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    const std::string archive = dir.Write("archive.zip", data, size);
    std::filesystem::create_directories(dir.Path("above/target"));
    ZipUtil::UnZipFile(archive, dir.Path("above/target/"));
    std::filesystem::remove_all(dir.Path("above/target"));
    if (!std::filesystem::is_empty(dir.Path("above"))) {
        std::abort();
    }
    return 0;
}
