#ifndef ARBORIST_TESTS_TOOLS_JSON_SCHEMA_H
#define ARBORIST_TESTS_TOOLS_JSON_SCHEMA_H

#include <string>
#include <vector>

#include <json/value.h>

/// Parses one JSON text; a text that is none fails the test.
Json::Value ParsedJson(const std::string& text);

/// A page of docs/ as one text.
std::string PageOfDocs(const std::string& name);

/// The violations of the schema by `value`: "results/0/tree: lacks id". Supports the words of JSON Schema that our
/// schemas use and reports any other. A key that the schema doesn't list is a violation, although readers allow it.
std::vector<std::string> Violations(const Json::Value& schema, const Json::Value& value);

#endif
