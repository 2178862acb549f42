#include "diagnosis/lint/config.h"

#include <algorithm>
#include <filesystem>

#include "diagnosis/lint/registry.h"
#include "diagnosis/text/file_text.h"
#include "diagnosis/text/json_text.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis::lint {

namespace {

/// One key of the file and the member for its value: a list or a text.
struct Key {
    const char* name;
    std::vector<std::string>* list;
    std::string* text;
};

std::vector<std::string> Names(const std::vector<Key>& keys)
{
    std::vector<std::string> names;
    for (const Key& key : keys) {
        names.emplace_back(key.name);
    }
    return names;
}

// Stores the value of a key; returns the reason if it can't.
std::string Take(const Json::Value& value, const Key& key)
{
    if (key.text != nullptr) {
        if (!value.isString()) {
            return std::string("\"") + key.name + "\" must be a text, not " + JsonKind(value);
        }
        *key.text = value.asString();
        return "";
    }
    if (!value.isArray()) {
        return std::string("\"") + key.name + "\" must be a list of texts, not " + JsonKind(value);
    }
    for (const Json::Value& entry : value) {
        if (!entry.isString()) {
            return std::string("\"") + key.name + "\" must be a list of texts, with " + JsonKind(entry) + " in it";
        }
        key.list->push_back(entry.asString());
    }
    return "";
}

std::string TakeAll(const Json::Value& object, const std::vector<Key>& keys)
{
    if (!object.isObject()) {
        return std::string("must be an object, not ") + JsonKind(object);
    }
    for (const std::string& name : object.getMemberNames()) {
        const auto isNamed = [&name](const Key& key) { return name == key.name; };
        const auto key = std::find_if(keys.begin(), keys.end(), isNamed);
        if (key == keys.end()) {
            return "unknown key \"" + name + "\"" + DidYouMean(name, Names(keys));
        }
        if (std::string problem = Take(object[name], *key); !problem.empty()) {
            return problem;
        }
    }
    return "";
}

std::string Judge(const Config& config)
{
    if (!config.failLevel.empty() && !SeverityOf(config.failLevel)) {
        return "\"failLevel\" must be error, warning or info";
    }
    const std::string unknown = UnknownCheck(config.disable);
    return unknown.empty() ? UnknownCheck(config.only) : unknown;
}

} // namespace

std::optional<Config> ReadConfig(const std::string& path, std::string& problem)
{
    const auto json = ReadJsonFile(path, problem);
    if (!json) {
        return std::nullopt;
    }
    Config config;
    problem = TakeAll(*json, {{"tags", &config.tags, nullptr}, {"prefix", nullptr, &config.prefix},
        {"disable", &config.disable, nullptr}, {"only", &config.only, nullptr},
        {"failLevel", nullptr, &config.failLevel}, {"baseline", nullptr, &config.baseline},
        {"devices", &config.devices, nullptr}, {"tests", &config.tests, nullptr}});
    problem = problem.empty() ? Judge(config) : problem;
    if (!problem.empty()) {
        problem = path + ": " + problem;
        return std::nullopt;
    }
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    config.baseline = config.baseline.empty() ? "" : (folder / config.baseline).generic_string();
    for (auto* files : {&config.devices, &config.tests}) {
        for (std::string& file : *files) {
            file = (folder / file).generic_string();
        }
    }
    return config;
}

std::string UnknownCheck(const std::vector<std::string>& ids)
{
    std::vector<std::string> known;
    for (const Check* check : AllChecks()) {
        known.emplace_back(check->id);
    }
    for (const std::string& id : ids) {
        if (FindCheck(id) == nullptr) {
            return "no such check: " + id + DidYouMean(id, known);
        }
    }
    return "";
}

} // namespace diagnosis::lint
