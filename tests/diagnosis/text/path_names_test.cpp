#include "diagnosis/text/path_names.h"

#include <gtest/gtest.h>

namespace {

TEST(PathNames, EveryPlaceOfAPathIsNamed)
{
    diagnosis::PathNames names;
    names.Add("/tmp/x/databases", "db");
    EXPECT_EQ(names.Shown("open /tmp/x/databases/a and /tmp/x/databases/b, not /tmp/y"), "open db/a and db/b, not /tmp/y");
}

} // namespace
