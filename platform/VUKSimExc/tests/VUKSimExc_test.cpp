#include "VUKSimExc.h"

#include "Border.h"
#include "VUKBasAssertException.h"
#include "VUKBasRangeException.h"
#include "mem_Watch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <exception>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace {

using FileName = VUKSimUttExceptionString<1024>;

// The sentence of what `raise` throws, when it can be caught as an Own.
template <class Own>
std::string WhatOf(void (*raise)())
{
    try {
        raise();
    } catch (const Own& exception) {
        return exception.what();
    } catch (...) {
        return "another class was thrown";
    }
    return "nothing was thrown";
}

// Throws from this side of the border and expects the sentence, by own class and by both bases.
template <class Own>
void ExpectSentence(Own exception, const std::string& sentence)
{
    static Own sException;
    sException = exception;
    const auto raise = [] {
        VUKBasException& base = sException;
        base.Throw("VUKSim/VUKSimRpm.m/src/X", 86);
    };
    EXPECT_EQ(WhatOf<Own>(raise), sentence);
    EXPECT_EQ(WhatOf<VUKBasException>(raise), sentence);
    EXPECT_EQ(WhatOf<std::exception>(raise), sentence);
}

// Has the other library throw the class and expects it here as itself, with name, site and values.
template <class Own>
Own CatchFromBeyond(const char* className)
{
    Own caught;
    try {
        ThrowBeyondTheBorder(className);
        ADD_FAILURE() << "nothing thrown for " << className;
    } catch (const Own& exception) {
        EXPECT_STREQ(exception.ClassName(), className);
        EXPECT_STREQ(exception.Path(), "border/Border");
        EXPECT_EQ(exception.Line(), 17);
        caught = exception;
    } catch (...) {
        ADD_FAILURE() << className << " was not caught as itself";
    }
    EXPECT_THROW(ThrowBeyondTheBorder(className), VUKBasException);
    EXPECT_THROW(ThrowBeyondTheBorder(className), std::exception);
    return caught;
}

} // namespace

TEST(SimExc, EachPlainClassTellsItsOwnReason)
{
    const std::string at = " at VUKSim/VUKSimRpm.m/src/X:86: ";
    ExpectSentence(VUKSimExcAllocReadOnly(), "VUKSimExcAllocReadOnly" + at +
                                                 "the file was opened for reading and cannot grow");
    ExpectSentence(VUKSimExcBrokenStream(),
                   "VUKSimExcBrokenStream" + at +
                       "the pool was extended by someone else since this stream last wrote to it");
    ExpectSentence(VUKSimExcCantDerefLocator(), "VUKSimExcCantDerefLocator" + at +
                                                    "the pool that the locator names is not open");
    ExpectSentence(VUKSimExcCantExternalizeLoc(),
                   "VUKSimExcCantExternalizeLoc" + at +
                       "the storing pool's directory does not name the pool referred to");
    ExpectSentence(VUKSimExcCantGetFile(), "VUKSimExcCantGetFile" + at +
                                               "the file is closed or belongs to another document");
    ExpectSentence(VUKSimExcCorruptDirectory(),
                   "VUKSimExcCorruptDirectory" + at + "a pool's directory is damaged or cut off");
    ExpectSentence(VUKSimExcCorruptHeader(),
                   "VUKSimExcCorruptHeader" + at + "a pool's header is damaged or cut off");
    ExpectSentence(VUKSimExcImmutablePool(),
                   "VUKSimExcImmutablePool" + at + "only the last pool of a file can grow");
    ExpectSentence(VUKSimExcInvalidGUID(),
                   "VUKSimExcInvalidGUID" + at +
                       "the UUID given for the pool is shorter than 32 characters");
    ExpectSentence(VUKSimExcNewPoolReadOnly(),
                   "VUKSimExcNewPoolReadOnly" + at +
                       "the file was opened for reading and cannot take another pool");
    ExpectSentence(
        VUKSimExcNotSimFile(),
        "VUKSimExcNotSimFile" + at +
            "the file is too short for a pool, or does not begin with the signature of one");
    ExpectSentence(VUKSimExcPoolAlreadyInDoc(),
                   "VUKSimExcPoolAlreadyInDoc" + at +
                       "a pool with this UUID is open in the document");
    ExpectSentence(VUKSimExcShortPool(),
                   "VUKSimExcShortPool" + at +
                       "the pool to be copied ended before its length was reached");
    ExpectSentence(VUKSimExcUserSigMismatch(),
                   "VUKSimExcUserSigMismatch" + at +
                       "the pool was written under another user signature than the document's");
    ExpectSentence(VUKSimExcValidationFailure(),
                   "VUKSimExcValidationFailure" + at +
                       "the document handle has no document behind it");
    ExpectSentence(VUKSimExcWriteReadOnly(),
                   "VUKSimExcWriteReadOnly" + at +
                       "the file was opened for reading and cannot be written");
}

TEST(SimExc, ClassesWithValuesTellThem)
{
    const std::string at = " at VUKSim/VUKSimRpm.m/src/X:86: ";
    ExpectSentence(VUKSimExcCantCreateFile(FileName("run.sim")),
                   "VUKSimExcCantCreateFile(\"run.sim\")" + at +
                       "a file of this name is open in the document");
    ExpectSentence(VUKSimExcNeedUpgrade(6, 5, FileName("run.sim")),
                   "VUKSimExcNeedUpgrade(6, 5, \"run.sim\")" + at +
                       "the pool was written in another format version; the first number is the "
                       "version that can be read, the second the pool's");
    ExpectSentence(VUKSimExcIOBounds(18'446'744'073'709'551'615U, 3, 0),
                   "VUKSimExcIOBounds(18446744073709551615, 3, 0)" + at +
                       "the bytes from the first number to the second do not lie in the pool, "
                       "whose data length is the third");
    ExpectSentence(VUKSimExcShortBuffer(12, 10),
                   "VUKSimExcShortBuffer(12, 10)" + at +
                       "the stream was asked for more than its buffer or its limit allows");
    ExpectSentence(VUKSimExcRequestTooBig(4'294'967'295U, 16),
                   "VUKSimExcRequestTooBig(4294967295, 16)" + at +
                       "the stream was asked for more bytes at once than it can hold ready");
}

TEST(SimExc, TellsTheNameOfItsClassBeforeItIsThrown)
{
    EXPECT_STREQ(VUKSimExcShortPool().what(), "VUKSimExcShortPool");
    EXPECT_STREQ(VUKSimExcCantCreateFile().what(), "VUKSimExcCantCreateFile");
    EXPECT_STREQ(VUKSimExcNeedUpgrade().what(), "VUKSimExcNeedUpgrade");
}

TEST(SimExc, FieldsAreZeroUnlessGiven)
{
    EXPECT_STREQ(VUKSimExcCantCreateFile().FileName(), "");
    const VUKSimExcNeedUpgrade upgrade;
    EXPECT_EQ(upgrade.Expected(), 0U);
    EXPECT_EQ(upgrade.Found(), 0U);
    EXPECT_STREQ(upgrade.FileName(), "");
    const VUKSimExcIOBounds bounds;
    EXPECT_EQ(bounds.Offset(), 0U);
    EXPECT_EQ(bounds.End(), 0U);
    EXPECT_EQ(bounds.DataLength(), 0U);
    EXPECT_EQ(VUKSimExcShortBuffer().Requested(), 0U);
    EXPECT_EQ(VUKSimExcShortBuffer().Available(), 0U);
    EXPECT_EQ(VUKSimExcRequestTooBig().Requested(), 0U);
    EXPECT_EQ(VUKSimExcRequestTooBig().Available(), 0U);
}

TEST(SimExc, CarriesItsValuesInTheOrderGiven)
{
    EXPECT_STREQ(VUKSimExcCantCreateFile(FileName("a.sim")).FileName(), "a.sim");
    const VUKSimExcNeedUpgrade upgrade(6, 4'294'967'295U, FileName("b.sim"));
    EXPECT_EQ(upgrade.Expected(), 6U);
    EXPECT_EQ(upgrade.Found(), 4'294'967'295U);
    EXPECT_STREQ(upgrade.FileName(), "b.sim");
    const VUKSimExcIOBounds bounds(1, 18'446'744'073'709'551'615U, 3);
    EXPECT_EQ(bounds.Offset(), 1U);
    EXPECT_EQ(bounds.End(), 18'446'744'073'709'551'615U);
    EXPECT_EQ(bounds.DataLength(), 3U);
    EXPECT_EQ(VUKSimExcShortBuffer(8, 6).Requested(), 8U);
    EXPECT_EQ(VUKSimExcShortBuffer(8, 6).Available(), 6U);
    EXPECT_EQ(VUKSimExcRequestTooBig(20, 16).Requested(), 20U);
    EXPECT_EQ(VUKSimExcRequestTooBig(20, 16).Available(), 16U);
}

TEST(SimExc, TellsTheLongestFileNameWhole)
{
    const std::string name(1023, 'n');
    ExpectSentence(VUKSimExcCantCreateFile(FileName(name.c_str())),
                   "VUKSimExcCantCreateFile(\"" + name +
                       "\") at VUKSim/VUKSimRpm.m/src/X:86: a file of this name is open in the "
                       "document");
    ExpectSentence(VUKSimExcNeedUpgrade(6, 4'294'967'295U, FileName(name.c_str())),
                   "VUKSimExcNeedUpgrade(6, 4294967295, \"" + name +
                       "\") at VUKSim/VUKSimRpm.m/src/X:86: the pool was written in another format "
                       "version; the first number is the version that can be read, the second the "
                       "pool's");
}

TEST(SimExc, TellsTheSiteWhateverTheFileNameHolds)
{
    // 1023 control characters, of which 275 escapes of four characters fill the room for the name.
    const std::string name(1023, '\n');
    std::string escaped;
    for (int i = 0; i < 275; ++i) {
        escaped += "\\x0A";
    }
    ExpectSentence(VUKSimExcCantCreateFile(FileName(name.c_str())),
                   "VUKSimExcCantCreateFile(\"" + escaped +
                       "...\") at VUKSim/VUKSimRpm.m/src/X:86: a file of this name is open in the "
                       "document");
}

TEST(SimExc, StaysSmallUnlessItCarriesAName)
{
    EXPECT_LE(sizeof(VUKSimExcShortPool), 448U);
    EXPECT_LE(sizeof(VUKSimExcIOBounds), 448U);
    EXPECT_LE(sizeof(VUKSimExcRequestTooBig), 448U);
    EXPECT_LE(sizeof(VUKSimExcNeedUpgrade), 3072U);
}

TEST(SimExc, CannotFailToBeCopiedAndAllocatesNothing)
{
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<VUKSimExcShortPool>);
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<VUKSimExcNeedUpgrade>);
    mem_Watch watch;
    EXPECT_THROW(VUKSimExcNeedUpgrade(6, 5, FileName("x")).Throw("p", 1), VUKSimExcNeedUpgrade);
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(SimExc, EachPlainClassIsCaughtAsItselfAcrossTheBorder)
{
    CatchFromBeyond<VUKSimExcAllocReadOnly>("VUKSimExcAllocReadOnly");
    CatchFromBeyond<VUKSimExcBrokenStream>("VUKSimExcBrokenStream");
    CatchFromBeyond<VUKSimExcCantDerefLocator>("VUKSimExcCantDerefLocator");
    CatchFromBeyond<VUKSimExcCantExternalizeLoc>("VUKSimExcCantExternalizeLoc");
    CatchFromBeyond<VUKSimExcCantGetFile>("VUKSimExcCantGetFile");
    CatchFromBeyond<VUKSimExcCorruptDirectory>("VUKSimExcCorruptDirectory");
    CatchFromBeyond<VUKSimExcCorruptHeader>("VUKSimExcCorruptHeader");
    CatchFromBeyond<VUKSimExcImmutablePool>("VUKSimExcImmutablePool");
    CatchFromBeyond<VUKSimExcInvalidGUID>("VUKSimExcInvalidGUID");
    CatchFromBeyond<VUKSimExcNewPoolReadOnly>("VUKSimExcNewPoolReadOnly");
    CatchFromBeyond<VUKSimExcNotSimFile>("VUKSimExcNotSimFile");
    CatchFromBeyond<VUKSimExcPoolAlreadyInDoc>("VUKSimExcPoolAlreadyInDoc");
    CatchFromBeyond<VUKSimExcShortPool>("VUKSimExcShortPool");
    CatchFromBeyond<VUKSimExcUserSigMismatch>("VUKSimExcUserSigMismatch");
    CatchFromBeyond<VUKSimExcValidationFailure>("VUKSimExcValidationFailure");
    CatchFromBeyond<VUKSimExcWriteReadOnly>("VUKSimExcWriteReadOnly");
}

TEST(SimExc, EachClassWithValuesBringsThemAcrossTheBorder)
{
    const auto create = CatchFromBeyond<VUKSimExcCantCreateFile>("VUKSimExcCantCreateFile");
    EXPECT_STREQ(create.FileName(), "run.sim");
    EXPECT_STREQ(create.what(), "VUKSimExcCantCreateFile(\"run.sim\") at border/Border:17: a file "
                                "of this name is open in the document");

    const auto upgrade = CatchFromBeyond<VUKSimExcNeedUpgrade>("VUKSimExcNeedUpgrade");
    EXPECT_EQ(upgrade.Expected(), 1U);
    EXPECT_EQ(upgrade.Found(), 2U);
    EXPECT_STREQ(upgrade.FileName(), "run.sim");

    const auto bounds = CatchFromBeyond<VUKSimExcIOBounds>("VUKSimExcIOBounds");
    EXPECT_EQ(bounds.Offset(), 1U);
    EXPECT_EQ(bounds.End(), 2U);
    EXPECT_EQ(bounds.DataLength(), 3U);

    const auto shortBuffer = CatchFromBeyond<VUKSimExcShortBuffer>("VUKSimExcShortBuffer");
    EXPECT_EQ(shortBuffer.Requested(), 1U);
    EXPECT_EQ(shortBuffer.Available(), 2U);

    const auto tooBig = CatchFromBeyond<VUKSimExcRequestTooBig>("VUKSimExcRequestTooBig");
    EXPECT_EQ(tooBig.Requested(), 1U);
    EXPECT_EQ(tooBig.Available(), 2U);
}

TEST(SimExc, ThePlatformsOwnExceptionsCrossTheBorderToo)
{
    EXPECT_THROW(ThrowBeyondTheBorder("VUKBasAssertException"), VUKBasAssertException);
    EXPECT_THROW(ThrowBeyondTheBorder("VUKBasRangeException"), VUKBasRangeException);
    EXPECT_NO_THROW(ThrowBeyondTheBorder("no such class"));
}

TEST(SimExc, IsCaughtBeyondTheBorderWhenThrownHere)
{
    EXPECT_STREQ(CatchBeyondTheBorder([] { VUKSimExcNeedUpgrade().Throw("p", 1); }),
                 "VUKSimExcNeedUpgrade");
    EXPECT_STREQ(CatchBeyondTheBorder([] { VUKSimExcShortPool().Throw("p", 1); }),
                 "VUKBasException");
    EXPECT_STREQ(CatchBeyondTheBorder([] { throw VUKSimExcNeedUpgrade(); }),
                 "VUKSimExcNeedUpgrade");
    EXPECT_STREQ(CatchBeyondTheBorder([] { throw std::runtime_error("x"); }), "std::exception");
    EXPECT_STREQ(CatchBeyondTheBorder([] {}), "nothing");
}
