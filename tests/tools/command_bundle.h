#ifndef ARBORIST_TESTS_TOOLS_COMMAND_BUNDLE_H
#define ARBORIST_TESTS_TOOLS_COMMAND_BUNDLE_H

#include <string>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

/// Runs the real command with these arguments.
ProcessResult RunArborist(std::vector<std::string> arguments, const ProcessSetup& setup = {});

/// A bundle.json with the two required keys, the tag "Tag", and `more` members (", \"now\": 5").
std::string BundleJson(const std::string& more = "");

/// Writes a bundle whose one tree "T" has the basic event "HOT": true when the node file "temperature" in the bundle
/// holds more than 70. It has a description, two suggestions and a repair with an operation. The file says 80.
void WriteHotBundle(const TempDir& dir, const std::string& name, const std::string& json = BundleJson());

/// Writes a bundle whose tree "T" has one basic event for each of `infos` ("C1", "C2", ...), decided by a code rule
/// with that user-defined text.
void WriteCodeBundle(const TempDir& dir, const std::string& name, const std::vector<std::string>& infos,
    const std::string& json = BundleJson());

#endif
