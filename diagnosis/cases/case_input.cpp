#include "diagnosis/cases/case_input.h"

#include <cstdint>
#include <filesystem>
#include <optional>

#include "diagnosis/bundle/moment.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/cases/case_time.h"
#include "diagnosis/log_db/event_line.h"
#include "diagnosis/process/process_state.h"
#include "diagnosis/text/json_text.h"

namespace diagnosis::cases {

namespace fs = std::filesystem;

namespace {

// More than any test needs, and few enough to be written in a second.
constexpr std::size_t MOST_EVENTS = 100'000;

bool IsTextOrSeconds(const Json::Value& value)
{
    return value.isString() || value.isInt64();
}

/// Reads device and data of one case, in its own time zone.
class InputReader {
public:
    InputReader(CaseObject& reader, const Json::Value& object, TestCase& testCase, CaseProblems& problems)
        : mReader(reader), mObject(object), mCase(testCase), mProblems(problems)
    {
    }

    void Read()
    {
        ReadRuleSet();
        ReadScene();
        ReadDevice();
        ReadSettings();
        ReadZone();
        const TimeZoneGuard zone(mCase.bundle.tz);
        ReadNow();
        ReadEvents();
        ReadRepairs();
        ReadFiles();
        ReadDatabases();
        ReadAnswers();
    }

private:
    void ReadRuleSet()
    {
        std::string folder;
        mReader.Text("rules", folder);
        std::error_code error;
        const fs::path own = fs::absolute(mCase.file, error).parent_path();
        mCase.bundle.ruleFileDir = (own / folder / ".").lexically_normal().parent_path().generic_string();
        mReader.Text("prefix", mCase.bundle.ruleFilePrefix);
        mReader.Text("tag", mCase.bundle.treeTag);
    }

    void ReadScene()
    {
        if (!mReader.Has("scene")) {
            mReader.Missing("scene");
        }
        const Json::Value* const scene = mReader.Find("scene", &Json::Value::isInt, "a whole number of 32 bits");
        mCase.bundle.detectScene = scene == nullptr ? 0 : scene->asInt();
    }

    void ReadDevice()
    {
        const Json::Value* const object = mReader.FindObject("device");
        if (object == nullptr) {
            return;
        }
        Json::Value given = *object;
        for (const std::string& name : object->getMemberNames()) {
            if (given[name].isNull()) {
                given.removeMember(name); // taken away from what the file gives to all
            }
        }
        CaseObject device(given, "device.", mProblems);
        for (const auto& [key, set] : DEVICE_ATTRIBUTES) {
            std::string value;
            if (device.Text(key, value)) {
                (mCase.bundle.device.*set)(value);
            }
        }
        device.RefuseUnknownKeys();
    }

    void ReadSettings()
    {
        auto& settings = mCase.bundle.settings;
        settings[Settings::APP_DATABASE_DIR] = "databases";
        mReader.Text("version", settings[Settings::VERSION_NAME]);
        mReader.Text("appDatabaseDir", settings[Settings::APP_DATABASE_DIR]);
    }

    void ReadZone()
    {
        mCase.bundle.tz = DEFAULT_ZONE;
        if (mReader.Text("tz", mCase.bundle.tz) && !IsTimeZone(mCase.bundle.tz)) {
            mProblems.Add(mObject["tz"], "names no time zone that this machine knows: \"" + mCase.bundle.tz + "\"");
            mCase.bundle.tz = DEFAULT_ZONE;
        }
    }

    void ReadNow()
    {
        const Json::Value* const value = mReader.Find("now", IsTextOrSeconds, "a text or a whole number");
        std::string now = DEFAULT_NOW;
        if (value != nullptr) {
            now = value->isString() ? value->asString() : std::to_string(value->asInt64());
        }
        const auto moment = ParseMoment(now);
        if (moment && FormatMoment(*moment)) {
            mNow = *moment;
        } else {
            mProblems.Add(value == nullptr ? mObject : *value, "\"now\" must be a local time \"YYYY-MM-DD HH:MM:SS\""
                " that exists, or seconds since the epoch");
        }
        mCase.bundle.now = now;
    }

    // A distance from the case's moment as seconds since the epoch; any other value as it is.
    Json::Value Moment(const Json::Value& value)
    {
        const auto distance = value.isString() ? ParseDistance(value.asString()) : std::nullopt;
        if (distance) {
            return Json::Value(Json::Int64{mNow + *distance});
        }
        if (!mReader.Has("now")) {
            mProblems.Add(value, "the case has no \"now\": name it, or give a distance like \"-3d\"");
        }
        return value;
    }

    void ReadEvents()
    {
        mCase.events.emplace();
        if (mObject.isMember("events") && mObject["events"].isNull()) {
            mCase.events.reset();
            mReader.Find("events", &Json::Value::isNull, "null");
            return;
        }
        const Json::Value* const list = mReader.FindList("events");
        for (Json::ArrayIndex i = 0; list != nullptr && i < list->size(); ++i) {
            ReadEventRows((*list)[i]);
        }
    }

    void ReadEventRows(const Json::Value& given)
    {
        std::string problem;
        Json::Value object = given;
        std::size_t count = 1;
        if (given.isObject()) {
            count = ReadCount(given);
            object.removeMember("count");
            if (given.isMember("time")) {
                object["time"] = Moment(given["time"]);
            }
        }
        const auto event = ReadEvent(mProblems.Text(), object, problem);
        if (!event) {
            mProblems.Add(given, "event: " + problem);
        } else if (count > MOST_EVENTS - mCase.events->size()) {
            mProblems.Add(given, "more than 100,000 events");
        } else {
            mCase.events->insert(mCase.events->end(), count, *event);
        }
    }

    std::size_t ReadCount(const Json::Value& event)
    {
        if (!event.isMember("count")) {
            return 1;
        }
        if (!event["count"].isUInt() || event["count"].asUInt() == 0) {
            mProblems.Add(event["count"], "\"count\" must be a whole number from 1");
            return 1;
        }
        return event["count"].asUInt();
    }

    void ReadRepairs()
    {
        ForEachMember("repairs", [this](const std::string& id, const Json::Value& value) {
            const Json::Value moment = Moment(value);
            const auto seconds = moment.isInt64() ? std::optional(moment.asInt64())
                : moment.isString()               ? ParseMoment(moment.asString())
                                                  : std::nullopt;
            const auto date = seconds ? FormatMoment(*seconds) : std::nullopt;
            if (!date) {
                mProblems.Add(value, "a repair must have a local time \"YYYY-MM-DD HH:MM:SS\" that exists, seconds since"
                    " the epoch, or a distance like \"-3d\"");
            } else {
                mCase.repairs.push_back({id, *date});
            }
        });
    }

    void ReadFiles()
    {
        ForEachMember("files", [this](const std::string& path, const Json::Value& value) {
            std::string content;
            if (value.isInt64()) {
                content = std::to_string(value.asInt64());
            } else if (!ReadText(value, "files." + path, content, mProblems)) {
                return;
            }
            if (IsOnDevice(path, value)) {
                mCase.files[path] = content;
            }
        });
    }

    // A relative path is read in the folder of the bundle, which has the data of the run, too.
    bool IsOnDevice(const std::string& path, const Json::Value& place)
    {
        const auto inside = Inside(NameOnDevice("device", path));
        const std::string first = inside ? inside->substr(0, inside->find('/')) : "";
        const bool isOwn = first == "bundle.json" || first == "programdata" || first == "databases";
        if (!inside || inside == "device" || isOwn) {
            mProblems.Add(place, "\"" + path + "\" is no path of a file on the device");
            return false;
        }
        return true;
    }

    void ReadDatabases()
    {
        ForEachMember("databases", [this](const std::string& path, const Json::Value& value) {
            if (!value.isObject()) {
                mProblems.Add(value, "a database must be an object of tables, not " + std::string(JsonKind(value)));
            } else if (IsOnDevice(path, value)) {
                CaseDatabase database{path, {}, mProblems.LineOf(value)};
                for (const std::string& name : value.getMemberNames()) {
                    ReadTable(name, value[name], database);
                }
                mCase.databases.push_back(std::move(database));
            }
        });
    }

    void ReadTable(const std::string& name, const Json::Value& value, CaseDatabase& database)
    {
        if (!value.isObject()) {
            mProblems.Add(value, "a table must be an object with \"columns\" and \"rows\", not "
                + std::string(JsonKind(value)));
            return;
        }
        CaseTable table{name, {}, {}};
        CaseObject reader(value, "databases." + name + ".", mProblems);
        reader.Texts("columns", table.columns);
        if (table.columns.empty()) {
            mProblems.Add(value, "the table \"" + name + "\" has no \"columns\"");
        }
        const Json::Value* const rows = reader.FindList("rows");
        for (Json::ArrayIndex i = 0; rows != nullptr && i < rows->size(); ++i) {
            ReadRow((*rows)[i], table);
        }
        reader.RefuseUnknownKeys();
        database.tables.push_back(std::move(table));
    }

    void ReadRow(const Json::Value& row, CaseTable& table)
    {
        if (!row.isArray() || row.size() != table.columns.size()) {
            mProblems.Add(row, "a row of \"" + table.name + "\" must be a list of "
                + std::to_string(table.columns.size()) + " values, one for each column");
            return;
        }
        for (const Json::Value& value : row) {
            const bool isNumber = value.type() == Json::realValue || value.isInt64();
            if (!value.isNull() && !value.isString() && !isNumber) {
                mProblems.Add(value, "a value must be a text, a number or null");
                return;
            }
        }
        table.rows.emplace_back(row.begin(), row.end());
    }

    void ReadAnswers()
    {
        ForEachMember("answers", [this](const std::string& rule, const Json::Value& value) {
            if (value.isBool()) {
                mCase.answers[rule] = value.asBool();
            } else {
                mProblems.Add(value, "an answer must be true or false, not " + std::string(JsonKind(value)));
            }
        });
    }

    // Calls `read` for each member of an object. null means that the member is absent: a case takes away with it
    // what its file gives to all.
    template <typename Read>
    void ForEachMember(const char* key, Read read)
    {
        const Json::Value* const object = mReader.FindObject(key);
        for (const std::string& name : object == nullptr ? std::vector<std::string>() : object->getMemberNames()) {
            if (!(*object)[name].isNull()) {
                read(name, (*object)[name]);
            }
        }
    }

    CaseObject& mReader;
    const Json::Value& mObject;
    TestCase& mCase;
    CaseProblems& mProblems;
    std::int64_t mNow = 0;
};

} // namespace

void ReadInput(CaseObject& reader, const Json::Value& object, TestCase& testCase, CaseProblems& problems)
{
    InputReader(reader, object, testCase, problems).Read();
}

} // namespace diagnosis::cases
