#ifndef ARBORIST_DIAGNOSIS_PROCESS_ENVIRONMENT_H
#define ARBORIST_DIAGNOSIS_PROCESS_ENVIRONMENT_H

#include <string>

namespace diagnosis {

/// Sets a variable of the environment of this process.
void SetVariable(const char* name, const std::string& value);
void RemoveVariable(const char* name);

/// Sets TZ to a zone of IsTimeZone and lets the C library read it.
void SetZoneVariable(const std::string& zone);
void RemoveZoneVariable();

/// The folder for temporary files: that of $TMPDIR, otherwise the system's.
std::string TemporaryFolder();

} // namespace diagnosis

#endif
