#include "diagnosis/process/environment.h"

#include <cstdlib>
#include <ctime>

namespace diagnosis {

void SetVariable(const char* name, const std::string& value)
{
    setenv(name, value.c_str(), 1);
}

void RemoveVariable(const char* name)
{
    unsetenv(name);
}

void SetZoneVariable(const std::string& zone)
{
    SetVariable("TZ", zone);
    tzset();
}

void RemoveZoneVariable()
{
    RemoveVariable("TZ");
    tzset();
}

std::string TemporaryFolder()
{
    const char* given = std::getenv("TMPDIR");
    return given == nullptr || *given == '\0' ? "/tmp" : given;
}

} // namespace diagnosis
