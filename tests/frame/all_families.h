#ifndef ARBORIST_TESTS_FRAME_ALL_FAMILIES_H
#define ARBORIST_TESTS_FRAME_ALL_FAMILIES_H

#include <cstdint>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/code_runner_stub.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

struct DetectInfo;

/// A device and a rule set with a rule of each family, which all fire, and one that doesn't: an alarm rule whose event
/// has a repair, derived tables, a database in an archive, a node file and a code rule. The tree "T" joins them by OR,
/// and "U" has no fault.
class AllFamilies : public testing::Test {
protected:
    static constexpr std::int64_t NOW = 1700000000;

    AllFamilies();
    ~AllFamilies() override;

    /// Writes the rule file again, with `mEndless` in place of the statement on the derived table if it isn't empty.
    void WriteRules() const;

    std::string mEndless;
    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::shared_ptr<CodeRunnerStub> mRunner = std::make_shared<CodeRunnerStub>();
    std::shared_ptr<DetectInfo> mInfo;
};

#endif
