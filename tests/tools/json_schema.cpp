#include "tests/tools/json_schema.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>

#include <gtest/gtest.h>
#include <json/reader.h>

namespace {

class Validator {
public:
    explicit Validator(const Json::Value& root) : mRoot(root) {}

    std::vector<std::string> Run(const Json::Value& value)
    {
        Check(mRoot, value, "");
        return mViolations;
    }

private:
    void Fail(const std::string& path, const std::string& what) { mViolations.push_back(path + ": " + what); }

    void Check(const Json::Value& schema, const Json::Value& value, const std::string& path)
    {
        static const std::set<std::string> KNOWN{"$schema", "title", "description", "$defs", "$ref", "type", "enum",
            "const", "anyOf", "properties", "additionalProperties", "required", "items", "minItems", "minimum",
            "maximum"};
        for (const std::string& word : schema.getMemberNames()) {
            if (KNOWN.count(word) == 0) {
                Fail(path, "unknown word of the schema: " + word);
            }
        }
        if (schema.isMember("$ref")) {
            Check(Definition(schema["$ref"].asString()), value, path);
        }
        if (schema.isMember("anyOf")) {
            CheckAny(schema["anyOf"], value, path);
        }
        const Json::Value& words = schema["enum"];
        const bool isListed = words.isNull() || std::find(words.begin(), words.end(), value) != words.end();
        if (!isListed || (schema.isMember("const") && schema["const"] != value)) {
            Fail(path, "is none of the allowed values: " + value.toStyledString());
        }
        if (schema.isMember("type")) {
            CheckType(schema, value, path);
        }
    }

    const Json::Value& Definition(const std::string& reference)
    {
        static const std::string START = "#/$defs/";
        const Json::Value& definition = mRoot["$defs"][reference.substr(START.size())];
        EXPECT_TRUE(reference.rfind(START, 0) == 0 && definition.isObject()) << reference;
        return definition;
    }

    void CheckAny(const Json::Value& choices, const Json::Value& value, const std::string& path)
    {
        const std::vector<std::string> before = mViolations;
        for (const Json::Value& choice : choices) {
            mViolations = before;
            Check(choice, value, path);
            if (mViolations == before) {
                return;
            }
        }
    }

    void CheckType(const Json::Value& schema, const Json::Value& value, const std::string& path)
    {
        const std::string type = schema["type"].asString();
        const bool isOfType = type == "object" ? value.isObject()
            : type == "array"                  ? value.isArray()
            : type == "string"                 ? value.isString()
            : type == "boolean"                ? value.isBool()
            : type == "null"                   ? value.isNull()
            : type == "integer"                ? value.isInt64() || value.isUInt64()
                                               : type == "number" && value.isNumeric();
        if (!isOfType) {
            Fail(path, "is no " + type);
        } else if (type == "object") {
            CheckObject(schema, value, path);
        } else if (type == "array") {
            if (value.size() < schema["minItems"].asUInt()) {
                Fail(path, "has too few items");
            }
            for (Json::ArrayIndex item = 0; item < value.size(); ++item) {
                Check(schema["items"], value[item], path + "/" + std::to_string(item));
            }
        } else if (value.isNumeric()) {
            const bool isInRange = (!schema.isMember("minimum") || value.asDouble() >= schema["minimum"].asDouble())
                && (!schema.isMember("maximum") || value.asDouble() <= schema["maximum"].asDouble());
            if (!isInRange) {
                Fail(path, "is out of range");
            }
        }
    }

    void CheckObject(const Json::Value& schema, const Json::Value& value, const std::string& path)
    {
        for (const Json::Value& key : schema["required"]) {
            if (!value.isMember(key.asString())) {
                Fail(path, "lacks " + key.asString());
            }
        }
        const bool listsKeys = schema.isMember("properties") || schema.isMember("additionalProperties");
        for (const std::string& key : listsKeys ? value.getMemberNames() : std::vector<std::string>()) {
            if (schema["properties"].isMember(key)) {
                Check(schema["properties"][key], value[key], path + "/" + key);
            } else if (schema["additionalProperties"].isObject()) {
                Check(schema["additionalProperties"], value[key], path + "/" + key);
            } else {
                Fail(path, "has the unlisted key " + key);
            }
        }
    }

    const Json::Value& mRoot;
    std::vector<std::string> mViolations;
};

} // namespace

Json::Value ParsedJson(const std::string& text)
{
    Json::Value value;
    std::string errors;
    const Json::CharReaderBuilder builder;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    EXPECT_TRUE(reader->parse(text.data(), text.data() + text.size(), &value, &errors)) << errors << text;
    return value;
}

std::string PageOfDocs(const std::string& name)
{
    std::ifstream file(std::string(ARBORIST_SOURCE_DIR) + "/docs/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> Violations(const Json::Value& schema, const Json::Value& value)
{
    return Validator(schema).Run(value);
}
