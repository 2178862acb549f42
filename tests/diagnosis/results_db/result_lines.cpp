#include "tests/diagnosis/results_db/result_lines.h"

#include <sstream>

namespace {

// {"key": "value", ...}; the values need no escape.
std::string Texts(const std::vector<std::pair<std::string, std::string>>& members)
{
    std::string text;
    for (const auto& [key, value] : members) {
        text += (text.empty() ? "\"" : ", \"") + key + "\": \"" + value + "\"";
    }
    return text;
}

void Append(std::string& list, const std::string& element)
{
    list += (list.empty() ? "" : ", ") + element;
}

// The paths of "A & B" below the top event of a tree.
std::string CutSet(const std::string& tree, std::string members)
{
    std::string list;
    for (std::size_t end = 0; end != std::string::npos; members = end == std::string::npos ? "" : members.substr(end + 3)) {
        end = members.find(" & ");
        Append(list, "\"TOP_" + tree + "/" + members.substr(0, end) + "\"");
    }
    return "[" + list + "]";
}

std::string Cause(const std::string& tree, const std::string& cutSet)
{
    const std::string id = cutSet.substr(0, cutSet.find(" & "));
    const std::string repairs = "{" + Texts({{"id", "REPAIR_" + id}, {"extra", ""}, {"operation", "replace"}}) + "}";
    return "{" + Texts({{"id", id}, {"name", "Name of " + id}, {"userDefined", ""}, {"faultDescription", "DESC_" + id}})
        + ", \"suggestions\": [\"SUGGEST_" + id + "\"], \"repairs\": [" + repairs + "], \"cutSet\": " + CutSet(tree, cutSet)
        + "}";
}

std::string OpenCheck(const std::string& event, const std::string& reason)
{
    return "{" + Texts({{"event", event}, {"rule", "rule_" + event}, {"check", "not_checked"}, {"reason", reason},
               {"detail", ""}})
        + ", \"restsOnDefault\": false}";
}

} // namespace

LineOf::LineOf(std::string bundle) : mBundle(std::move(bundle))
{
}

LineOf& LineOf::Tree(
    const std::string& tree, const std::string& verdict, const std::string& open, const std::string& causes)
{
    const std::string isOpen = open.empty() ? "0" : "1";
    Append(mResults, "{" + Texts({{"treeId", tree}, {"version", "1"}})
        + ", \"isFault\": " + (verdict == "fault" ? "true" : "false") + ", \"rootCauses\": [" + causes + "], "
        + Texts({{"verdict", verdict}}) + ", \"complete\": " + (open.empty() ? "true" : "false")
        + ", \"checks\": {\"total\": 2, \"decided\": " + (open.empty() ? "2" : "1")
        + ", \"not_applicable\": 0, \"not_selected\": 0, \"not_checked\": " + isOpen
        + ", \"no_data\": 0, \"error\": 0}, \"open\": [" + open
        + "], \"possibleCauses\": [], \"possibleCausesTruncated\": false}");
    return *this;
}

LineOf& LineOf::Fault(const std::string& tree, const std::vector<std::string>& cutSets)
{
    std::string causes;
    for (const std::string& cutSet : cutSets) {
        Append(causes, Cause(tree, cutSet));
    }
    return Tree(tree, "fault", "", causes);
}

LineOf& LineOf::NoFault(const std::string& tree)
{
    return Tree(tree, "no_fault", "", "");
}

LineOf& LineOf::Undecided(const std::string& tree, const std::string& event, const std::string& reason)
{
    return Tree(tree, "undecided", OpenCheck(event, reason), "");
}

LineOf& LineOf::Open(const std::string& tree, const std::string& event, const std::string& reason)
{
    static const std::string LIST = "\"open\": [";
    const auto start = mResults.find(LIST, mResults.find("\"treeId\": \"" + tree + "\"")) + LIST.size();
    mResults.insert(start, OpenCheck(event, reason) + (mResults[start] == ']' ? "" : ", "));
    return *this;
}

LineOf& LineOf::Warning(const std::string& code, const std::string& message)
{
    Append(mWarnings, "{" + Texts({{"code", code}, {"message", message}, {"id", ""}, {"rule", ""}, {"event", ""}, {"file", ""}}) + ", \"line\": 0}");
    return *this;
}

LineOf& LineOf::Failed(const std::string& code, bool retry)
{
    mError = "{" + Texts({{"code", code}, {"message", mBundle + ": " + code}}) + ", \"retry\": " + (retry ? "true}" : "false}");
    return *this;
}

LineOf& LineOf::RuleSet(const std::string& digest)
{
    mRuleSet = digest;
    return *this;
}

LineOf& LineOf::Engine(const std::string& version)
{
    mEngine = version;
    return *this;
}

LineOf& LineOf::Now(const std::string& now)
{
    mNow = now;
    return *this;
}

LineOf& LineOf::Seconds(const std::string& seconds)
{
    mSeconds = seconds;
    return *this;
}

LineOf& LineOf::Device(const std::string& device)
{
    mDevice = device;
    return *this;
}

LineOf& LineOf::Repaired(const std::string& repair, const std::string& date)
{
    Append(mRepaired, "{" + Texts({{"id", repair}, {"date", date}}) + "}");
    return *this;
}

LineOf& LineOf::Explained(const std::string& tree, const std::string& evidence)
{
    Append(mExplanation, "{" + Texts({{"treeId", tree}}) + ", \"evidence\": [" + evidence + "]}");
    return *this;
}

std::string LineOf::Text() const
{
    const std::string explanation = mExplanation.empty() ? "" : ", \"explanation\": [" + mExplanation + "]";
    const std::string none = "{\"code\": \"\", \"message\": \"\", \"retry\": false}";
    return "{" + Texts({{"schema", "arborist.detect.1"}, {"bundle", mBundle}}) + ", \"ok\": "
        + (mError.empty() ? "true" : "false") + ", \"warnings\": [" + mWarnings + "], \"results\": ["
        + (mError.empty() ? mResults : "") + "]" + explanation + ", \"error\": " + (mError.empty() ? none : mError) + ", "
        + Texts({{"device", mDevice}, {"engine", mEngine}, {"ruleSet", mRuleSet}, {"now", mNow}}) + ", \"seconds\": "
        + mSeconds + ", \"repaired\": [" + mRepaired + "]}\n";
}
