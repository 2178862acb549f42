#include "diagnosis/lint/baseline.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>

#include "diagnosis/scratch/new_file.h"
#include "diagnosis/text/printable.h"

namespace diagnosis::lint {

namespace {

namespace fs = std::filesystem;

constexpr char HEADING[] = "# Known findings, which arborist lint does not report: check, file, element, number.\n";

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
        if (!baseline.ReadLine(line)) {
            problem = path + ":" + std::to_string(number) + ": is not check, file, element and number";
            return std::nullopt;
        }
    }
    if (file.bad()) { // a folder, for one
        problem = path + ": it can't be read";
        return std::nullopt;
    }
    return baseline;
}

bool Baseline::ReadLine(const std::string& line)
{
    if (line.empty()) {
        return true;
    }
    if (line.front() == '#') {
        if (!mPassages.back().keys.empty()) {
            mPassages.push_back({});
        }
        mPassages.back().comments += line + "\n";
        return true;
    }
    const std::size_t tab = line.rfind('\t');
    std::size_t count = 0;
    const char* const end = line.data() + line.size();
    if (tab == std::string::npos || std::from_chars(line.data() + tab + 1, end, count).ptr != end) {
        return false;
    }
    mPassages.back().keys.push_back(line.substr(0, tab));
    mKnown[mPassages.back().keys.back()] += count;
    return true;
}

std::optional<std::string> Baseline::Write(const std::vector<Finding>& findings, const std::string& path)
{
    Baseline known;
    std::error_code error;
    if (fs::exists(path, error)) {
        std::string problem;
        auto read = Read(path, problem);
        if (!read) {
            return problem;
        }
        known = std::move(*read);
    }
    std::map<std::string, std::size_t> counts;
    for (const Finding& finding : findings) {
        ++counts[KeyOf(finding, path)];
    }
    return WriteNewFile(path, known.Rewritten(counts));
}

std::string Baseline::Rewritten(const std::map<std::string, std::size_t>& counts) const
{
    // Lines are sorted, and a comment is above the first of its lines that remain.
    std::map<std::string, std::string> commentsAt;
    for (std::size_t passage = 1; passage < mPassages.size(); ++passage) {
        const auto& keys = mPassages[passage].keys;
        const auto isThere = [&counts](const std::string& key) { return counts.count(key) != 0; };
        const auto first = std::find_if(keys.begin(), keys.end(), isThere);
        if (first != keys.end()) {
            commentsAt[*first] += mPassages[passage].comments;
        }
    }
    std::string text = mPassages.front().comments.empty() ? HEADING : mPassages.front().comments;
    for (const auto& [key, count] : counts) {
        const auto comments = commentsAt.find(key);
        text += (comments == commentsAt.end() ? "" : comments->second) + key + "\t" + std::to_string(count) + "\n";
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
