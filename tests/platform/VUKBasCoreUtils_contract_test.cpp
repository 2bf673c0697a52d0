#include "VUKBasAssertException.h"
#include "VUKBasException.h"
#include "VUKBasRangeException.h"
#include "VUKString.h"
#include "omi_gettimeofday.h"

#include <gtest/gtest.h>

#include <cstring>
#include <exception>
#include <string>
#include <typeinfo>

TEST(StringContract, HoldsUtf8UpToTheFirstZeroByte)
{
    EXPECT_TRUE(VUKString().IsEmpty());
    EXPECT_STREQ(VUKString().UTF8(), "");
    EXPECT_TRUE(VUKString::BuildFromUTF8(nullptr).IsEmpty());

    const VUKString text = VUKString::BuildFromUTF8("Gr\xC3\xB6\xC3\x9F"
                                                    "e\0hidden");
    EXPECT_EQ(text.GetLengthInByte(), 7U);
    EXPECT_STREQ(text.UTF8(), "Gr\xC3\xB6\xC3\x9F"
                              "e");
    EXPECT_EQ(text, VUKString("Gr\xC3\xB6\xC3\x9F"
                              "e"));
    EXPECT_NE(text, VUKString("gr"));

    VUKString taken = text;
    taken = "ab\0hidden";
    EXPECT_STREQ(taken.UTF8(), "ab");
    taken = nullptr;
    EXPECT_TRUE(taken.IsEmpty());
}

TEST(ExceptionContract, ThrowsItsOwnClassWithThePlaceItWasGiven)
{
    try {
        VUKBasAssertException("a < b").Throw("some/source", 42);
    } catch (const std::exception& raised) {
        EXPECT_EQ(typeid(raised), typeid(VUKBasAssertException));
        const auto& known = dynamic_cast<const VUKBasAssertException&>(raised);
        EXPECT_STREQ(known.Text(), "a < b");
        EXPECT_STREQ(known.Path(), "some/source");
        EXPECT_EQ(known.Line(), 42);
        EXPECT_STREQ(known.ClassName(), "VUKBasAssertException");
    }
}

TEST(ExceptionContract, ThrowsItsOwnClassThroughAReferenceToTheBase)
{
    VUKBasRangeException range(5, 3);
    VUKBasException& base = range;
    EXPECT_THROW(base.Throw("some/source", 1), VUKBasRangeException);
}

TEST(ExceptionContract, TellsClassValuesPathAndLineInOneSentence)
{
    try {
        VUKBasRangeException(5, 3).Throw("some/source", 42);
    } catch (const VUKBasException& raised) {
        const std::string what = raised.what();
        for (const char* part : {"VUKBasRangeException", "5", "3", "some/source", "42"}) {
            EXPECT_NE(what.find(part), std::string::npos) << what;
        }
        EXPECT_EQ(what.find('\n'), std::string::npos) << what;
    }
}

// Its second word seeds the generator of UUIDs: it must not stand still.
TEST(ClockContract, GivesASecondWordThatVaries)
{
    const omi_Time first = omi_gettimeofday();
    EXPECT_GT(first.seconds, 1577836800); // the year 2020
    omi_Time later = first;
    for (int i = 0; i < 100000000 && later.microseconds == first.microseconds; ++i) {
        later = omi_gettimeofday();
    }
    EXPECT_NE(later.microseconds, first.microseconds);
}
