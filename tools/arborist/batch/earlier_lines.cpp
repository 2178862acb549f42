#include "tools/arborist/batch/earlier_lines.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "diagnosis/results_db/result_line.h"
#include "diagnosis/text/bounded_lines.h"

namespace diagnosis::command {

namespace {

using results_db::ResultLine;

/// The bundles of a list by their names, each with the numbers that have no line yet, the first last.
class OpenBundles {
public:
    explicit OpenBundles(const std::vector<std::string>& bundles)
    {
        for (std::size_t number = bundles.size(); number-- > 0;) {
            mNumbers[bundles[number]].push_back(number);
        }
    }

    std::optional<std::size_t> Take(const std::string& name)
    {
        const auto entry = mNumbers.find(name);
        if (entry == mNumbers.end() || entry->second.empty()) {
            return std::nullopt;
        }
        const std::size_t number = entry->second.back();
        entry->second.pop_back();
        return number;
    }

private:
    std::unordered_map<std::string, std::vector<std::size_t>> mNumbers;
};

BundleAnswer AnswerOf(const ResultLine& line)
{
    BundleAnswer answer;
    if (!line.ok) {
        answer.code = line.error.code;
        const auto code = FailureCodeOf(answer.code);
        answer.status = code ? StatusOf(*code) : ExitStatus::INPUT;
    }
    for (const auto& tree : line.trees) {
        const auto word = std::find_if(VERDICTS.begin(), VERDICTS.end(),
            [&tree](Evidence::TreeVerdict::Word verdict) { return tree->verdict == Evidence::TreeVerdictText(verdict); });
        if (word != VERDICTS.end()) {
            ++answer.verdicts[static_cast<std::size_t>(word - VERDICTS.begin())];
        }
    }
    answer.outcome = OutcomeOf(answer.verdicts);
    return answer;
}

bool IsBlank(std::string_view line)
{
    return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

// The length of the byte order mark that some programs put in front of a file.
std::size_t MarkLength(std::string_view firstLine)
{
    static constexpr std::string_view MARK = "\xEF\xBB\xBF";
    return firstLine.starts_with(MARK) ? MARK.size() : 0;
}

} // namespace

std::optional<std::string> EarlierLines::Read(const std::string& path, const std::vector<std::string>& bundles)
{
    std::error_code error;
    const auto type = std::filesystem::status(path, error).type();
    if (type == std::filesystem::file_type::not_found) {
        return std::nullopt;
    }
    if (type == std::filesystem::file_type::directory) {
        return path + ": can't be read: is a folder";
    }
    // A pipe would be empty by the time when a line is taken; opening one could wait for ever.
    if (!error && type != std::filesystem::file_type::regular) {
        return path + ": can't be read: is no plain file";
    }
    mFile.open(path, std::ios::binary);
    if (!mFile) {
        return path + ": can't be read: " + std::strerror(errno);
    }
    OpenBundles open(bundles);
    BoundedLines lines(mFile);
    while (lines.Next() && lines.HasEnd()) { // a last line without end was torn
        const std::size_t mark = lines.Number() == 1 ? MarkLength(lines.Line()) : 0;
        const std::string_view line = lines.Line().substr(mark);
        if (IsBlank(line) && !lines.IsTooLong()) {
            continue;
        }
        std::string problem = lines.IsTooLong() ? LINE_TOO_LONG : "";
        const auto result = lines.IsTooLong() ? std::nullopt : results_db::ReadResultLine(line, false, problem);
        if (!result) {
            return path + ":" + std::to_string(lines.Number()) + ": " + problem;
        }
        const auto bundle = result->error.retry ? std::nullopt : open.Take(result->bundle);
        if (bundle) {
            mLines[*bundle] = {lines.Start() + mark, line.size(), command::AnswerOf(*result)};
        }
    }
    return mFile.bad() ? std::optional(path + ": can't be read to its end: " + std::strerror(errno)) : std::nullopt;
}

bool EarlierLines::AnswerOf(std::size_t bundle, std::optional<BundleAnswer>& answer)
{
    const auto entry = mLines.find(bundle);
    if (entry == mLines.end()) {
        answer = std::nullopt;
        return true;
    }
    answer = entry->second.answer;
    answer->line.resize(entry->second.length);
    mFile.clear();
    mFile.seekg(static_cast<std::streamoff>(entry->second.start));
    return static_cast<bool>(mFile.read(answer->line.data(), static_cast<std::streamsize>(answer->line.size())));
}

} // namespace diagnosis::command
