#ifndef ARBORIST_STORES_SQL_SQL_TEXT_H
#define ARBORIST_STORES_SQL_SQL_TEXT_H

#include <string>

namespace FT::sql {

/// Decimal text of a number.
std::string IntToStr(int value);
std::string IntegerToStr(long long value);

/// A copy with every single quote doubled; adds no quotes around it and changes no other character.
std::string QuoteStr(const std::string& text);

/// Remove white space at the left, at the right, at both ends, in place. The layer itself calls TrimLeft only; the
/// others, and IntToStr, are kept for the tests.
void TrimLeft(std::string& text);
void TrimRight(std::string& text);
void Trim(std::string& text);
/// The same on a copy.
std::string Trim(const std::string& text);

/// Formats into `buffer`, which has `size` bytes including the final zero, with SQLite's own conversions (%q, %lld).
/// Returns `buffer`.
char* Sqlite3Snprintf(int size, char* buffer, const char* format, ...);

} // namespace FT::sql

#endif
