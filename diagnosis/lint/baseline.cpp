#include "diagnosis/lint/baseline.h"

#include <charconv>
#include <filesystem>
#include <fstream>

#include "diagnosis/text/printable.h"

namespace diagnosis::lint {

namespace {

namespace fs = std::filesystem;

constexpr char HEADING[] = "# Findings that arborist lint does not tell again: check, file, element, number.\n";

// The line of a finding without the number: control characters, tabs among them, are written as "\xNN".
std::string KeyOf(const Finding& finding, const std::string& baselinePath)
{
    std::error_code error;
    const fs::path folder = fs::absolute(baselinePath, error).parent_path();
    const fs::path file = fs::absolute(finding.file, error).lexically_relative(folder);
    return std::string(finding.check->id) + "\t" + Printable(file.generic_string()) + "\t" + Printable(finding.element);
}

} // namespace

std::optional<Baseline> Baseline::Read(const std::string& path, std::string& problem)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        problem = path + ": it can't be read";
        return std::nullopt;
    }
    Baseline baseline;
    baseline.mPath = path;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (line.empty() || line.front() == '#') {
            continue;
        }
        const std::size_t tab = line.rfind('\t');
        std::size_t count = 0;
        const char* const end = line.data() + line.size();
        if (tab == std::string::npos || std::from_chars(line.data() + tab + 1, end, count).ptr != end) {
            problem = path + ":" + std::to_string(number) + ": is not check, file, element and number";
            return std::nullopt;
        }
        baseline.mKnown[line.substr(0, tab)] += count;
    }
    return baseline;
}

std::string Baseline::TextOf(const std::vector<Finding>& findings, const std::string& path)
{
    std::map<std::string, std::size_t> counts;
    for (const Finding& finding : findings) {
        ++counts[KeyOf(finding, path)];
    }
    std::string text = HEADING;
    for (const auto& [key, count] : counts) {
        text += key + "\t" + std::to_string(count) + "\n";
    }
    return text;
}

std::size_t Baseline::Filter(std::vector<Finding>& findings)
{
    return std::erase_if(findings, [this](const Finding& finding) {
        const auto known = mKnown.find(KeyOf(finding, mPath));
        if (known == mKnown.end() || known->second == 0) {
            return false;
        }
        --known->second;
        return true;
    });
}

} // namespace diagnosis::lint
