#ifndef ARBORIST_TESTS_TOOLS_COMMAND_BUNDLE_H
#define ARBORIST_TESTS_TOOLS_COMMAND_BUNDLE_H

#include <map>
#include <string>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

/// Runs the real command with these arguments. The test fails if an input changes; see InputGuard.
ProcessResult RunArborist(std::vector<std::string> arguments, const ProcessSetup& setup = {});

/// The same with standard output on a terminal.
ProcessResult RunArboristOnTerminal(std::vector<std::string> arguments, const ProcessSetup& setup = {});

/// Runs a script of the shell, which runs the command, under the same guard.
ProcessResult RunScript(const std::string& script, const ProcessSetup& setup = {});

/// Lines of results with 0 for every value of "seconds", the one that equal inputs don't share.
std::string WithoutSeconds(const std::string& lines);

/// The same for bundles that are diagnosed as of the real time: with an empty "now", too.
std::string WithoutTimes(const std::string& lines);

/// A bundle.json with the two required keys, the tag "Tag", and `more` members (", \"now\": 5").
std::string BundleJson(const std::string& more = "");

/// Writes a bundle whose one tree "T" has the basic event "HOT": true if the node file "temperature" in the bundle has
/// more than 70. It has a description, two suggestions and a repair with an operation. The file says 80.
void WriteHotBundle(const TempDir& dir, const std::string& name, const std::string& json = BundleJson());

/// Writes a bundle whose tree "T" has one basic event for each of `infos` ("C1", "C2", ...), decided by a code rule
/// with that user-defined text.
void WriteCodeBundle(const TempDir& dir, const std::string& name, const std::vector<std::string>& infos,
    const std::string& json = BundleJson());

/// Writes a bundle whose tree "T" has the basic event "DROPS": true if the event log, which the caller adds, has at
/// least three events 1001 within 7 days before 2024-05-20 12:00:00 in UTC. It has a repair "R".
void WriteDropsBundle(const TempDir& dir, const std::string& name);

/// Replaces the rules of such a bundle: "DROPS" is true if the column "n" of `statement`, which can read the events 1001
/// in the derived table DROPS_TABLE, is at least three within 30 days. There is no repair.
void WriteDropsTableRules(const TempDir& dir, const std::string& name, const std::string& statement);

/// Path of the event log in a bundle.
inline constexpr char LOG_OF_BUNDLE[] = "/programdata/Comms/Lumbra/workDir/0/log.db";

/// Prepares a runnable copy of the laptop example, which has rules of all families and external databases, in `name`.
void PrepareLaptop(const std::string& name);

/// The program that answers the code rules of the laptop example.
std::string LaptopCodeRunner();

/// Every path below `folder` with its kind, time of change and content.
std::map<std::string, std::string> StateOf(const std::string& folder);

#endif
