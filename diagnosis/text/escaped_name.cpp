#include "diagnosis/text/escaped_name.h"

#include <cstdio>

namespace diagnosis {

namespace {

bool IsDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

bool IsLetter(char letter)
{
    return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
}

// The value of a hexadecimal digit as EscapedName writes it; -1 for another letter.
int HexadecimalValue(char letter)
{
    return IsDigit(letter) ? letter - '0' : letter >= 'A' && letter <= 'F' ? letter - 'A' + 10 : -1;
}

} // namespace

std::string EscapedName(const std::string& id)
{
    if (id.empty()) {
        return "_x_";
    }
    std::string name;
    for (std::size_t i = 0; i < id.size(); ++i) {
        const bool isPlainLine = id[i] == '_' && !(i + 1 < id.size() && id[i + 1] == 'x');
        if (IsLetter(id[i]) || isPlainLine || (IsDigit(id[i]) && i > 0)) {
            name += id[i];
            continue;
        }
        char escape[5];
        std::snprintf(escape, sizeof escape, "_x%02X", static_cast<unsigned int>(static_cast<unsigned char>(id[i])));
        name += escape;
    }
    return name;
}

std::string UnescapedName(const std::string& name)
{
    std::string id;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool isEscape = name[i] == '_' && i + 3 < name.size() && name[i + 1] == 'x'
            && HexadecimalValue(name[i + 2]) >= 0 && HexadecimalValue(name[i + 3]) >= 0;
        id += isEscape ? static_cast<char>(HexadecimalValue(name[i + 2]) * 16 + HexadecimalValue(name[i + 3])) : name[i];
        i += isEscape ? 3 : 0;
    }
    id = name == "_x_" ? "" : id;
    return EscapedName(id) == name ? id : name;
}

} // namespace diagnosis
