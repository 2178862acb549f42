#ifndef ARBORIST_TESTS_SUPPORT_EXAMPLE_RUN_H
#define ARBORIST_TESTS_SUPPORT_EXAMPLE_RUN_H

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "arborist/arborist.h"
#include "tests/support/example_page.h"
#include "tests/support/decimal_comma.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

/// Records what the outcomes of examples compare with.
class ExampleObserver : public DetectionObserver {
public:
    void OnEventDecided(Evidence::Event event) override;
    void OnTreeFolded(std::vector<Evidence::FoldedEvent> events) override;

    std::string formulaResult;
    std::string sql;
    std::string reason;
    /// The last status of each event.
    std::map<std::string, Evidence::EventState> statuses;
};

/// Runs one example of a page: writes its input into a folder, runs one detection and checks its outcomes. The key
/// "rule set" names a folder whose two files, with the tag "Laptop", replace the trees and rules of the example; of
/// several folders the first that has a file counts.
class ExampleRun {
public:
    explicit ExampleRun(const PageExample& example);

    /// Describes why an outcome is not met; empty if it is. An outcome of unknown form is not met.
    std::string FaultOf(const std::string& outcome);

private:
    void CopyRuleSet(const std::vector<std::string>& folders) const;
    void Detect();
    void WriteTreeFile() const;
    void WriteRuleFile() const;
    void WriteDevice() const;
    std::shared_ptr<DetectInfo> MakeInfo() const;
    std::string Query(const std::string& call, const std::string& argument, bool before);
    std::string RootCauses() const;
    std::ptrdiff_t CountLines(const std::string& text) const;
    std::string DescriptionOrOperation(const std::string& what, const std::string& eventId) const;

    const PageExample& mExample;
    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::optional<DecimalComma> mHostLocale;
    std::shared_ptr<DetectInfo> mInfo;
    std::shared_ptr<ExampleObserver> mObserver = std::make_shared<ExampleObserver>();
    std::unique_ptr<Arborist> mEngine;
    std::vector<std::shared_ptr<FaultTreeResult>> mResults;
    /// The message of the exception that the detection threw; empty if there was none.
    std::string mException;
};

/// Keys that ExampleRun knows.
const std::vector<std::string>& KnownKeys();

#endif
