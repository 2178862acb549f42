#ifndef ARBORIST_BENCH_SCRATCH_FOLDER_H
#define ARBORIST_BENCH_SCRATCH_FOLDER_H

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace bench {

/// A new folder in the system's folder for temporary files, removed at the end. Ends the program if it can't be made.
class ScratchFolder {
public:
    ScratchFolder() : mPath((std::filesystem::temp_directory_path() / "arborist-bench-XXXXXX").string())
    {
        if (mkdtemp(mPath.data()) == nullptr) {
            std::abort();
        }
    }
    ~ScratchFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(mPath, error);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::string& Path() const { return mPath; }

private:
    std::string mPath;
};

} // namespace bench

#endif
