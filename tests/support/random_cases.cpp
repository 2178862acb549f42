#include "tests/support/random_cases.h"

#include <cstdlib>

namespace {

std::uint32_t NumberFromEnvironment(const char* name, std::uint32_t otherwise)
{
    const char* const text = std::getenv(name);
    return text == nullptr ? otherwise : static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

} // namespace

RandomCases::RandomCases(int ordinaryNumber)
    : mCount(static_cast<int>(NumberFromEnvironment("ARBORIST_CASES", static_cast<std::uint32_t>(ordinaryNumber)))),
      mSeed(NumberFromEnvironment("ARBORIST_SEED", 20240519)), mEngine(mSeed)
{
}

std::size_t RandomCases::Below(std::size_t end)
{
    return static_cast<std::size_t>(mEngine()) % end; // the distributions of the library differ between systems
}

std::string RandomCases::Join(const std::vector<std::string>& pieces, std::size_t most)
{
    std::string text;
    for (std::size_t left = Below(most + 1); left > 0; --left) {
        text += OneOf(pieces);
    }
    return text;
}

std::string RandomCases::Text(std::string_view characters, std::size_t most)
{
    std::string text;
    for (std::size_t left = Below(most + 1); left > 0; --left) {
        text += characters[Below(characters.size())];
    }
    return text;
}
