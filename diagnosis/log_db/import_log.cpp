#include "diagnosis/log_db/import_log.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "diagnosis/scratch/new_file.h"

namespace diagnosis {

namespace {

constexpr std::size_t MOST_FAILURES = 20;

std::vector<Failure> ImportLines(std::istream& lines, const std::string& name, EventLogWriter& writer)
{
    std::vector<Failure> failures;
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        if (line.find_first_not_of(" \t\r") == std::string::npos) {
            continue;
        }
        std::string problem;
        const auto event = ParseEventLine(line, problem);
        if (!event) {
            failures.push_back({"bad_line", name + ":" + std::to_string(number) + ": " + problem});
            if (failures.size() == MOST_FAILURES) {
                failures.push_back({"bad_line", name + ": given up after " + std::to_string(MOST_FAILURES)
                    + " lines that can't be used"});
                break;
            }
        } else if (failures.empty()) {
            if (const auto failure = writer.Add(*event)) {
                return {*failure};
            }
        }
    }
    if (lines.bad() || (&lines == &std::cin && std::ferror(stdin) != 0)) {
        failures.push_back({"no_events", name + ": can't be read"});
    }
    return failures;
}

} // namespace

std::vector<Failure> ImportEventLog(const std::string& file, const std::string& target)
{
    std::error_code error;
    std::ifstream opened;
    const bool isStandardInput = file == "-";
    if (!isStandardInput) {
        opened.open(file, std::ios::binary);
        if (!opened || std::filesystem::is_directory(file, error)) {
            return {{"no_events", file + ": can't be read"}};
        }
    }
    if (!isStandardInput && IsOneFile(file, target)) {
        return {{"log_not_written", target + ": is the file that is read"}};
    }
    // No check here: if the folder can't be created, writing the file fails and reports it.
    std::filesystem::create_directories(std::filesystem::path(target).parent_path(), error);
    EventLogWriter writer;
    if (const auto failure = writer.Open(target)) {
        return {*failure};
    }
    auto failures = ImportLines(isStandardInput ? std::cin : opened, file, writer);
    if (failures.empty()) {
        if (const auto failure = writer.Finish()) {
            failures.push_back(*failure);
        }
    }
    return failures;
}

} // namespace diagnosis
