#include "diagnosis/scratch/private_folder.h"

#include <filesystem>
#include <random>

namespace diagnosis {

std::error_code MakePrivateFolder(const std::string& folder, std::string& path)
{
    constexpr char LETTERS[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    constexpr std::size_t COUNT = sizeof LETTERS - 1;
    std::random_device random;
    std::error_code error;
    do {
        path = folder + "/arborist-";
        for (int letters = 0; letters < 6; ++letters) {
            path += LETTERS[random() % COUNT];
        }
    } while (!std::filesystem::create_directory(path, error) && !error); // false without an error: it was there
    return error;
}

} // namespace diagnosis
