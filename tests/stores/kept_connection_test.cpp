#include "arborist/stores/kept_connection.h"

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace {

struct Connection {
    static inline int open = 0;
    Connection() { ++open; }
    ~Connection() { --open; }
};

class KeptConnectionTest : public testing::Test {
protected:
    TempDir mDir;
    std::string mPath = mDir.Write("a.db", "x");
    KeptConnection<Connection> mKept;
};

TEST_F(KeptConnectionTest, StaysWhileItsFileIsUnchanged)
{
    EXPECT_EQ(mKept.Find(mPath), nullptr);
    Connection& made = mKept.Make(mPath);
    EXPECT_EQ(mKept.Find(mPath), &made);
    EXPECT_EQ(mKept.Find(mPath), &made);
    EXPECT_EQ(mKept.GetPath(), mPath);
    EXPECT_EQ(&mKept.Get(), &made);
}

TEST_F(KeptConnectionTest, IsNotFoundForAnotherFileOrOneThatChangedOrIsGone)
{
    mKept.Make(mPath);
    EXPECT_EQ(mKept.Find(mDir.Write("b.db", "x")), nullptr);
    mDir.Write("a.db", "longer");
    EXPECT_EQ(mKept.Find(mPath), nullptr);
    mKept.Make(mDir.Path("gone.db"));
    EXPECT_EQ(mKept.Find(mDir.Path("gone.db")), nullptr);
}

TEST_F(KeptConnectionTest, IsLetGoBeforeTheNextIsMade)
{
    mKept.Make(mPath);
    mKept.Make(mPath);
    EXPECT_EQ(Connection::open, 1);
}

TEST_F(KeptConnectionTest, IsGoneOnceItIsClosed)
{
    mKept.Make(mPath);
    mKept.Close();
    EXPECT_EQ(Connection::open, 0);
    EXPECT_EQ(mKept.Find(mPath), nullptr);
    mKept.Close();
}

TEST_F(KeptConnectionTest, IsMadeForNoFileWhenThereWasNone)
{
    mKept.Get();
    EXPECT_EQ(Connection::open, 1);
    EXPECT_EQ(mKept.Find(""), nullptr);
}

} // namespace
