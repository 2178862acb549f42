#include "arborist/frame/fault_tree_result.h"

#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/loading/fault_item.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

TEST(FaultTreeResultTest, StartsWithoutFault)
{
    const FaultTreeResult result("tree");
    EXPECT_EQ(result.mTreeId, "tree");
    EXPECT_EQ(result.mVersion, "");
    EXPECT_FALSE(result.mIsFault);
    EXPECT_THAT(result.mRootCauseResults, IsEmpty());
    EXPECT_THAT(result.GetTreeNodes(), IsEmpty());
}

TEST(FaultTreeResultTest, GivesTheNodesInOrder)
{
    FaultTreeResult result("tree");
    for (const char* id : {"b", "a", "b"}) {
        result.mRootCauseResults.push_back(std::make_shared<FaultTreeResult::RootCauseResult>());
        result.mRootCauseResults.back()->mNode = std::make_shared<FaultTreeNode>(FaultTreeNode{id, "", ""});
    }
    std::string ids;
    for (const auto& node : result.GetTreeNodes()) {
        ids += node->mId;
    }
    EXPECT_EQ(ids, "bab");
    EXPECT_EQ(result.GetTreeNodes()[1], result.mRootCauseResults[1]->mNode);
}

struct OperationCase { const char* name; const char* extra; const char* expected; };
void PrintTo(const OperationCase& operationCase, std::ostream* out) { *out << operationCase.name; }

class GetOperation : public testing::TestWithParam<OperationCase> {
protected:
    LogCapture mLog;
};

TEST_P(GetOperation, OfTextThatParsesIsSilent)
{
    EXPECT_EQ((FaultTreeResult::RepairInfo{"R1", GetParam().extra}.GetOperation()), GetParam().expected);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

// The inner key is spelled with an escape: in plain it would not be looked for.
INSTANTIATE_TEST_SUITE_P(Table, GetOperation, testing::Values(
    OperationCase{"Empty", "", ""},
    OperationCase{"InTheInnerObject", R"({"R1": "{\"\u006fperation\": \"clean\"}"})", "clean"},
    OperationCase{"NumberBecomesText", R"({"R1": "{\"\u006fperation\": 7}"})", "7"},
    OperationCase{"SpelledOutInPlainCountsAsNone", R"({"R1": "{\"operation\": \"clean\"}"})", ""},
    OperationCase{"SpelledOutAnywhere", "operation", ""},
    OperationCase{"InnerObjectWithoutIt", R"({"R1": "{\"other\": \"clean\"}"})", ""},
    OperationCase{"OtherId", R"({"R2": "{\"\u006fperation\": \"clean\"}"})", ""},
    OperationCase{"InnerTextIsNoJson", R"({"R1": "clean"})", ""},
    OperationCase{"InnerTextIsAnArray", R"({"R1": "[1]"})", ""},
    OperationCase{"MemberIsAnObject", R"({"R1": {"other": "clean"}})", ""},
    OperationCase{"OuterIsAnArray", R"(["R1"])", ""},
    OperationCase{"InnerValueIsAnObject", R"({"R1": "{\"\u006fperation\": {}}"})", ""},
    OperationCase{"EmptyInnerTextLetsTheOuterAnswer", R"({"R1": "", "\u006fperation": "outer"})", "outer"}),
    CaseName());

TEST(FaultTreeResultTest, OperationOfBrokenTextLogsAndGoesOnWithWhatWasRead)
{
    const LogCapture log;
    const FaultTreeResult::RepairInfo repair{"R1", R"({"R1": "{\"\u006fperation\": \"clean\"}", "x" )"};
    EXPECT_EQ(repair.GetOperation(), "clean");
    EXPECT_THAT(log.Lines(FT::LEVEL_ERROR),
        ElementsAre(StartsWith("FUNc:FaultTreeResult::RepairInfo::GetOperation: parseJson err. * Line 1, Column ")));
}

TEST(FaultTreeResultTest, OperationOfTextNestedTooDeepLogsAndIsEmpty)
{
    const LogCapture log;
    EXPECT_EQ((FaultTreeResult::RepairInfo{"R1", std::string(5000, '[')}.GetOperation()), "");
    EXPECT_THAT(log.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:FaultTreeResult::RepairInfo::GetOperation: parseJson err. "
                    "Exceeded stackLimit in readValue(). "));
}

TEST(FaultItemTest, KeepsWhatItIsGiven)
{
    FaultItem item;
    EXPECT_EQ(item.GetFaultItemId(), "");
    EXPECT_THAT(item.GetResolutionSuggestions(), IsEmpty());
    EXPECT_THAT(item.GetRepairInfo(), IsEmpty());
    item.SetFaultItemId("840001001");
    item.SetResolutionSuggestions({"S1", "S2"});
    item.SetRepairInfo({{"R1", "extra"}});
    EXPECT_EQ(item.GetFaultItemId(), "840001001");
    EXPECT_THAT(item.GetResolutionSuggestions(), ElementsAre("S1", "S2"));
    ASSERT_EQ(item.GetRepairInfo().size(), 1U);
    EXPECT_EQ(item.GetRepairInfo()[0].mId, "R1");
    EXPECT_EQ(item.GetRepairInfo()[0].mExtra, "extra");
}

} // namespace
