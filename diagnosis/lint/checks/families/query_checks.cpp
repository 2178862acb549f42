#include <algorithm>
#include <unordered_map>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/command_rules.h"
#include "diagnosis/lint/sql/derived_tables.h"
#include "diagnosis/lint/sql/prepared_queries.h"

namespace diagnosis::lint {

namespace {

using rule_source::CommandRule;
using rule_source::Param;
using State = PreparedQuery::State;

void AddAboutQuery(const PreparedQuery& query, const std::string& what, const char* help, Report& report)
{
    const CommandRule& rule = *query.rule;
    report.Add(rule.sqlElement ? rule.sqlElement : rule.sqlItem,
        "the query of the rule " + Quoted(rule.name) + " " + what,
        {.help = help, .isAboutText = true});
}

void CheckTimeColumn(const Subject& subject, Report& report)
{
    for (const PreparedQuery& query : subject.queries.All()) {
        if (query.state == State::PREPARED && query.limitedError.find("occurrence_time") != std::string::npos) {
            AddAboutQuery(query, "cannot be limited in time: " + query.limitedError,
                "let the tables of \"from\" give one column \"occurrence_time\"", report);
        }
    }
}

using Places = std::unordered_map<std::string, std::size_t>;

Places PlacesOf(const std::vector<std::string>& columns)
{
    Places places;
    for (std::size_t place = 0; place < columns.size(); ++place) {
        places.emplace(LowerName(columns[place]), place);
    }
    return places;
}

// The first parameter that gets the value of another column although the query has a column with its name.
const Param* FirstMisplaced(const PreparedQuery& query)
{
    const auto& params = query.rule->params.Params();
    const Places places = PlacesOf(query.columns);
    for (std::size_t place = 0; place < std::min(params.size(), query.columns.size()); ++place) {
        const std::string key = LowerName(params[place].key);
        if (key != LowerName(query.columns[place]) && places.count(key) != 0) {
            return &params[place];
        }
    }
    return nullptr;
}

void CheckOrder(const Subject& subject, Report& report)
{
    for (const PreparedQuery& query : subject.queries.All()) {
        if (query.state != State::PREPARED || IsNormalizing(*query.rule)) {
            continue;
        }
        if (const Param* const param = FirstMisplaced(query)) {
            const auto place = static_cast<std::size_t>(param - query.rule->params.Params().data());
            AddAboutQuery(query, "gives the parameter " + Quoted(param->id) + ", " + Quoted(param->key)
                    + ", its column " + Quoted(query.columns[place]),
                "columns go by place: select them in the order of the parameters' ids as texts, \"10\" before \"2\"",
                report);
        }
    }
}

std::string CountOf(std::size_t count, const char* word)
{
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

void CheckColumnCount(const Subject& subject, Report& report)
{
    for (const PreparedQuery& query : subject.queries.All()) {
        const std::size_t params = query.rule->params.Params().size();
        if (query.state == State::PREPARED && !IsNormalizing(*query.rule) && query.columns.size() < params) {
            AddAboutQuery(query, "gives " + CountOf(query.columns.size(), "column") + " for "
                    + CountOf(params, "parameter"), "", report);
        }
    }
}

void CheckNormalizedColumns(const Subject& subject, Report& report)
{
    static constexpr std::size_t LEAST = 4;
    for (const PreparedQuery& query : subject.queries.All()) {
        if (query.state == State::PREPARED && IsNormalizing(*query.rule) && query.columns.size() < LEAST) {
            AddAboutQuery(query, "gives " + CountOf(query.columns.size(), "column")
                    + ", and the times of a normalization are read from the fourth",
                "scale in SQL, and leave the type \"normalization\" out", report);
        }
    }
}

void CheckPreparation(const Subject& subject, Report& report)
{
    for (const PreparedQuery& query : subject.queries.All()) {
        if (query.state == State::FAILED) {
            AddAboutQuery(query, "fails: " + query.error, "", report);
        }
    }
}

void CheckChange(const Subject& subject, Report& report)
{
    for (const PreparedQuery& query : subject.queries.All()) {
        if (query.state == State::CHANGES) {
            AddAboutQuery(query, "is no query", "write a \"select\"", report);
        }
    }
}

constexpr Check CHECKS[] = {
    {"A608", Severity::ERROR, CheckClass::SQL, "query without the time that limits it",
        "A query whose outermost \"from\" gives no column \"occurrence_time\", or several.",
        "the time limit that is put behind the query makes it fail, and the rule is false", CheckTimeColumn},
    {"A609", Severity::ERROR, CheckClass::SQL, "columns in another order than the parameters",
        "A query that selects the key of a parameter at the place of another. Parameters are in the order of their "
        "ids as texts, so that \"10\" comes before \"2\".",
        "columns are matched by place, and the values are swapped", CheckOrder},
    {"A611", Severity::WARNING, CheckClass::SQL, "fewer columns than parameters",
        "A query that gives fewer columns than the rule has parameters.",
        "the last parameters have no value, and what is tested on them is false", CheckColumnCount},
    {"A619", Severity::ERROR, CheckClass::SQL, "normalization of fewer than four columns",
        "A query of the type \"normalization\" that gives fewer than four columns.",
        "the times are read from the fourth column; without it they are 0, and the rule is false",
        CheckNormalizedColumns},
    {"A625", Severity::ERROR, CheckClass::SQL, "query that fails",
        "A query that SQLite refuses on the tables of the common part. Of a query on copied databases only the grammar "
        "is known.",
        "the query fails, and the rule is false", CheckPreparation},
    {"A626", Severity::ERROR, CheckClass::SQL, "statement that is no query",
        "A statement of a rule that is no \"select\".", "it is run, and changes the database", CheckChange},
};

} // namespace

std::span<const Check> QueryChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
