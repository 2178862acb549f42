// Replaces the fuzzer: passes every file of the folders in its arguments to the target once.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "fuzz/fuzz_support.h"

namespace {

std::size_t Replay(const std::filesystem::path& folder)
{
    std::size_t seeds = 0;
    for (const auto& seed : std::filesystem::directory_iterator(folder)) {
        std::cout << "replay " << seed.path().filename().string() << std::endl;
        std::ifstream file(seed.path(), std::ios::binary);
        const std::string input((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
        ++seeds;
    }
    return seeds;
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t seeds = 0;
    for (int folder = 1; folder < argc; ++folder) {
        seeds += Replay(argv[folder]);
    }
    std::cout << seeds << " seeds" << std::endl;
    return seeds == 0 ? 1 : 0;
}
