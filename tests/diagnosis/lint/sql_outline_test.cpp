#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/lint/lint.h"
#include "tests/support/case_name.h"

namespace {

using diagnosis::rule_source::RuleSetFiles;
using diagnosis::rule_source::SourceFile;

constexpr char BEFORE_SQL[] = R"(<Rules><RuleList><Laptop><rule><commandRule name="r" detectScene="1">
<referenceCommonPart><commonPartName>t</commonPartName></referenceCommonPart>
<queryReturnParam><params><param id="1" key="n" type="int"/></params></queryReturnParam>
<AnalysisMethod type="SQL"><SQL_Condition><SQLItem><sql><![CDATA[)";
constexpr char BEHIND_SQL[] = R"(]]></sql></SQLItem></SQL_Condition></AnalysisMethod></commandRule></rule></Laptop>
</RuleList><RuleCommonPart><Laptop><commonPart><thresholdsOrLumbraData name="t"><retrieveLumbraData>
<alarmId Eventid_Max="5"><params><param id="1" key="a" type="int"/></params></alarmId>
</retrieveLumbraData></thresholdsOrLumbraData></commonPart></Laptop></RuleCommonPart></Rules>)";

// The ids of the checks of SQL that find something in a query, in order.
std::string FoundIn(const std::string& sql)
{
    RuleSetFiles files;
    files.rules = SourceFile::Of("FaultTreeRules.xml", BEFORE_SQL + sql + BEHIND_SQL);
    std::string found;
    for (const auto& finding : diagnosis::lint::LintFiles(files, {}).findings) {
        const std::string id = finding.check->id;
        if (id.starts_with("A6") && id != "A612") {
            found += (found.empty() ? "" : " ") + id;
        }
    }
    return found;
}

struct QueryCase {
    const char* name;
    const char* sql;
    /// The checks that find something in it.
    const char* found;
};
void PrintTo(const QueryCase& query, std::ostream* out) { *out << query.sql; }

class QueryOf : public testing::TestWithParam<QueryCase> {};

TEST_P(QueryOf, IsLintedForItsOutlineAlone)
{
    EXPECT_EQ(FoundIn(GetParam().sql), GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(All, QueryOf, testing::Values(
    QueryCase{"PlainAggregate", "select count(*) from t", ""},
    QueryCase{"OrInParentheses", "select count(*) from t where (a = 1 or a = 2)", ""},
    QueryCase{"OrInACase", "select count(*) from t where case when a = 1 or a = 2 then 1 else 0 end", ""},
    QueryCase{"OrInAText", "select count(*) from t where a = ' or '", ""},
    QueryCase{"OrInAQuotedName", "select count(*) as \"x or y\" from t where a = 1", ""},
    QueryCase{"OrBeforeTheLastOfTwoAnds", "select count(*) from t where a = 1 OR a = 2 and a = 3", "A601"},
    QueryCase{"OrderInAnInnerQuery", "select max(a) from (select * from t where 1 order by a) where 1", ""},
    QueryCase{"ColumnNamedLikeAClause", "select max(a) as \"limit\" from t", ""},
    QueryCase{"OrderBy", "select max(a) from t order by 1", "A602"},
    QueryCase{"Limit", "select a from t limit 1", "A602"},
    QueryCase{"SemicolonInAText", "select count(*) from t where a = ';'", ""},
    QueryCase{"SemicolonBeforeAComment", "select count(*) from t; -- all", "A603 A604"},
    QueryCase{"CommentWithALineEnd", "select count(*) from t -- all\n", ""},
    QueryCase{"CommentInAText", "select count(*) from t where a = '--'", ""},
    QueryCase{"OpenComment", "select count(*) from t /* all", "A604"},
    QueryCase{"CapitalsWithLettersElsewhere", "select count(*) from (select * from t where 1) WHERE a = 1", ""},
    QueryCase{"LettersInAnInnerQuery", "select count(*) from (select * from t where a = 1)", "A606"},
    QueryCase{"LettersBehindAJoin",
        "select count(*) from t join (select 1 as b from t as u where u.a = 1) on a = b", ""},
    QueryCase{"UnionInAnInnerQuery", "select count(*) from (select * from t union all select * from t)", ""},
    QueryCase{"AggregateOfAnInnerQuery", "select (select max(a) from t) from t", "A610"},
    QueryCase{"MaximumOfTwoValues", "select max(a, 5) from t", "A610"},
    QueryCase{"MaximumOfOneCall", "select max(coalesce(a, 5)) from t", ""},
    QueryCase{"AggregateWithinACall", "select coalesce(max(a), 0) from t", ""},
    QueryCase{"AggregateInAWindow", "select count(*) over () from t", "A610"},
    QueryCase{"OneRowFromAnInnerQuery",
        "select a from (select a, occurrence_time from t order by a limit 1) where 1", ""},
    QueryCase{"TwoInnerQueries",
        "select 1 from (select max(occurrence_time) as occurrence_time from t), (select a from t) where 1", "A610"},
    QueryCase{"CommonTableExpression", "with u as (select * from t) select count(*) from u", ""},
    QueryCase{"TwoTimes", "select count(*) from t, t as u where 1", "A608"},
    QueryCase{"TimeOfOneTable", "select count(*) from t as u", ""},
    QueryCase{"TableInQuotes", "select count(*) from \"T\"", ""},
    QueryCase{"OrInOtherQuotes", "select count(*) as [x or y], 1 as `x or y` from t where a = 1", ""},
    QueryCase{"NamesOfAnyLetters", "select count(*) as \xC3\xA4$1 from t where a = 1", ""},
    QueryCase{"LimitOfTwo", "select a from t limit 2", "A602 A610"},
    QueryCase{"AggregateOfGroups", "select count(*) from t group by a", "A602 A610"},
    QueryCase{"ColumnNamedLikeAWord", "select max(\"group\") as \"order\" from t", ""},
    QueryCase{"InnerQueryThatIsJoined", "select b from (select max(a) as b from t) join (select 1 as c)", "A608 A610"},
    QueryCase{"WithoutAFrom", "select 5", "A608"},
    QueryCase{"OpenText", "select count(*) from t where a = 'x", "A625"},
    QueryCase{"NoStatement", " /* none */ ", "A625"},
    QueryCase{"UnclosedParenthesis", "select count(* from t", "A625"},
    QueryCase{"Pragma", "pragma user_version = 5", "A626"},
    QueryCase{"DeleteBehindAWith", "with u as (select 1) delete from t where 1", "A626"}),
    CaseName());

TEST(SqlOutlines, TakeTimeInProportionToTheQuery)
{
    std::string sql;
    for (int depth = 0; depth < 100'000; ++depth) {
        sql += depth % 2 == 0 ? "select max(1, " : "select a from (";
    }
    EXPECT_NE(FoundIn(sql), "");
}

} // namespace
