#include "tools/arborist/commands/lint_fixes.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <utility>

#include "diagnosis/cases/test_run.h"
#include "diagnosis/scratch/scratch.h"

namespace diagnosis::command {

namespace fs = std::filesystem;

namespace {

bool IsOfRuleSet(const fs::path& file)
{
    const std::string name = file.filename().generic_string();
    for (const std::string end : {"FaultTrees.xml", "FaultTreeRules.xml"}) {
        if (name.size() >= end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0) {
            return true;
        }
    }
    return false;
}

// Copies the rule files of a folder, with the fixes made. False if that can't be done.
bool CopyFixed(const std::string& folder, const std::vector<lint::FileFix>& fixes, const Scratch& copy)
{
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (IsOfRuleSet(entry->path())) {
            fs::copy_file(entry->path(), copy.Path(entry->path().filename().generic_string()), error);
        }
    }
    for (const lint::FileFix& fix : fixes) {
        const std::string path = copy.Path(fs::path(fix.path).filename().generic_string());
        fs::remove(path, error); // a copy of a file that may not be written may not be written either
        std::ofstream file(path, std::ios::binary);
        file << fix.after;
        if (!file.flush()) {
            return false;
        }
    }
    return !error;
}

// Why the fixes of a folder are refused; nothing if they are not.
std::optional<std::string> Refusal(const std::string& folder, const std::vector<lint::FileFix>& fixes,
    std::vector<std::string> tests, std::vector<std::string>& notes)
{
    Scratch copy;
    if (const auto failure = copy.Make()) {
        return failure->message;
    }
    if (!CopyFixed(folder, fixes, copy)) {
        return folder + ": not mended: it can't be copied to be tested";
    }
    cases::NearbyCases near = cases::FindCasesNear(folder);
    tests.insert(tests.begin(), near.files.begin(), near.files.end());
    tests.insert(tests.begin(), folder);
    if (!near.isComplete) {
        notes.push_back(near.folder + ": has too many files to look for tests in all; name those of " + folder + " with --tests");
    }
    const auto other = cases::FirstOtherAnswer(tests, folder, copy.Path());
    return other ? std::optional(folder + ": not mended: a test would answer otherwise: " + *other) : std::nullopt;
}

} // namespace

TestedFixes TestFixes(std::vector<lint::FileFix> fixes, const std::vector<std::string>& tests)
{
    std::map<std::string, std::vector<lint::FileFix>> byFolder;
    for (lint::FileFix& fix : fixes) {
        const std::string folder = fs::path(fix.path).parent_path().generic_string();
        byFolder[folder.empty() ? "." : folder].push_back(std::move(fix));
    }
    TestedFixes tested;
    for (auto& [folder, ofFolder] : byFolder) {
        if (auto refusal = Refusal(folder, ofFolder, tests, tested.notes)) {
            tested.refused.push_back(std::move(*refusal));
            continue;
        }
        for (lint::FileFix& fix : ofFolder) {
            tested.fixes.push_back(std::move(fix));
        }
    }
    return tested;
}

} // namespace diagnosis::command
