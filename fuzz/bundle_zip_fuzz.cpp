// Any bytes as the zip of a bundle, or choices from which one is made: nothing may be written outside the target, no
// link into it, and no more than the limits allow.

#include "diagnosis/archive/zip_reader.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/made_archive.h"

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t MOST_ENTRIES = 100;
constexpr std::uint64_t MOST_BYTES = 100'000;

bool IsWithinLimits(const std::string& folder)
{
    std::uint64_t bytes = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_symlink() || !(entry.is_directory() || entry.is_regular_file())) {
            return false;
        }
        bytes += entry.is_regular_file() ? entry.file_size() : 0;
    }
    return bytes <= MOST_BYTES;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    const std::string archive = dir.Write("bundle.zip", ArchiveOf(data, size));
    const std::string target = dir.Path("above/target");
    fs::create_directories(target);
    std::vector<diagnosis::Warning> warnings;
    diagnosis::UnpackZip(archive, "bundle.zip", target, warnings, {MOST_ENTRIES, MOST_BYTES});
    const bool isWithinLimits = IsWithinLimits(target);
    fs::remove_all(target);
    if (!isWithinLimits || !fs::is_empty(dir.Path("above"))) {
        std::abort();
    }
    return 0;
}
