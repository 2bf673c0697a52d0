#include "VUKSimUttOSFileException.h"

#include <cerrno>
#include <exception>
#include <string>

#include <gtest/gtest.h>

namespace {

// The sentence of the exception once it was thrown from there, or what came instead.
std::string Thrown(VUKSimUttOSFileException exception)
{
    try {
        exception.Throw("some/source", 7);
    } catch (const VUKSimUttOSFileException& raised) {
        return raised.what();
    } catch (...) {
        return "another class";
    }
}

TEST(OSFileException, CarriesItsValues)
{
    const VUKSimUttOSFileException exception({"write", 671613152, 112}, "run42.sim", ENOSPC);
    EXPECT_STREQ(exception.ClassName(), "VUKSimUttOSFileException");
    EXPECT_STREQ(exception.Operation(), "write");
    EXPECT_STREQ(exception.FileName(), "run42.sim");
    EXPECT_EQ(exception.Position(), 671613152ULL);
    EXPECT_EQ(exception.Length(), 112ULL);
    EXPECT_EQ(exception.ErrorNumber(), ENOSPC);
}

TEST(OSFileException, HasNoPositionAndLengthWhereNoneWasGiven)
{
    const VUKSimUttOSFileException exception({"open"}, "run42.sim", EMFILE);
    EXPECT_EQ(exception.Position(), 0ULL);
    EXPECT_EQ(exception.Length(), 0ULL);
}

TEST(OSFileException, TellsAFailedTransferInOneSentence)
{
    EXPECT_EQ(Thrown({{"write", 671613152, 112}, "run42.sim", ENOSPC}),
              "VUKSimUttOSFileException at some/source:7: write 112 bytes at 671613152 of "
              "run42.sim: No space left on device (ENOSPC)");
    EXPECT_EQ(Thrown({{"read", 18446744073709551615ULL, 18446744073709551615ULL}, "a", EIO}),
              "VUKSimUttOSFileException at some/source:7: read 18446744073709551615 bytes at "
              "18446744073709551615 of a: Input/output error (EIO)");
}

TEST(OSFileException, TellsWhatElseFailedInOneSentence)
{
    EXPECT_EQ(Thrown({{"truncate", 80}, "run42.sim", EIO}),
              "VUKSimUttOSFileException at some/source:7: truncate run42.sim at 80: "
              "Input/output error (EIO)");
    EXPECT_EQ(Thrown({{"open"}, "my runs/run 42.sim", EMFILE}),
              "VUKSimUttOSFileException at some/source:7: open my runs/run 42.sim: "
              "Too many open files (EMFILE)");
}

TEST(OSFileException, SaysTheReasonGivenInsteadOfTheSystemsText)
{
    EXPECT_EQ(Thrown({{"open"}, "pipe", EINVAL, "not a regular file"}),
              "VUKSimUttOSFileException at some/source:7: open pipe: not a regular file (EINVAL)");
}

TEST(OSFileException, GivesTheNumberOfAnUnknownError)
{
    EXPECT_EQ(Thrown({{"open"}, "a.sim", 9999}),
              "VUKSimUttOSFileException at some/source:7: open a.sim: unknown error (9999)");
}

TEST(OSFileException, QuotesNamesThatWouldBreakTheSentence)
{
    EXPECT_EQ(Thrown({{"open"}, "", ENOENT}),
              "VUKSimUttOSFileException at some/source:7: open \"\": "
              "No such file or directory (ENOENT)");
    EXPECT_EQ(Thrown({{"open"}, "a\n\x1B[2Jb", ENOENT}),
              "VUKSimUttOSFileException at some/source:7: open \"a\\x0A\\x1B[2Jb\": "
              "No such file or directory (ENOENT)");
    EXPECT_EQ(Thrown({{"open"}, "a\x7F", ENOENT}),
              "VUKSimUttOSFileException at some/source:7: open \"a\\x7F\": "
              "No such file or directory (ENOENT)");
}

TEST(OSFileException, KeepsTheLongestNameAndStillSaysWhy)
{
    const std::string name(1500, 'n');
    const VUKSimUttOSFileException exception({"open"}, name.c_str(), ENAMETOOLONG);
    EXPECT_EQ(exception.FileName(), std::string(1023, 'n'));
    EXPECT_EQ(Thrown(exception), "VUKSimUttOSFileException at some/source:7: open " +
                                     std::string(1023, 'n') +
                                     ": File name too long (ENAMETOOLONG)");
}

TEST(OSFileException, IsCaughtAsTheBaseOfAllFailures)
{
    try {
        VUKSimUttOSFileException({"open"}, "a.sim", EIO).Throw("some/source", 12);
    } catch (const VUKBasException& raised) {
        EXPECT_STREQ(raised.ClassName(), "VUKSimUttOSFileException");
        EXPECT_STREQ(raised.Path(), "some/source");
        EXPECT_EQ(raised.Line(), 12);
        EXPECT_NE(dynamic_cast<const VUKSimUttOSFileException*>(&raised), nullptr);
        EXPECT_NE(dynamic_cast<const std::exception*>(&raised), nullptr);
    }
}

TEST(OSFileException, NamesItsClassBeforeItIsThrown)
{
    const VUKSimUttOSFileException exception({"open"}, "a.sim", EIO);
    EXPECT_STREQ(exception.what(), "VUKSimUttOSFileException");
}

} // namespace
