#include "diagnosis/text/near_match.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace diagnosis {

namespace {

// No key or command is longer. Words of foreign files may be, and the time for a distance is the product of the
// lengths.
constexpr std::size_t LONGEST_WORD = 64;

std::string LowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
        [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

// Edit distance: how many letters to insert, delete or replace to change one text into the other.
std::size_t Distance(const std::string& one, const std::string& other)
{
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t replaced = diagonal + (one[i] == other[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row[other.size()];
}

} // namespace

std::string NearMatch(const std::string& word, const std::vector<std::string>& candidates)
{
    if (word.size() > LONGEST_WORD) {
        return "";
    }
    std::string nearest;
    std::size_t nearestDistance = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t distance = Distance(LowerCase(word), LowerCase(candidate));
        if (distance < nearestDistance && distance < candidate.size()) {
            nearest = candidate;
            nearestDistance = distance;
        }
    }
    return nearest;
}

std::string DidYouMean(const std::string& word, const std::vector<std::string>& candidates)
{
    const std::string nearest = NearMatch(word, candidates);
    return nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?";
}

} // namespace diagnosis
