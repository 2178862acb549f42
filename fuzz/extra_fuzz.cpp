// Any bytes as the "extra" of logged events, one a line, for alarm rules and for derived tables.

#include <sstream>

#include "fuzz/fuzz_device.h"

namespace {

std::string Hex(const std::string& bytes)
{
    constexpr char DIGITS[] = "0123456789abcdef";
    std::string hex;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        hex += {DIGITS[value / 16], DIGITS[value % 16]};
    }
    return hex;
}

// Each third row is one of an id that is weighed; every fourth `extra` is a blob instead of a text.
std::string RowsOf(const std::string& text)
{
    constexpr int MOST_ROWS = 50;
    std::istringstream lines(text);
    std::string sql;
    std::string extra;
    for (int row = 1; row <= MOST_ROWS && std::getline(lines, extra); ++row) {
        const std::string number = std::to_string(row);
        const std::string id = row % 3 == 0 ? "921000001" : "93100000" + std::to_string(row % 5);
        const std::string value = row % 4 == 0 ? "x'" + Hex(extra) + "'" : "cast(x'" + Hex(extra) + "' as text)";
        sql += "INSERT INTO event_info VALUES (" + number + ", " + id + ", " + value + ", 1);";
        sql += "INSERT INTO event_info_flow VALUES (" + number + ", " + number + ", 16999" +
               std::to_string(10000 + row) + ");";
    }
    return sql;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDevice device;
    device.MakeEventLog(RowsOf(std::string(reinterpret_cast<const char*>(data), size)));
    device.Detect();
    return 0;
}
