#ifndef ARBORIST_DIAGNOSIS_RESULTS_VALUE_TEXT_H
#define ARBORIST_DIAGNOSIS_RESULTS_VALUE_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>

/// Values of evidence in lines for people. They come from foreign files: control characters are written as "\xNN", and
/// long texts are truncated.
namespace diagnosis::value_text {

constexpr std::size_t LONGEST_VALUE = 60;
constexpr std::size_t LONGEST_SQL = 400;

/// A text of at most `longest` bytes, with its size behind it if it was longer.
std::string Cut(const std::string& text, std::size_t longest = LONGEST_VALUE);
/// In quotes, without the blanks and line ends at the end that node files have.
std::string Quoted(const std::string& text);
/// Numbers and words as they are, everything else in quotes.
std::string Value(const std::string& text);
/// A value that is compared as a parameter of `type`: keeps the line end of a text, where it matters.
std::string ComparedValue(const std::string& value, const std::string& type);
/// The sign for a comparison word; an unknown word is unchanged.
std::string Sign(const std::string& word);
/// " (one, other)", without empty ones.
std::string InParentheses(const std::string& one, const std::string& other = "");
/// "1 row", "2 rows".
std::string Number(std::uint64_t number, const std::string& one, const std::string& several);

} // namespace diagnosis::value_text

#endif
