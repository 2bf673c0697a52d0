// A run as it would have been without extending files, against one that is written out by hand.
#include "Unextended.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Kind = DiskEvent::Kind;

DiskLog LogOf(const std::vector<DiskEvent>& events)
{
    DiskLog log;
    log.File("a");
    log.File("b");
    for (const DiskEvent& event : events) {
        log.Add(event);
    }
    return log;
}

DiskEvent Write(int file, unsigned long long position, const std::string& bytes)
{
    return {.kind = Kind::Write, .file = file, .position = position, .bytes = bytes};
}

DiskEvent Resize(unsigned long long size)
{
    return {.kind = Kind::Resize, .file = 0, .position = size};
}

const DiskEvent kCreate{.kind = Kind::Create, .file = 0};
const DiskEvent kNameSync{.kind = Kind::NameSync, .file = -1};
} // namespace

TEST(Unextended, LeavesAFileAsLongAsItIsBeforeAPoolIsFrozen)
{
    const DiskLog log = LogOf({kCreate, Write(0, 0, "old"), Resize(9), Write(1, 0, "other"),
                               Write(0, 0, "ice"), kNameSync, Write(0, 9, "new")});
    const auto without = WithoutExtensions(log);
    ASSERT_TRUE(without);
    EXPECT_EQ(without->Names(), log.Names());
    EXPECT_EQ(log.At(3)[0].bytes, std::string("old\0\0\0\0\0\0", 9));
    EXPECT_EQ(without->At(3)[0].bytes, "old");
    EXPECT_EQ(without->At(5)[0].bytes, "ice");
    EXPECT_EQ(without->At(7), log.At(7));
}

TEST(Unextended, KeepsTheRoomOfAnImport)
{
    EXPECT_FALSE(
        WithoutExtensions(LogOf({kCreate, Write(0, 0, "old"), Resize(9), Write(0, 3, "copied"),
                                 Write(0, 0, "ice"), Write(0, 3, "header")})));
}

TEST(Unextended, IsNothingWhereNoFileWasExtended)
{
    EXPECT_FALSE(WithoutExtensions(
        LogOf({kCreate, Write(0, 0, "old"), Resize(1), Write(0, 0, "i"), Write(0, 1, "new")})));
    EXPECT_FALSE(WithoutExtensions(LogOf({kCreate, Resize(5), Write(0, 0, "x")})));
}
