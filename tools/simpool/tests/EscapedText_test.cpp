#include "EscapedText.h"

#include <gtest/gtest.h>

#include <string>

using namespace simpool;

TEST(EscapedText, LeavesWhatCanBeSeen)
{
    EXPECT_EQ(Escaped("run 7.sim"), "run 7.sim");
    EXPECT_EQ(Escaped("Wärme \u20ac \U0001F525"), "Wärme \u20ac \U0001F525");
}

TEST(EscapedText, DisarmsWhatATerminalWouldObey)
{
    EXPECT_EQ(Escaped("\x1b[31mred"), "\\x1b[31mred");
    EXPECT_EQ(Escaped("a\nb\tc\x7f"), "a\\x0ab\\x09c\\x7f");
    EXPECT_EQ(Escaped("\xc2\x9b"), "\\xc2\\x9b");          // a control sequence in one character
    EXPECT_EQ(Escaped("\xe2\x80\xae"), "\\xe2\\x80\\xae"); // turns the order of letters around
}

TEST(EscapedText, ShowsWhatIsNoUtf8ByteByByte)
{
    EXPECT_EQ(Escaped("\xff"), "\\xff");
    EXPECT_EQ(Escaped("\xc3"), "\\xc3");
    EXPECT_EQ(Escaped("\xc0\xaf"), "\\xc0\\xaf");                   // longer than it need be
    EXPECT_EQ(Escaped("\xed\xa0\x80"), "\\xed\\xa0\\x80");          // half of a pair
    EXPECT_EQ(Escaped("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80"); // beyond the last
    EXPECT_EQ(Escaped("\xc3"
                      "A"),
              "\\xc3A");
}

TEST(EscapedText, GivesBackEveryByte)
{
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    bytes += "\\x41 \\ \u20ac";
    EXPECT_EQ(Unescaped(Escaped(bytes)), bytes);
    EXPECT_EQ(Unescaped("\\x41"), "A");
    EXPECT_FALSE(Unescaped("\\").has_value());
    EXPECT_FALSE(Unescaped("\\x4").has_value());
    EXPECT_FALSE(Unescaped("\\xg0").has_value());
    EXPECT_FALSE(Unescaped("\\n41").has_value());
}

TEST(EscapedText, TellsSizesForPeopleAndExactly)
{
    EXPECT_EQ(Grouped(999), "999");
    EXPECT_EQ(Grouped(18446744073709551615ULL), "18,446,744,073,709,551,615");
    EXPECT_EQ(HumanSize(1023), "1023 B");
    EXPECT_EQ(HumanSize(1024), "1.0 KiB");
    EXPECT_EQ(HumanSize(1048575), "1.0 MiB");
    EXPECT_EQ(HumanSize(18446744073709551615ULL), "16.0 EiB");
    EXPECT_EQ(FullSize(1), "1 byte");
    EXPECT_EQ(FullSize(1268432), "1.2 MiB (1,268,432 bytes)");
    EXPECT_EQ(Counted(2, "pool"), "2 pools");
}
