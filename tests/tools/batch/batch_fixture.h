#ifndef ARBORIST_TESTS_TOOLS_BATCH_BATCH_FIXTURE_H
#define ARBORIST_TESTS_TOOLS_BATCH_BATCH_FIXTURE_H

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <json/reader.h>
#include <json/value.h>

#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

inline std::vector<std::string> Lines(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// "name" for each line, "name: code" for a bundle that was not diagnosed.
inline std::vector<std::string> Outcomes(const std::string& out)
{
    std::vector<std::string> outcomes;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    for (const std::string& line : Lines(out)) {
        Json::Value report;
        EXPECT_TRUE(reader->parse(line.data(), line.data() + line.size(), &report, nullptr)) << line;
        const std::string code = report["error"]["code"].asString();
        EXPECT_EQ(report["ok"].asBool(), code.empty()) << line;
        outcomes.push_back(report["bundle"].asString() + (code.empty() ? "" : ": " + code));
    }
    return outcomes;
}

/// As many worker processes as a test wants; Windows has none.
#ifdef _WIN32
inline constexpr char SOME_JOBS[] = "1";
#else
inline constexpr char SOME_JOBS[] = "2";
#endif

/// Bundles in the current directory, and their list as the command reads it.
class BatchTest : public testing::Test {
protected:
    // Bundles "b0", "b1" ... with the same rule set; each twentieth has an invalid bundle.json.
    std::vector<std::string> WriteBundles(int count)
    {
        WriteHotBundle(mDir, "b0");
        std::vector<std::string> names;
        for (int i = 0; i < count; ++i) {
            names.push_back("b" + std::to_string(i));
            const bool isBroken = i % 20 == 19;
            mDir.Write(names.back() + "/bundle.json", isBroken ? "{" : BundleJson(R"(, "ruleFileDir": "../b0/rules")"));
            mDir.Write(names.back() + "/temperature", "80\n");
        }
        return names;
    }

    // The list as the command reads it.
    static std::string Joined(const std::vector<std::string>& names, char end = '\n')
    {
        std::string list;
        for (const std::string& name : names) {
            list += name + end;
        }
        return list;
    }

    std::string Script(const std::string& body) const
    {
        const auto path = mDir.Write("runner", "#!/bin/sh\n" + body + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    TempDir mDir;
};

/// The Outcomes of what WriteBundles wrote.
inline std::vector<std::string> ExpectedOutcomes(std::vector<std::string> names)
{
    for (std::size_t i = 19; i < names.size(); i += 20) {
        names[i] += ": bad_json";
    }
    return names;
}

#endif
