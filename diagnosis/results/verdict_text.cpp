#include "diagnosis/results/verdict_text.h"

#include <algorithm>
#include <utility>

#include "diagnosis/text/printable.h"

namespace diagnosis {

namespace {

using Evidence::Check;
using Word = Evidence::TreeVerdict::Word;

void Append(std::string& list, std::size_t count, const std::string& word)
{
    if (count != 0) {
        list += (list.empty() ? "" : ", ") + std::to_string(count) + " " + word;
    }
}

// "2 no_data, 1 error" of these words.
std::string CountsText(const Evidence::CheckCounts& checks, const std::vector<Check>& words)
{
    std::string text;
    for (const Check check : words) {
        Append(text, checks.Of(check), Evidence::CheckText(check));
    }
    return text;
}

std::string ChecksText(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " check" : " checks");
}

std::string OpenCountText(const Evidence::CheckCounts& checks)
{
    return std::to_string(checks.Open()) + " of " + ChecksText(checks.Total()) + " open ("
        + CountsText(checks, {Check::NOT_CHECKED, Check::DATA_MISSING, Check::RULE_UNUSABLE}) + ")";
}

// What an undecided tree without open checks lacks.
std::string LackText(const Evidence::TreeVerdict& verdict)
{
    if (verdict.isTrueWithoutCause) {
        return "its top event is TRUE, and no cut set explains it";
    }
    if (verdict.checks.Total() == 0) {
        return "it has no checks";
    }
    return "none of " + ChecksText(verdict.checks.Total()) + " decided ("
        + CountsText(verdict.checks, {Check::NOT_SELECTED, Check::NOT_APPLICABLE}) + ")";
}

} // namespace

std::string VerdictWords(const Evidence::TreeVerdict& verdict)
{
    const std::string open = verdict.checks.Open() == 0 ? "" : OpenCountText(verdict.checks);
    switch (verdict.word) {
    case Word::FAULT:
        return open.empty() ? "" : ", " + open;
    case Word::UNDECIDED:
        return "no fault, UNDECIDED: " + (open.empty() ? LackText(verdict) : open);
    case Word::NO_FAULT:
        return open.empty() ? "no fault" : "no fault, whatever is open: " + open;
    case Word::NOT_APPLICABLE:
        return "no fault, NOT APPLICABLE: none of " + ChecksText(verdict.checks.Total()) + " is for this device";
    }
    return "";
}

std::string OpenText(const Evidence::OpenCheck& open)
{
    std::string text = Shown(open.eventId);
    text += open.ruleName.empty() ? "" : ", rule " + Shown(open.ruleName);
    text += std::string(": ") + Evidence::CheckText(open.check) + ", " + Evidence::ReasonText(open.reason);
    text += open.detail.empty() ? "" : " (" + Printable(open.detail) + ")";
    return open.restsOnDefault ? text + ", taken as TRUE" : text;
}

std::string MissingText(Reason reason, const std::string& detail)
{
    const std::string about = detail.empty() ? "" : " (" + Printable(detail) + ")";
    const std::string word = Evidence::ReasonText(reason);
    switch (reason) {
    case Reason::LOG_UNAVAILABLE:
        return "the event log" + about;
    case Reason::LOG_DAMAGED:
        return "a sound event log" + about;
    case Reason::NODE_UNREADABLE:
        return "the node file" + (detail.empty() ? "" : " " + Printable(detail));
    case Reason::DATABASE_UNAVAILABLE:
        return "a database" + about;
    case Reason::TABLE_INCOMPLETE:
        return "a complete table" + about;
    case Reason::NO_RUNNER:
        return "a program for code rules" + about;
    case Reason::RUNNER_FAILED:
        return "an answer to a code rule" + about;
    case Reason::NO_EVENT_RULE:
    case Reason::NO_RULE_NAMES:
    case Reason::NO_SUCH_RULE:
        return "a rule" + about;
    case Reason::STOPPED:
        return "time" + about;
    default:
        return (Evidence::CheckOf(reason) == Check::RULE_UNUSABLE ? "a rule that can work, " : "data, ") + word + about + ",";
    }
}

std::string TreesText(const TreeReports& trees)
{
    std::string words;
    for (const auto& [word, text] : {std::pair(Word::FAULT, "fault"), std::pair(Word::NO_FAULT, "no fault"),
             std::pair(Word::UNDECIDED, "undecided"), std::pair(Word::NOT_APPLICABLE, "not applicable")}) {
        const auto count = std::count_if(trees.begin(), trees.end(),
            [word = word](const TreeReport& tree) { return tree.verdict.word == word; });
        Append(words, static_cast<std::size_t>(count), text);
    }
    return std::to_string(trees.size()) + (trees.size() == 1 ? " tree: " : " trees: ") + words;
}

} // namespace diagnosis
