#include "diagnosis/bundle/bundle_file.h"

#include <algorithm>
#include <filesystem>
#include <functional>

#include <json/value.h>
#include <json/writer.h>

#include "arborist/frame/settings.h"
#include "diagnosis/bundle/moment.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/text/file_text.h"
#include "diagnosis/text/json_text.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

// More than any bundle needs, whose recorded answers are its largest part, and little enough to read safely.
constexpr std::uintmax_t LARGEST_FILE = 16U << 20U;

struct Findings {
    std::string path;
    std::vector<std::string> errors;
    std::vector<Warning>& warnings;
};

/// Reads known keys from one JSON object and notes values of a wrong type and unknown keys.
class ObjectReader {
public:
    ObjectReader(const Json::Value& object, std::string prefix, Findings& findings)
        : mObject(object), mPrefix(std::move(prefix)), mFindings(findings)
    {
    }

    /// The member if it exists and has the required type.
    template <typename Predicate>
    const Json::Value* Find(const char* key, Predicate isWanted, const char* wanted)
    {
        mKnown.emplace_back(key);
        const Json::Value* value = mObject.find(key, key + std::char_traits<char>::length(key));
        if (value == nullptr || std::invoke(isWanted, *value)) {
            return value;
        }
        Wrong(key, std::string("must be ") + wanted + ", not " + JsonKind(*value));
        return nullptr;
    }

    /// Copies a text to `target`; false if there is no usable one.
    bool Text(const char* key, std::string& target)
    {
        const Json::Value* value = Find(key, &Json::Value::isString, "a text");
        if (value == nullptr) {
            return false;
        }
        const std::string text = value->asString();
        if (text.find('\0') != std::string::npos) {
            Wrong(key, "holds a NUL character");
            return false;
        }
        target = text;
        return true;
    }

    bool Has(const char* key) const { return mObject.isMember(key); }

    void Wrong(const std::string& key, const std::string& reason)
    {
        mFindings.errors.push_back("\"" + mPrefix + key + "\" " + reason);
    }

    void Missing(const char* key)
    {
        // A missing required key is probably misspelt: name the similar key in the same message.
        for (const std::string& name : mObject.getMemberNames()) {
            if (!NearMatch(name, {key}).empty()) {
                Wrong(key, "is missing (there is \"" + name + "\")");
                return;
            }
        }
        Wrong(key, "is missing");
    }

    /// Call it after all known keys have been read.
    void WarnOfUnknownKeys()
    {
        for (const std::string& name : mObject.getMemberNames()) {
            if (std::find(mKnown.begin(), mKnown.end(), name) == mKnown.end()) {
                mFindings.warnings.push_back({WarningCode::UNKNOWN_KEY,
                    mFindings.path + ": unknown key \"" + mPrefix + name + "\"" + DidYouMean(name, mKnown)});
            }
        }
    }

private:
    const Json::Value& mObject;
    std::string mPrefix;
    Findings& mFindings;
    std::vector<std::string> mKnown;
};

void ReadDevice(const Json::Value& object, DeviceDetails& device, Findings& findings)
{
    ObjectReader reader(object, "device.", findings);
    for (const auto& [key, set] : DEVICE_ATTRIBUTES) {
        std::string value;
        reader.Text(key, value);
        (device.*set)(value);
    }
    reader.WarnOfUnknownKeys();
}

void ReadSettings(const Json::Value& object, std::map<std::string, std::string>& settings, Findings& findings)
{
    ObjectReader reader(object, "settings.", findings);
    for (const char* key : {Settings::PROGRAM_DATA_DIR, Settings::APP_DATABASE_DIR, Settings::APP_FILE_DIR,
             Settings::VERSION_NAME, Settings::DEVICE_ROOT_DIR}) {
        std::string value = settings[key];
        reader.Text(key, value);
        settings[key] = value;
    }
    for (const char* root : {Settings::PROGRAM_DATA_DIR, Settings::DEVICE_ROOT_DIR}) {
        if (!Inside(settings[root])) {
            reader.Wrong(root, "must be a folder inside the bundle, not \"" + settings[root] + "\"");
        }
    }
    reader.WarnOfUnknownKeys();
}

void ReadCodeAnswers(const Json::Value& object, std::map<std::string, bool>& answers, Findings& findings)
{
    for (const std::string& userDefinedInfo : object.getMemberNames()) {
        const Json::Value& answer = object[userDefinedInfo];
        if (answer.isBool()) {
            answers[userDefinedInfo] = answer.asBool();
        } else {
            findings.errors.push_back("\"codeAnswers." + userDefinedInfo + "\" must be true or false, not "
                + JsonKind(answer));
        }
    }
}

bool IsTextOrWholeNumber(const Json::Value& value)
{
    return value.isString() || value.isInt64();
}

void ReadNow(ObjectReader& reader, std::string& now)
{
    const Json::Value* value = reader.Find("now", IsTextOrWholeNumber, "a text or a whole number");
    if (value == nullptr) {
        return;
    }
    now = value->isString() ? value->asString() : std::to_string(value->asInt64());
    if (!now.empty() && !IsMomentText(now)) {
        reader.Wrong("now", "must be a local time \"YYYY-MM-DD HH:MM:SS\" or seconds since the epoch, not \"" + now
            + "\"");
    }
}

void ReadScene(ObjectReader& reader, std::int32_t& scene)
{
    if (const Json::Value* value = reader.Find("detectScene", &Json::Value::isNumeric, "a number")) {
        if (value->isInt()) {
            scene = value->asInt();
        } else {
            reader.Wrong("detectScene", "must be a whole number of 32 bits");
        }
    } else if (!reader.Has("detectScene")) {
        reader.Missing("detectScene");
    }
}

void ReadTag(ObjectReader& reader, std::string& tag)
{
    if (!reader.Has("treeTag")) {
        reader.Missing("treeTag");
    }
    if (reader.Text("treeTag", tag) && tag.empty()) {
        reader.Wrong("treeTag", "must not be empty");
    }
}

void ReadZone(ObjectReader& reader, std::string& zone)
{
    reader.Text("tz", zone);
    if (!zone.empty() && !IsTimeZone(zone)) {
        reader.Wrong("tz", "names no time zone that this machine knows: \"" + zone + "\"");
    }
}

std::string WithoutTrailingSeparators(std::string path)
{
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

void ReadObject(const Json::Value& object, Bundle& bundle, Findings& findings)
{
    ObjectReader reader(object, "", findings);
    ReadScene(reader, bundle.detectScene);
    ReadTag(reader, bundle.treeTag);
    reader.Text("ruleFileDir", bundle.ruleFileDir);
    bundle.ruleFileDir = WithoutTrailingSeparators(bundle.ruleFileDir);
    reader.Text("ruleFilePrefix", bundle.ruleFilePrefix);
    reader.Text("logLocation", bundle.logLocation);
    reader.Text("reservedText", bundle.reservedText);
    reader.Text("deviceId", bundle.deviceId);
    ReadNow(reader, bundle.now);
    ReadZone(reader, bundle.tz);
    if (const Json::Value* device = reader.Find("device", &Json::Value::isObject, "an object")) {
        ReadDevice(*device, bundle.device, findings);
    }
    if (const Json::Value* settings = reader.Find("settings", &Json::Value::isObject, "an object")) {
        ReadSettings(*settings, bundle.settings, findings);
    }
    if (const Json::Value* answers = reader.Find("codeAnswers", &Json::Value::isObject, "an object")) {
        ReadCodeAnswers(*answers, bundle.codeAnswers, findings);
    }
    reader.WarnOfUnknownKeys();
}

// Seconds become a number.
Json::Value NowValue(const std::string& now)
{
    const bool isNumber = now.find_first_not_of("-0123456789") == std::string::npos && IsMomentText(now);
    return isNumber ? Json::Value(Json::Int64{std::stoll(now)}) : Json::Value(now);
}

Json::Value ObjectOf(const Bundle& bundle)
{
    Json::Value object(Json::objectValue);
    object["detectScene"] = bundle.detectScene;
    object["treeTag"] = bundle.treeTag;
    object["ruleFileDir"] = bundle.ruleFileDir;
    object["ruleFilePrefix"] = bundle.ruleFilePrefix;
    object["logLocation"] = bundle.logLocation;
    object["reservedText"] = bundle.reservedText;
    if (!bundle.deviceId.empty()) { // earlier versions warn of the key
        object["deviceId"] = bundle.deviceId;
    }
    object["now"] = NowValue(bundle.now);
    object["tz"] = bundle.tz;
    for (const auto& [key, value] : DeviceAttributes(bundle.device)) {
        object["device"][key] = value;
    }
    for (const auto& [key, value] : bundle.settings) {
        object["settings"][key] = value;
    }
    object["codeAnswers"] = Json::Value(Json::objectValue);
    for (const auto& [info, answer] : bundle.codeAnswers) {
        object["codeAnswers"][info] = answer;
    }
    return object;
}

std::string Joined(const std::vector<std::string>& errors)
{
    std::string text;
    for (const std::string& error : errors) {
        text += (text.empty() ? "" : "; ") + error;
    }
    return text;
}

} // namespace

std::optional<Failure> ReadBundleText(const std::string& path, const std::string& text, Bundle& bundle,
    std::vector<Warning>& warnings)
{
    std::string problem;
    const auto value = ParseJson(text, problem);
    if (!value) {
        return Failure{FailureCode::BAD_JSON, path + ": " + problem};
    }
    if (!value->isObject()) {
        return Failure{FailureCode::BAD_BUNDLE, path + ": must hold an object, not " + JsonKind(*value)};
    }
    Findings findings{path, {}, warnings};
    ReadObject(*value, bundle, findings);
    if (!findings.errors.empty()) {
        return Failure{FailureCode::BAD_BUNDLE, path + ": " + Joined(findings.errors)};
    }
    return std::nullopt;
}

std::string BundleText(const Bundle& bundle)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    builder["emitUTF8"] = true;
    builder["enableYAMLCompatibility"] = true;
    return Json::writeString(builder, ObjectOf(bundle)) + "\n";
}

std::optional<Failure> ReadBundleFile(const BundlePath& path, Bundle& bundle, std::vector<Warning>& warnings)
{
    std::error_code error;
    const fs::path folder = path.absolute;
    if (!fs::is_directory(folder, error)) {
        const char* reason = fs::exists(folder, error) ? ": is neither a folder nor a zip" : ": no such folder or zip";
        return Failure{FailureCode::NO_BUNDLE, path.given + reason};
    }
    const fs::path file = folder / "bundle.json";
    const std::string name = (fs::path(path.given) / "bundle.json").generic_string();
    // Ask first: reading a pipe or device of that name would block.
    if (!fs::is_regular_file(file, error)) {
        return Failure{FailureCode::NO_BUNDLE_JSON, name + ": no such file; a bundle is a folder or a zip with a bundle.json"};
    }
    if (fs::file_size(file, error) > LARGEST_FILE) {
        return Failure{FailureCode::TOO_LARGE, name + ": larger than 16 MiB"};
    }
    const auto text = FileText(file.generic_string());
    return text ? ReadBundleText(name, *text, bundle, warnings)
                : Failure{FailureCode::NO_BUNDLE_JSON, name + ": can't be read"};
}

} // namespace diagnosis
