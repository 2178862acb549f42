#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/sql/derived_tables.h"
#include "diagnosis/lint/sql/prepared_queries.h"

namespace diagnosis::lint {

namespace {

using rule_source::DataItem;
using rule_source::Param;
using rule_source::ThresholdBean;

constexpr char FIXED_TYPE[] = "lumbraPlusData";

const std::vector<ThresholdBean>& Beans(const Subject& subject)
{
    return subject.rules.commonPart.beans;
}

bool HasNoIds(const DataItem& item)
{
    return item.ids.min.value == 0 && item.ids.max.value == 0;
}

void CheckItemsWithoutIds(const Subject& subject, Report& report)
{
    for (const ThresholdBean& bean : Beans(subject)) {
        for (const DataItem& item : bean.dataItems) {
            if (HasNoIds(item)) {
                report.Add(item.element, "an item of the common part " + Quoted(bean.name) + " asks for no event",
                    {.attribute = item.element.Find("Eventid_Max"), .help = "name an id in \"Eventid_Max\""});
            }
        }
    }
}

void CheckEmptyRanges(const Subject& subject, Report& report)
{
    for (const ThresholdBean& bean : Beans(subject)) {
        const auto& items = bean.dataItems;
        const bool isEmpty = !items.empty() && bean.type != FIXED_TYPE
            && std::all_of(items.begin(), items.end(), [](const DataItem& item) { return item.ids.IsEmpty(); });
        if (isEmpty && std::none_of(items.begin(), items.end(), HasNoIds)) {
            report.Add(items.front().element, "the common part " + Quoted(bean.name) + " has empty ranges alone",
                {.attribute = items.front().element.Find("Eventid_Min"),
                    .help = "name the lowest id in \"Eventid_Min\" and the highest in \"Eventid_Max\""});
        }
    }
}

void CheckManyIds(const Subject& subject, Report& report)
{
    static constexpr std::int64_t MANY = 10'000;
    for (const ThresholdBean& bean : Beans(subject)) {
        std::int64_t ids = 0;
        for (const DataItem& item : bean.dataItems) {
            ids += item.ids.Size();
        }
        if (ids > MANY && bean.type != FIXED_TYPE) {
            report.Add(bean.element,
                "the common part " + Quoted(bean.name) + " asks for " + std::to_string(ids) + " ids",
                {.attribute = bean.element.Find("name")});
        }
    }
}

bool HasBlank(std::string_view name)
{
    return name.find_first_of(" \t\r\n") != std::string_view::npos;
}

void CheckColumns(const Subject& subject, Report& report)
{
    for (const ThresholdBean& bean : Beans(subject)) {
        if (bean.dataItems.empty()) {
            continue;
        }
        const std::string error = subject.queries.ErrorOfTable(bean);
        if (!error.empty()) {
            report.Add(bean.element, "the table of the common part " + Quoted(bean.name) + " can't be made: " + error,
                {.attribute = bean.element.Find("name"),
                    .help = "give tables and columns plain names that are no words of SQL; \"_ID\" and "
                            "\"occurrence_time\" are there already"});
            continue;
        }
        for (const Param& param : bean.dataItems.front().params.Params()) {
            if (HasBlank(param.key)) {
                report.Add(param.element, "the column " + Quoted(param.key) + " of the common part " + Quoted(bean.name)
                        + " is called by its first word", {.attribute = param.element.Find("key")});
            }
        }
    }
}

void CheckStringColumns(const Subject& subject, Report& report)
{
    for (const ThresholdBean& bean : Beans(subject)) {
        if (bean.dataItems.empty()) {
            continue;
        }
        for (const Param& param : bean.dataItems.front().params.Params()) {
            if (LowerName(param.type) == "string" && !param.key.empty()) {
                report.Add(param.element, "the column " + Quoted(param.key) + " of the common part " + Quoted(bean.name)
                        + " makes numbers of texts",
                    {.attribute = param.element.Find("type"), .help = "write type=\"text\""});
            }
        }
    }
}

std::unordered_set<std::string> KeysOf(const DataItem& item)
{
    std::unordered_set<std::string> keys;
    for (const Param& param : item.params.Params()) {
        keys.insert(LowerName(param.key));
    }
    return keys;
}

void CheckLaterColumns(const Subject& subject, Report& report)
{
    for (const ThresholdBean& bean : Beans(subject)) {
        if (bean.dataItems.size() < 2) {
            continue;
        }
        const auto columns = KeysOf(bean.dataItems.front());
        for (auto item = bean.dataItems.begin() + 1; item != bean.dataItems.end(); ++item) {
            for (const Param& param : item->params.Params()) {
                if (columns.count(LowerName(param.key)) == 0) {
                    report.Add(param.element, "the common part " + Quoted(bean.name) + " gets no column "
                            + Quoted(param.key), {.attribute = param.element.Find("key"),
                            .help = "name all columns in the first \"alarmId\""});
                }
            }
        }
    }
}

void CheckNamesOfBeans(const Subject& subject, Report& report)
{
    std::unordered_map<std::string, const ThresholdBean*> byName;
    for (const ThresholdBean& bean : Beans(subject)) {
        const auto [first, isNew] = byName.emplace(LowerName(bean.name), &bean);
        if (!isNew && !bean.name.empty()) {
            report.Add(bean.element, "another common part in line " + std::to_string(first->second->element.Line())
                    + " is called " + Quoted(first->second->name) + ", too", {.attribute = bean.element.Find("name")});
        }
    }
}

void CheckFixedTable(const Subject& subject, Report& report)
{
    for (const ThresholdBean& bean : Beans(subject)) {
        const auto item = std::find_if_not(bean.dataItems.begin(), bean.dataItems.end(), HasNoIds);
        if (bean.type == FIXED_TYPE && item != bean.dataItems.end()) {
            report.Add(item->element,
                "the common part " + Quoted(bean.name) + " has one fixed row, and asks for events",
                {.attribute = item->element.Find("Eventid_Max"), .help = "leave the \"type\" empty"});
        }
    }
}

constexpr Check CHECKS[] = {
    {"A801", Severity::ERROR, CheckClass::STATIC, "item of a common part without an event",
        "An \"alarmId\" of \"retrieveLumbraData\" in which both ids are missing, 0 or no number.",
        "the building of tables ends there: neither this table nor those of later entries are made",
        CheckItemsWithoutIds},
    {"A802", Severity::ERROR, CheckClass::STATIC, "common part with empty ranges",
        "A \"retrieveLumbraData\" in which every \"Eventid_Min\" is above its \"Eventid_Max\".",
        "the events from 902000000 on of the last seven days are taken in place of none", CheckEmptyRanges},
    {"A803", Severity::INFO, CheckClass::STATIC, "common part with very many ids",
        "A \"retrieveLumbraData\" that asks for more than 10000 ids.", "all of them are spelled out in one statement",
        CheckManyIds},
    {"A804", Severity::ERROR, CheckClass::SQL, "table that can't be made",
        "A name of a table or a \"key\" of a column that SQLite refuses: a word of SQL, a column that is there "
        "already, whatever its case; or a \"key\" with a blank in it.",
        "the table is dropped and can't be made again, and queries on it fail; a column with a blank is called by its "
        "first word and never filled",
        CheckColumns},
    {"A805", Severity::WARNING, CheckClass::STATIC, "column of the type \"string\"",
        "A column of a common part whose type is \"string\".",
        "SQLite does not know the word and makes numbers of texts that look like one: 007 becomes 7",
        CheckStringColumns},
    {"A806", Severity::WARNING, CheckClass::STATIC, "column that a later item names",
        "A \"param\" of a second or later \"alarmId\" of \"retrieveLumbraData\" that the first one lacks.",
        "the first item names the columns of the table, and this one is not made", CheckLaterColumns},
    {"A807", Severity::ERROR, CheckClass::STATIC, "two common parts with one name",
        "Two \"thresholdsOrLumbraData\" with one name. SQLite ignores case.",
        "the later one drops the table of the earlier, and rules find the thresholds of the earlier",
        CheckNamesOfBeans},
    {"A822", Severity::INFO, CheckClass::STATIC, "events of a table with one fixed row",
        "A \"thresholdsOrLumbraData\" of the type \"lumbraPlusData\" that asks for events.",
        "its table has one fixed row, and no event is read", CheckFixedTable},
};

} // namespace

std::span<const Check> CommonPartChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
