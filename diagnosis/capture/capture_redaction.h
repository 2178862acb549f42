#ifndef ARBORIST_DIAGNOSIS_CAPTURE_CAPTURE_REDACTION_H
#define ARBORIST_DIAGNOSIS_CAPTURE_CAPTURE_REDACTION_H

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "arborist/frame/rule_set_summary.h"
#include "diagnosis/bundle/bundle.h"
#include "diagnosis/capture/captured_files.h"
#include "diagnosis/problem.h"
#include "diagnosis/redaction/redaction_file.h"
#include "diagnosis/redaction/redaction_report.h"

namespace diagnosis {

/// The redaction of one capture. Without a Redaction it changes nothing.
class CaptureRedaction {
public:
    CaptureRedaction(const Redaction* redaction, CapturedFiles& files) : mRedaction(redaction), mFiles(files) {}

    /// True if members of the event log are replaced: the log is written anew, and the derived database is left out.
    bool TouchesLog() const { return mRedaction != nullptr && !mRedaction->log.empty(); }
    /// Writes the event log at `plain`, which stays outside of the capture, to `target`.
    std::optional<Failure> WriteLog(const std::string& plain, const std::string& target);
    void LeaveDerivedDatabaseOut(const std::string& path);

    /// Replaces the content of node files. Call it when all files are copied: a folder may have them, too. `nameOf` gives
    /// their names in the capture.
    std::optional<Failure> ReplaceNodeFiles(const std::vector<std::string>& paths,
        const std::function<std::optional<std::string>(const std::string& path)>& nameOf);
    void ReplaceKeys(Bundle& bundle);

    /// What was done, and which rules of the bundle's own rule set read it. Call it last; nothing without a Redaction.
    std::optional<RedactionReport> Finish(const Bundle& own, const RuleSetSummary& ruleSet);

private:
    const Redaction* mRedaction;
    CapturedFiles& mFiles;
    RedactionReport mReport;
};

} // namespace diagnosis

#endif
