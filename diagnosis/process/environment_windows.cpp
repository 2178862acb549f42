#include "diagnosis/process/environment.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>

namespace diagnosis {

void SetVariable(const char* name, const std::string& value)
{
    _putenv_s(name, value.c_str());
}

void RemoveVariable(const char* name)
{
    _putenv_s(name, ""); // an empty variable is none
}

// The engine takes TZ only where the zone is written out; see docs/windows.md.
void SetZoneVariable(const std::string& zone)
{
    SetVariable("TZ", zone == "UTC" || zone == "GMT" ? zone + "0" : zone);
    _tzset();
}

void RemoveZoneVariable()
{
    RemoveVariable("TZ");
    _tzset();
}

std::string TemporaryFolder()
{
    const char* given = std::getenv("TMPDIR");
    if (given != nullptr && *given != '\0') {
        return given;
    }
    std::error_code error;
    return std::filesystem::temp_directory_path(error).generic_string();
}

} // namespace diagnosis
