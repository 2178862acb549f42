#ifndef ARBORIST_DIAGNOSIS_LINT_BASE_CHECK_H
#define ARBORIST_DIAGNOSIS_LINT_BASE_CHECK_H

#include <optional>
#include <string_view>

namespace diagnosis::lint {

class Report;
struct Subject;

enum class Severity {
    INFO, ///< dead or redundant
    WARNING, ///< works differently from how it reads
    ERROR, ///< cannot work, crashes, hangs or loses its time limit
};

/// "info", "warning", "error".
const char* SeverityWord(Severity severity);
std::optional<Severity> SeverityOf(std::string_view word);

/// What a check needs in addition to the two files.
enum class CheckClass {
    STATIC, ///< nothing
    SQL, ///< SQLite: prepares statements on an empty schema
    DEVICE, ///< profiles of devices
    HOST, ///< an event log or other data of a device
};

/// One check of the catalogue. Id, severity and meaning don't change once shipped.
struct Check {
    /// "A303".
    const char* id;
    Severity severity;
    CheckClass kind;
    /// A few words, "rule name that no rule has".
    const char* title;
    /// What the check looks for, in a sentence or two.
    const char* finds;
    /// The effect in the engine: the end of a sentence that begins "at run time".
    const char* atRunTime;
    /// Reports the findings in one rule set. Takes at most time proportional to its size.
    void (*run)(const Subject& subject, Report& report);
};

} // namespace diagnosis::lint

#endif
