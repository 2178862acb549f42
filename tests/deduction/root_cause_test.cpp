#include "arborist/deduction/root_cause.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/tree_builder.h"

namespace {

using testing::ElementsAre;

TEST(RootCauseTest, AddAppendsAndSetReplaces)
{
    const auto a = Leaf("A");
    const auto b = Leaf("B");
    RootCause rootCause;
    rootCause.AddEvent(a);
    rootCause.AddEvent(b);
    rootCause.AddPath("A");
    rootCause.AddPath("B");
    EXPECT_THAT(rootCause.GetLeaf(), ElementsAre(a, b));
    EXPECT_THAT(rootCause.GetPaths(), ElementsAre("A", "B"));
    rootCause.SetLeaf({b});
    rootCause.SetPaths({"B"});
    EXPECT_THAT(rootCause.GetLeaf(), ElementsAre(b));
    EXPECT_THAT(rootCause.GetPaths(), ElementsAre("B"));
}

} // namespace
