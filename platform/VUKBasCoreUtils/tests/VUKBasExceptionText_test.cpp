#include "VUKBasExceptionText.h"

#include <gtest/gtest.h>

#include <climits>

TEST(ExceptionText, EmptiesTheBufferThatItIsGiven)
{
    char buffer[8] = "old";
    const VUKBasExceptionText text(buffer, sizeof(buffer));
    EXPECT_STREQ(buffer, "");
}

TEST(ExceptionText, JoinsTextsAndNumbers)
{
    char buffer[80];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.Append("from ").AppendSigned(LLONG_MIN).Append(" to ").AppendUnsigned(ULLONG_MAX);
    EXPECT_STREQ(buffer, "from -9223372036854775808 to 18446744073709551615");
}

TEST(ExceptionText, FillsTheBufferToItsLastCharacter)
{
    char buffer[6];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.Append("abc").Append("de");
    EXPECT_STREQ(buffer, "abcde");
}

TEST(ExceptionText, MarksWhereItWasCutAndTakesNothingMore)
{
    char buffer[9];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.Append("abcdef").Append("ghi").Append("x").AppendSigned(1);
    EXPECT_STREQ(buffer, "abcde...");
}

TEST(ExceptionText, CutsEvenWhenTheMarkMustReplaceWhatStandsThere)
{
    char buffer[6];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.Append("abcde").Append("f");
    EXPECT_STREQ(buffer, "ab...");
}

TEST(ExceptionText, HasRoomForTheMarkAloneAtLeast)
{
    char buffer[4];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.Append("abcd");
    EXPECT_STREQ(buffer, "...");
}

TEST(ExceptionText, CutsBetweenCharactersAndNotInsideOne)
{
    char buffer[9];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.Append("abcd\xE2\x82\xAC"
                "efgh"); // a euro sign in the fifth to seventh byte
    EXPECT_STREQ(buffer, "abcd...");
}

TEST(ExceptionText, QuotesATextOnOneLine)
{
    char buffer[80];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.AppendQuoted("a\"b\\c\nd\x1B[0m\x7F", 64);
    EXPECT_STREQ(buffer, "\"a\\\"b\\\\c\\x0Ad\\x1B[0m\\x7F\"");
}

TEST(ExceptionText, QuotesTextsBeyondAsciiAsTheyAre)
{
    char buffer[80];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.AppendQuoted("Gr\xC3\xB6\xC3\x9F"
                      "e \xE2\x82\xAC",
                      64);
    EXPECT_STREQ(buffer, "\"Gr\xC3\xB6\xC3\x9F"
                         "e \xE2\x82\xAC\"");
}

TEST(ExceptionText, QuotesTheEmptyText)
{
    char buffer[8];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.AppendQuoted("", 4);
    EXPECT_STREQ(buffer, "\"\"");
}

TEST(ExceptionText, QuotesNoMoreCharactersThanItsLimit)
{
    char buffer[80];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.AppendQuoted("abcdef", 6).Append(" ").AppendQuoted("abcdefg", 6);
    EXPECT_STREQ(buffer, "\"abcdef\" \"abcdef...\"");
}

TEST(ExceptionText, CutsAQuotedTextBetweenCharactersAndEscapes)
{
    char buffer[80];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.AppendQuoted("abc\xC3\xB6"
                      "d",
                      4)
        .Append(" ")
        .AppendQuoted("abc\nd", 5);
    EXPECT_STREQ(buffer, "\"abc...\" \"abc...\"");
}

TEST(ExceptionText, QuotesALoneContinuationByteAsItIs)
{
    char buffer[80];
    VUKBasExceptionText text(buffer, sizeof(buffer));
    text.AppendQuoted("\x80"
                      "a",
                      16);
    EXPECT_STREQ(buffer, "\"\x80"
                         "a\"");
}
