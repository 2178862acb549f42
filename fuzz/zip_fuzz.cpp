// Any bytes as an archive, or choices from which one is made: nothing may be written outside the target, and no
// incomplete file may be left there.

#include <algorithm>

#include "arborist/utilities/zip_util.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/made_archive.h"

namespace {

// An incomplete file has a name that is longer than that of any entry.
bool IsUnfinished(const std::filesystem::directory_entry& entry)
{
    constexpr std::size_t LONGEST_ENTRY_NAME = 127;
    return entry.path().filename().string().size() > LONGEST_ENTRY_NAME;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    const std::string archive = dir.Write("archive.zip", ArchiveOf(data, size));
    std::filesystem::create_directories(dir.Path("above/target"));
    ZipUtil::UnZipFile(archive, dir.Path("above/target/"));
    const std::filesystem::directory_iterator unpacked(dir.Path("above/target"));
    if (std::any_of(begin(unpacked), end(unpacked), IsUnfinished)) {
        std::abort();
    }
    std::filesystem::remove_all(dir.Path("above/target"));
    if (!std::filesystem::is_empty(dir.Path("above"))) {
        std::abort();
    }
    return 0;
}
