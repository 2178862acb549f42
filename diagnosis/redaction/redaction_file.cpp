#include "diagnosis/redaction/redaction_file.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include <json/value.h>

#include "arborist/frame/rule_set_summary.h"
#include "arborist/frame/settings.h"
#include "diagnosis/bundle/bundle.h"
#include "diagnosis/log_db/slice_log.h"
#include "diagnosis/redaction/hash_key.h"
#include "diagnosis/text/file_text.h"
#include "diagnosis/text/json_text.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis {

namespace {

/// Reads a redaction file and notes all that is wrong in it.
class Reader {
public:
    Reader(const std::string& path, Redaction& redaction) : mPath(path), mRedaction(redaction) {}

    std::vector<std::string> Read(const Json::Value& object)
    {
        CheckKeys(object, "", {"$schema", "key", "keyFile", "bundle", "nodes", "log", "results"});
        ReadKey(object);
        mRedaction.bundleKeys = Texts(object["bundle"], "\"bundle\"");
        CheckWords(mRedaction.bundleKeys, "\"bundle\"", RedactableKeys());
        for (const std::string& pattern : Texts(object["nodes"], "\"nodes\"")) {
            AddNodes(pattern);
        }
        ReadLog(object["log"]);
        mRedaction.results = Texts(object["results"], "\"results\"");
        CheckWords(mRedaction.results, "\"results\"", {std::begin(REDACTABLE_RESULTS), std::end(REDACTABLE_RESULTS)});
        return std::move(mErrors);
    }

private:
    void Wrong(const std::string& message) { mErrors.push_back(message); }

    void CheckKeys(const Json::Value& object, const std::string& prefix, const std::vector<std::string>& known)
    {
        for (const std::string& name : object.getMemberNames()) {
            if (std::find(known.begin(), known.end(), name) == known.end()) {
                Wrong("unknown key \"" + prefix + name + "\"" + DidYouMean(name, known));
            }
        }
    }

    void CheckWords(const std::vector<std::string>& words, const std::string& where, const std::vector<std::string>& known)
    {
        for (const std::string& word : words) {
            if (std::find(known.begin(), known.end(), word) == known.end()) {
                Wrong(where + " can't replace \"" + word + "\"" + DidYouMean(word, known));
            }
        }
    }

    // A list of texts that are not empty; null has none.
    std::vector<std::string> Texts(const Json::Value& list, const std::string& where)
    {
        std::vector<std::string> texts;
        if (!list.isNull() && !list.isArray()) {
            Wrong(where + " must be a list, not " + JsonKind(list));
            return texts;
        }
        for (const Json::Value& text : list) {
            if (text.isString() && !text.asString().empty()) {
                texts.push_back(text.asString());
            } else {
                Wrong(where + " must have texts that are not empty" + (text.isString() ? "" : std::string(", not ") + JsonKind(text)));
            }
        }
        return texts;
    }

    void ReadKey(const Json::Value& object)
    {
        const Json::Value& key = object["key"];
        const Json::Value& file = object["keyFile"];
        if (key.isNull() == file.isNull()) {
            Wrong("there must be either \"key\" or \"keyFile\"");
        } else if (!key.isNull()) {
            if (!key.isString() || key.asString().size() < SHORTEST_KEY) {
                Wrong("\"key\" must be a text of at least " + std::to_string(SHORTEST_KEY) + " bytes");
                return;
            }
            mRedaction.key = key.asString();
        } else if (!file.isString() || file.asString().empty() || file.asString().find('\0') != std::string::npos) {
            Wrong("\"keyFile\" must be the name of a file");
        } else {
            ReadKeyFile(file.asString());
        }
    }

    void ReadKeyFile(const std::string& name)
    {
        std::string problem;
        const std::string path = (std::filesystem::path(mPath).parent_path() / name).generic_string();
        if (const auto key = ReadHashKey(path, problem)) {
            mRedaction.key = *key;
        } else {
            Wrong(problem);
        }
    }

    void AddNodes(const std::string& pattern)
    {
        if (!IsFileNamePattern(pattern)) {
            Wrong("\"nodes\" has a pattern that is no regular expression: " + pattern);
            return;
        }
        mRedaction.nodes.push_back({pattern, std::regex(pattern, std::regex::ECMAScript)});
    }

    void ReadLog(const Json::Value& list)
    {
        if (!list.isNull() && !list.isArray()) {
            Wrong(std::string("\"log\" must be a list, not ") + JsonKind(list));
            return;
        }
        for (const Json::Value& entry : list) {
            if (!entry.isObject()) {
                Wrong(std::string("\"log\" must have objects, not ") + JsonKind(entry));
                continue;
            }
            ReadMembers(entry);
        }
    }

    void ReadMembers(const Json::Value& entry)
    {
        CheckKeys(entry, "log.", {"events", "members"});
        LogMembers members;
        for (const std::string& name : Texts(entry["members"], "\"log.members\"")) {
            members.names.emplace(LowerLetters(name), name);
        }
        if (!entry.isMember("members")) {
            Wrong("\"log.members\" is missing");
        } else if (entry["members"].empty()) {
            Wrong("\"log.members\" names no member");
        }
        if (entry.isMember("events")) {
            const auto ranges = entry["events"].isString() ? ParseIdRanges(entry["events"].asString()) : std::nullopt;
            if (!ranges) {
                Wrong("\"log.events\" must be a text of numbers and ranges, as \"931001001,932000000-932999999\"");
                return;
            }
            members.events = *ranges;
        }
        mRedaction.log.push_back(std::move(members));
    }

    const std::string& mPath;
    Redaction& mRedaction;
    std::vector<std::string> mErrors;
};

} // namespace

bool LogMembers::HasEvent(std::int64_t event) const
{
    return events.empty() || std::any_of(events.begin(), events.end(), [event](const auto& range) {
        return event >= range.first && event <= range.second;
    });
}

std::vector<std::string> RedactableKeys()
{
    std::vector<std::string> keys = {"deviceId", "reservedText", "logLocation"};
    for (const DeviceAttribute& attribute : DEVICE_ATTRIBUTES) {
        keys.push_back(std::string("device.") + attribute.name);
    }
    keys.push_back(std::string("settings.") + Settings::VERSION_NAME);
    return keys;
}

std::string LowerLetters(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
        [](char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; });
    return text;
}

std::optional<Failure> ReadRedactionFile(const std::string& path, Redaction& redaction)
{
    std::string problem;
    const auto json = ReadJsonFile(path, problem, MOST_WRITTEN_BYTES);
    if (!json) {
        return Failure{FailureCode::BAD_REDACTION, problem};
    }
    if (!json->isObject()) {
        return Failure{FailureCode::BAD_REDACTION, path + ": must hold an object, not " + JsonKind(*json)};
    }
    std::string errors;
    for (const std::string& error : Reader(path, redaction).Read(*json)) {
        errors += (errors.empty() ? "" : "; ") + error;
    }
    return errors.empty() ? std::nullopt
                          : std::optional(Failure{FailureCode::BAD_REDACTION, path + ": " + errors});
}

} // namespace diagnosis
