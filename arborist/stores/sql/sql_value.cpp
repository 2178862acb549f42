#include "arborist/stores/sql/sql_value.h"

#include <charconv>
#include <cstdlib>
#include <limits>
#include <utility>

#include "arborist/stores/sql/sql_text.h"
#include "arborist/stores/sql/sql_value_number.h"

namespace FT::sql {
namespace {

constexpr std::size_t LONGEST_NUMBER = 127;
// Room for the sign, every digit that a double can have before the point, the point and eight digits.
constexpr std::size_t LONGEST_DOUBLE = std::numeric_limits<double>::max_exponent10 + 16;

} // namespace

void SqlValue::SetValue(std::string text, FieldType valueType)
{
    isNull = text.empty();
    value = std::move(text);
    type = valueType;
}

void SqlValue::SetNull()
{
    isNull = true;
    value.clear();
}

void SqlValue::SetString(std::string text)
{
    isNull = false;
    value = std::move(text);
}

void SqlValue::SetInteger(long long number)
{
    SetString(IntegerToStr(number));
}

void SqlValue::SetDouble(double number)
{
    char text[LONGEST_DOUBLE];
    const auto [end, error] = std::to_chars(text, text + sizeof(text), number, std::chars_format::fixed, 8);
    std::string written(text, end);
    if (written.size() > LONGEST_NUMBER) {
        written.resize(LONGEST_NUMBER);
    }
    SetString(std::move(written));
}

long long SqlValue::AsInteger() const
{
    return std::strtoll(value.c_str(), nullptr, 10);
}

double SqlValue::AsDouble() const
{
    return ReadDouble(value);
}

std::string SqlValue::ToSql(FieldType fieldType) const
{
    if (isNull) {
        return "null";
    }
    return fieldType == TypeText ? "'" + QuoteStr(value) + "'" : value;
}

} // namespace FT::sql
