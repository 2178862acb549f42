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

/// What a check needs beside the two files.
enum class CheckClass {
    STATIC, ///< nothing
    SQL, ///< SQLite: prepares statements on an empty schema
    DEVICE, ///< profiles of devices
    HOST, ///< an event log or other data of a device
};

/// One check of the catalogue. Id, severity and meaning stay as they are once shipped.
struct Check {
    /// "A303".
    const char* id;
    Severity severity;
    CheckClass kind;
    /// A few words, "rule name that no rule has".
    const char* title;
    /// What the check looks for, in a sentence or two.
    const char* finds;
    /// What the engine makes of it: the sentence that follows "at run time".
    const char* atRunTime;
    /// Reports what it finds in one rule set. Its work grows no faster than the rule set.
    void (*run)(const Subject& subject, Report& report);
};

} // namespace diagnosis::lint

#endif
