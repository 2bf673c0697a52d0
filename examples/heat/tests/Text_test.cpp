#include "Progress.h"
#include "Text.h"

#include <gtest/gtest.h>

#include <sstream>

namespace heat {
namespace {

TEST(Text, GroupsDigitsByThousands)
{
    EXPECT_EQ(Grouped(0), "0");
    EXPECT_EQ(Grouped(999), "999");
    EXPECT_EQ(Grouped(1000), "1,000");
    EXPECT_EQ(Grouped(18446744073709551615u), "18,446,744,073,709,551,615");
}

TEST(Text, CountsOneWithoutPlural)
{
    EXPECT_EQ(Counted(0, "pool"), "0 pools");
    EXPECT_EQ(Counted(1, "pool"), "1 pool");
    EXPECT_EQ(Counted(7000, "pool"), "7,000 pools");
}

TEST(Progress, WritesOneLineWhereNothingCanMove)
{
    std::ostringstream out;
    Progress progress(out, false, 8);
    progress.Show(1);
    progress.Show(4);
    progress.Finish("half");
    EXPECT_EQ(out.str(), "   [####################....................] step 4 of 8  half\n");
}

TEST(Progress, WritesOverItsLineOnATerminalWhenTheBarGrows)
{
    std::ostringstream out;
    Progress progress(out, true, 400);
    progress.Show(10);
    progress.Show(11); // not another cell yet
    progress.Show(20);
    EXPECT_EQ(out.str(), "\r   [#.......................................] step 10 of 400"
                         "\r   [##......................................] step 20 of 400");
}

} // namespace
} // namespace heat
