#ifndef ARBORIST_FUZZ_FUZZ_DEVICE_H
#define ARBORIST_FUZZ_FUZZ_DEVICE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "fuzz/fuzz_support.h"

/// A device in a folder, with a rule set of the tag "t" whose rules are of all four families, for targets that get one
/// file of the device as input. Its moment is 2023-11-14.
class FuzzDevice {
public:
    FuzzDevice();

    const FuzzDir& GetDir() const { return mDir; }

    /// Replaces the rule set's rules; the tree stays. It has the basic events "A" to "H".
    void WriteRules(const std::string& rules) const;
    /// Replaces the event log by these bytes.
    void WriteEventLog(const std::uint8_t* data, std::size_t size) const;
    /// Replaces the event log by one with the rows of `sql`, statements on its three tables.
    void MakeEventLog(const std::string& sql) const;
    /// Replaces the database that the rule set searches, "/data/found.db".
    void WriteFoundDatabase(const std::uint8_t* data, std::size_t size) const;

    /// Detects without and with an observer. Aborts if the answers differ, if a verdict is "fault" without a root cause
    /// or the other way round, or if the event log or a found database was changed.
    void Detect() const;

private:
    FuzzDir mDir;
};

#endif
