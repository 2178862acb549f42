#include "diagnosis/log_db/import_log.h"

#include "diagnosis/scratch/new_file.h"
#include "diagnosis/text/input_lines.h"

namespace diagnosis {

namespace {

constexpr std::size_t MOST_FAILURES = 20;

std::vector<Failure> ImportLines(InputLines& lines, const std::string& name, EventLogWriter& writer)
{
    std::vector<Failure> failures;
    while (lines.Next()) {
        std::string problem;
        const auto event = lines.LineProblem() == nullptr ? ParseEventLine(lines.Line(), problem) : std::nullopt;
        if (!event) {
            failures.push_back(
                {FailureCode::BAD_LINE, lines.Place() + ": " + (lines.LineProblem() == nullptr ? problem : lines.LineProblem())});
            if (failures.size() == MOST_FAILURES) {
                failures.push_back({FailureCode::BAD_LINE, name + ": given up after " + std::to_string(MOST_FAILURES)
                    + " lines that can't be used"});
                break;
            }
        } else if (failures.empty()) {
            if (const auto failure = writer.Add(*event)) {
                return {*failure};
            }
        }
    }
    if (!lines.Problem().empty()) {
        failures.push_back({FailureCode::NO_EVENTS, lines.Problem()});
    }
    return failures;
}

} // namespace

std::vector<Failure> ImportEventLog(const std::string& file, const std::string& target)
{
    InputLines lines(file);
    if (!lines.Problem().empty()) {
        return {{FailureCode::NO_EVENTS, lines.Problem()}};
    }
    if (file != "-" && IsOneFile(file, target)) {
        return {{FailureCode::LOG_NOT_WRITTEN, target + ": is the file that is read"}};
    }
    EventLogWriter writer;
    if (const auto failure = writer.Open(target)) {
        return {*failure};
    }
    auto failures = ImportLines(lines, file, writer);
    if (failures.empty()) {
        if (const auto failure = writer.Finish()) {
            failures.push_back(*failure);
        }
    }
    return failures;
}

} // namespace diagnosis
