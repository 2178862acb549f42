#include "diagnosis/lint/sql/derived_tables.h"

#include <algorithm>

namespace diagnosis::lint {

namespace {

using rule_source::Param;
using rule_source::ThresholdBean;

// Limits its work: a name of the rule file can contain a query that never ends.
std::unique_ptr<Connection> OpenInMemory()
{
    auto database = std::make_unique<Connection>();
    if (!database->OpenInMemory()) {
        return nullptr;
    }
    database->LimitToFile();
    return database;
}

std::string ColumnOf(const Param& param)
{
    const std::string type = LowerName(param.type);
    const char* const suffix = type == "string" || type == "text" ? " NOT NULL DEFAULT ''"
        : type == "int" || type == "long" || type == "integer"   ? " NOT NULL DEFAULT 0"
                                                                 : "";
    return param.key.empty() ? "" : ", " + std::string(param.key) + " " + std::string(param.type) + suffix;
}

// The same statement as the engine's.
std::string StatementOf(const ThresholdBean& bean)
{
    std::string sql = "CREATE TABLE " + std::string(bean.name) + " (_ID integer primary key autoincrement";
    for (const Param& param : bean.dataItems.front().params.Params()) {
        sql += ColumnOf(param);
    }
    return sql + ", occurrence_time int NOT NULL DEFAULT 0);";
}

// The name behind the point of a word such as "main.t", or the text in the quotes of a name; otherwise empty.
std::string_view NameIn(const SqlToken& token)
{
    if (token.kind == SqlToken::Kind::WORD) {
        return token.text.substr(token.text.find('.') + 1); // "main.t"; without a point all of it
    }
    const bool isName = token.kind == SqlToken::Kind::NAME && token.text.size() > 2;
    return isName ? token.text.substr(1, token.text.size() - 2) : std::string_view();
}

} // namespace

std::string LowerName(std::string_view name)
{
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(),
        [](char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; });
    return lower;
}

DerivedTables::DerivedTables(const rule_source::CommonPart& common)
{
    for (const ThresholdBean& bean : common.beans) {
        if (!bean.dataItems.empty()) {
            mBeans[LowerName(bean.name)] = &bean;
        }
    }
}

bool DerivedTables::Make(const std::string& name, const ThresholdBean& bean)
{
    if (mMade.count(name) != 0) {
        return true;
    }
    auto statement = mDatabase->Prepare(StatementOf(bean));
    if (!statement) {
        return false;
    }
    statement->Step();
    if (mDatabase->HasError()) {
        return false;
    }
    mMade.insert(name);
    mCreated.insert(&bean);
    return true;
}

Connection* DerivedTables::For(std::span<const SqlToken> tokens)
{
    std::set<std::string> names;
    for (const SqlToken& token : tokens) {
        std::string name = LowerName(NameIn(token));
        if (mBeans.count(name) != 0) {
            names.insert(std::move(name));
        }
    }
    if (names.size() > MOST_TABLES) {
        return nullptr;
    }
    if (mDatabase == nullptr || mMade.size() + names.size() > MOST_TABLES) {
        mDatabase = OpenInMemory();
        mMade.clear();
    }
    const bool isMade = mDatabase != nullptr && std::all_of(names.begin(), names.end(),
        [this](const std::string& name) { return Make(name, *mBeans.at(name)); });
    return isMade ? mDatabase.get() : nullptr;
}

std::string DerivedTables::ErrorOf(const ThresholdBean& bean)
{
    const auto database = OpenInMemory();
    return database == nullptr || database->Prepare(StatementOf(bean)) ? "" : database->GetError();
}

} // namespace diagnosis::lint
