#include "diagnosis/results_db/result_line.h"

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <utility>

#include <json/value.h>

#include "diagnosis/results_db/local_moment.h"
#include "diagnosis/text/json_text.h"

namespace diagnosis::results_db {

namespace {

constexpr char SCHEMA_NAME[] = "arborist.detect.1";
// Longest piece of a foreign text in a message.
constexpr std::size_t LONGEST_QUOTE = 60;

/// Takes members of one JSON object and notes the first that is missing or of another type.
class Members {
public:
    Members(const Json::Value& object, std::string where, std::string& problem)
        : mObject(object), mWhere(std::move(where)), mProblem(problem)
    {
        if (!object.isObject()) {
            Note((mWhere.empty() ? "the line" : mWhere) + " must be an object, not " + JsonKind(object));
        }
    }

    std::string Text(const char* key)
    {
        const Json::Value* value = Find(key, &Json::Value::isString, "a text");
        return value == nullptr ? "" : value->asString();
    }

    /// A text that is one of these.
    std::string Word(const char* key, std::initializer_list<std::string_view> words)
    {
        const std::string text = Text(key);
        if (std::find(words.begin(), words.end(), text) == words.end()) {
            Note(Place(key) + " is not known: \"" + text.substr(0, LONGEST_QUOTE) + "\"");
        }
        return text;
    }

    bool Bool(const char* key)
    {
        const Json::Value* value = Find(key, &Json::Value::isBool, "true or false");
        return value != nullptr && value->asBool();
    }

    std::int64_t Count(const char* key)
    {
        const auto isCount = [](const Json::Value& value) { return value.isInt64() && value.asInt64() >= 0; };
        const Json::Value* value = Find(key, isCount, "a whole number from 0");
        return value == nullptr ? 0 : value->asInt64();
    }

    double Seconds(const char* key)
    {
        static constexpr double MOST = 1e9;
        const auto isDuration = [](const Json::Value& value) {
            return value.isNumeric() && value.asDouble() >= 0 && value.asDouble() <= MOST;
        };
        const Json::Value* value = Find(key, isDuration, "a number of seconds");
        return value == nullptr ? 0 : value->asDouble();
    }

    std::vector<std::string> Texts(const char* key)
    {
        std::vector<std::string> texts;
        ForEachValue(key, [&](const Json::Value& value, const std::string& where) {
            if (!value.isString()) {
                Note(where + " must be a text, not " + JsonKind(value));
                return;
            }
            texts.push_back(value.asString());
        });
        return texts;
    }

    /// Calls `take` with the members of each object of a list; stops at the first problem.
    template <typename Take>
    void ForEach(const char* key, Take take)
    {
        ForEachValue(key, [&](const Json::Value& value, const std::string& where) {
            const Members members(value, where, mProblem);
            if (mProblem.empty()) {
                take(members);
            }
        });
    }

    Members Object(const char* key)
    {
        static const Json::Value nothing(Json::objectValue);
        const Json::Value* value = Find(key, &Json::Value::isObject, "an object");
        return Members(value == nullptr ? nothing : *value, Place(key), mProblem);
    }

    bool Has(const char* key) const { return mObject.isObject() && mObject.isMember(key); }

    /// The text of this object in the text that it was read from.
    std::string_view In(std::string_view text) const
    {
        const auto start = static_cast<std::size_t>(mObject.getOffsetStart());
        return text.substr(start, static_cast<std::size_t>(mObject.getOffsetLimit()) - start);
    }

private:
    template <typename Take>
    void ForEachValue(const char* key, Take take)
    {
        const Json::Value* list = Find(key, &Json::Value::isArray, "a list");
        for (Json::ArrayIndex index = 0; list != nullptr && index < list->size() && mProblem.empty(); ++index) {
            take((*list)[index], Place(key) + "[" + std::to_string(index) + "]");
        }
    }

    template <typename Predicate>
    const Json::Value* Find(const char* key, Predicate isWanted, const char* wanted)
    {
        if (!mProblem.empty()) {
            return nullptr;
        }
        const Json::Value* value = mObject.find(key, key + std::char_traits<char>::length(key));
        if (value == nullptr) {
            Note(Place(key) + " is missing");
            return nullptr;
        }
        if (!std::invoke(isWanted, *value)) {
            Note(Place(key) + " must be " + wanted + ", not " + JsonKind(*value));
            return nullptr;
        }
        return value;
    }

    std::string Place(const char* key) const { return mWhere.empty() ? key : mWhere + "." + key; }

    void Note(const std::string& problem)
    {
        if (mProblem.empty()) {
            mProblem = problem;
        }
    }

    const Json::Value& mObject;
    std::string mWhere;
    std::string& mProblem;
};

ResultWarning ReadWarning(Members object)
{
    ResultWarning warning;
    warning.code = object.Text("code");
    warning.message = object.Text("message");
    // Lines of before these members were always there leave out what is empty.
    const std::pair<const char*, std::string ResultWarning::*> texts[] = {{"id", &ResultWarning::lint},
        {"rule", &ResultWarning::rule}, {"event", &ResultWarning::event}, {"file", &ResultWarning::file}};
    for (const auto& [key, text] : texts) {
        warning.*text = object.Has(key) ? object.Text(key) : "";
    }
    warning.line = object.Has("line") ? object.Count("line") : 0;
    return warning;
}

ResultCause ReadCause(Members object)
{
    ResultCause cause;
    cause.id = object.Text("id");
    cause.name = object.Text("name");
    cause.userDefined = object.Text("userDefined");
    cause.faultDescription = object.Text("faultDescription");
    cause.suggestions = object.Texts("suggestions");
    object.ForEach("repairs", [&cause](Members repair) {
        cause.repairs.push_back({repair.Text("id"), repair.Text("extra"), repair.Text("operation")});
    });
    cause.cutSet = object.Has("cutSet") ? object.Texts("cutSet") : std::vector{cause.id};
    return cause;
}

ResultChecks ReadChecks(Members object)
{
    ResultChecks checks;
    checks.total = object.Count("total");
    checks.decided = object.Count("decided");
    checks.notApplicable = object.Count("not_applicable");
    checks.notSelected = object.Count("not_selected");
    checks.notChecked = object.Count("not_checked");
    checks.noData = object.Count("no_data");
    checks.error = object.Count("error");
    return checks;
}

ResultTree ReadTree(Members object)
{
    ResultTree tree;
    tree.id = object.Text("treeId");
    tree.version = object.Text("version");
    tree.verdict = object.Word("verdict", {"fault", "undecided", "no_fault", "not_applicable"});
    tree.isFault = object.Bool("isFault");
    tree.isComplete = object.Bool("complete");
    tree.checks = ReadChecks(object.Object("checks"));
    object.ForEach("open", [&tree](Members open) {
        tree.open.push_back({open.Text("event"), open.Text("rule"), open.Text("check"), open.Text("reason"),
            open.Text("detail"), open.Bool("restsOnDefault")});
    });
    object.ForEach("possibleCauses", [&tree](const Members&) { ++tree.possibleCauses; });
    tree.arePossibleCausesTruncated = object.Bool("possibleCausesTruncated");
    object.ForEach("rootCauses", [&tree](Members cause) { tree.causes.push_back(ReadCause(std::move(cause))); });
    return tree;
}

// The evidence of the explanation, each with its text as it stands in the line.
std::vector<ResultEvidence> ReadEvidence(std::string_view text, Members line)
{
    std::vector<ResultEvidence> all;
    line.ForEach("explanation", [&](Members tree) {
        const std::string treeId = tree.Text("treeId");
        tree.ForEach("evidence", [&](Members evidence) {
            all.push_back({treeId, evidence.Text("event"), std::string(evidence.In(text))});
        });
    });
    return all;
}

// What makes a line comparable.
void ReadOrigin(Members object, ResultLine& line, std::string& problem)
{
    line.device = object.Text("device");
    line.engine = object.Text("engine");
    line.ruleSet = object.Text("ruleSet");
    line.now = object.Text("now");
    line.seconds = object.Seconds("seconds");
    if (problem.empty() && !line.now.empty() && !LocalMoment(line.now)) {
        problem = "now must be \"YYYY-MM-DD HH:MM:SS\" or empty";
    }
}

void ReadMembers(Members object, ResultLine& line, std::string& problem)
{
    object.Word("schema", {SCHEMA_NAME});
    line.bundle = object.Text("bundle");
    line.ok = object.Bool("ok");
    object.ForEach("warnings", [&line](Members warning) {
        line.warnings.push_back(std::make_shared<const ResultWarning>(ReadWarning(std::move(warning))));
    });
    object.ForEach("results", [&line](Members tree) {
        line.trees.push_back(std::make_shared<const ResultTree>(ReadTree(std::move(tree))));
    });
    if (!line.ok || object.Has("error")) {
        Members error = object.Object("error");
        line.error = {error.Text("code"), error.Text("message"), error.Has("retry") && error.Bool("retry")};
    }
    // Lines of before these members were always there have none of them.
    if (object.Has("engine")) {
        ReadOrigin(object, line, problem);
    }
    if (object.Has("repaired")) {
        object.ForEach("repaired", [&line](Members repair) {
            line.repaired.push_back({repair.Text("id"), repair.Text("date")});
        });
    }
}

} // namespace

std::optional<ResultLine> ReadResultLine(std::string_view text, bool withEvidence, std::string& problem)
{
    const auto value = ParseJson(text, problem);
    if (!value) {
        return std::nullopt;
    }
    ResultLine line;
    Members object(*value, "", problem);
    ReadMembers(object, line, problem);
    if (withEvidence && object.Has("explanation")) {
        line.evidence = ReadEvidence(text, object);
    }
    return problem.empty() ? std::optional(std::move(line)) : std::nullopt;
}

} // namespace diagnosis::results_db
