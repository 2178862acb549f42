#include "arborist/stores/sql/sql_text.h"

#include <cctype>
#include <cstdarg>

#include <sqlite3.h>

namespace FT::sql {
namespace {

bool IsSpace(char character)
{
    return std::isspace(static_cast<unsigned char>(character)) != 0;
}

} // namespace

std::string IntToStr(int value)
{
    return std::to_string(value);
}

std::string IntegerToStr(long long value)
{
    return std::to_string(value);
}

std::string QuoteStr(const std::string& text)
{
    std::string quoted;
    quoted.reserve(text.size());
    for (const char character : text) {
        quoted += character;
        if (character == '\'') {
            quoted += character;
        }
    }
    return quoted;
}

void TrimLeft(std::string& text)
{
    std::size_t blanks = 0;
    while (blanks < text.size() && IsSpace(text[blanks])) {
        ++blanks;
    }
    text.erase(0, blanks);
}

void TrimRight(std::string& text)
{
    while (!text.empty() && IsSpace(text.back())) {
        text.pop_back();
    }
}

void Trim(std::string& text)
{
    TrimRight(text);
    TrimLeft(text);
}

std::string Trim(const std::string& text)
{
    std::string copy = text;
    Trim(copy);
    return copy;
}

char* Sqlite3Snprintf(int size, char* buffer, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    char* const result = sqlite3_vsnprintf(size, buffer, format, args);
    va_end(args);
    return result;
}

} // namespace FT::sql
