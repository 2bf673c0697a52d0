#include "VUKString.h"

#include "RepeatedPages.h"
#include "VUKBasRangeException.h"
#include "mem_Watch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace {

constexpr char kLongText[] = "a text that is certainly too long for a string to hold in itself";

// Hands out one block that must not be written into real memory.
std::unique_ptr<RepeatedPages> gHugeBlock;

void* AllocateHuge(std::size_t size)
{
    gHugeBlock = std::make_unique<RepeatedPages>(size, 'b');
    return gHugeBlock->Bytes();
}

void ReleaseHuge(void*)
{
    gHugeBlock.reset();
}

} // namespace

TEST(String, IsEmptyByDefaultAndFromNull)
{
    const VUKString byDefault;
    const VUKString fromNull(nullptr);
    EXPECT_TRUE(byDefault.IsEmpty());
    EXPECT_EQ(byDefault.GetLengthInByte(), 0U);
    EXPECT_STREQ(byDefault.UTF8(), "");
    EXPECT_TRUE(fromNull.IsEmpty());
    EXPECT_TRUE(VUKString::BuildFromUTF8(nullptr).IsEmpty());
    EXPECT_TRUE(byDefault == fromNull);
}

TEST(String, CountsBytesAndNotCharacters)
{
    const VUKString text = VUKString::BuildFromUTF8("Gr\xC3\xB6\xC3\x9F"
                                                    "e");
    EXPECT_EQ(text.GetLengthInByte(), 7U);
    EXPECT_STREQ(text.UTF8(), "Gr\xC3\xB6\xC3\x9F"
                              "e");
    EXPECT_FALSE(text.IsEmpty());
}

TEST(String, EndsAtTheFirstZeroByte)
{
    const char bytes[] = {'a', 'b', '\0', 'c', '\0'};
    EXPECT_EQ(VUKString::BuildFromUTF8(bytes).GetLengthInByte(), 2U);
    EXPECT_STREQ(VUKString(bytes).UTF8(), "ab");
}

TEST(String, KeepsBytesThatAreNotUtf8)
{
    const VUKString text("\xFF\xFE\x80");
    EXPECT_EQ(text.GetLengthInByte(), 3U);
    EXPECT_EQ(std::memcmp(text.UTF8(), "\xFF\xFE\x80", 4), 0);
}

TEST(String, CopiesAreIndependentOfTheirSource)
{
    VUKString source(kLongText);
    const VUKString copy(source);
    source = VUKString("other");
    EXPECT_STREQ(copy.UTF8(), kLongText);
    EXPECT_STREQ(source.UTF8(), "other");
}

TEST(String, TakesAnotherTextIntoTheMemoryThatItHas)
{
    VUKString text(kLongText);
    mem_Watch watch;
    text = "short";
    EXPECT_STREQ(text.UTF8(), "short");
    EXPECT_EQ(text.GetLengthInByte(), 5U);
    text = kLongText;
    EXPECT_STREQ(text.UTF8(), kLongText);
    text = nullptr;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(String, TakesAPartOfItself)
{
    VUKString text("the end");
    text = text.UTF8() + 4;
    EXPECT_STREQ(text.UTF8(), "end");
}

TEST(String, StaysAsItWasWhenThereIsNoMemoryForAnotherText)
{
    VUKString text("short");
    mem_Watch watch;
    watch.FailAt(1);
    EXPECT_THROW(text = kLongText, std::bad_alloc);
    EXPECT_STREQ(text.UTF8(), "short");
}

TEST(String, ComparesByUnsignedBytes)
{
    EXPECT_TRUE(VUKString("a") == VUKString("a"));
    EXPECT_TRUE(VUKString("a") != VUKString("b"));
    EXPECT_FALSE(VUKString("a") == VUKString("ab"));
    EXPECT_TRUE(VUKString("a") < VUKString("b"));
    EXPECT_TRUE(VUKString("a") < VUKString("ab"));
    EXPECT_FALSE(VUKString("a") < VUKString("a"));
    EXPECT_TRUE(VUKString("z") < VUKString("\x80"));
}

TEST(String, JoinsTwoTexts)
{
    const VUKString joined = VUKString("run") + VUKString(".sim");
    EXPECT_STREQ(joined.UTF8(), "run.sim");
    EXPECT_EQ(joined.GetLengthInByte(), 7U);
    EXPECT_STREQ((VUKString() + "x").UTF8(), "x");
    EXPECT_STREQ((joined + joined).UTF8(), "run.simrun.sim");
}

TEST(String, TakesItsMemoryFromTheTable)
{
    mem_Watch watch;
    {
        const VUKString text(kLongText);
        EXPECT_EQ(watch.Live(), 1);
    }
    EXPECT_EQ(watch.Live(), 0);
}

TEST(String, ThrowsBadAllocWhenThereIsNoMemory)
{
    mem_Watch watch;
    watch.FailAt(1);
    EXPECT_THROW(VUKString{kLongText}, std::bad_alloc);
    const VUKString text(kLongText);
    watch.FailAt(1);
    EXPECT_THROW(static_cast<void>(text + text), std::bad_alloc);
    EXPECT_STREQ(text.UTF8(), kLongText);
}

TEST(String, RefusesATextLongerThanItsLengthCanSay)
{
    RepeatedPages pages(4'294'967'296 + RepeatedPages::kRepeat, 'a');
    pages.ZeroLastRepeat();
    mem_Watch watch;
    try {
        const VUKString text(pages.Bytes());
        FAIL() << "a text of 4 GiB was taken";
    } catch (const VUKBasRangeException& exception) {
        EXPECT_EQ(exception.Index(), 4'294'967'296);
        EXPECT_EQ(exception.Length(), 4'294'967'295);
        EXPECT_STREQ(exception.Path(), "VUKSim/VUKBasCoreUtils.m/src/VUKString");
        EXPECT_EQ(exception.Line(), 1);
    }
    VUKString text("short");
    try {
        text = pages.Bytes();
        FAIL() << "a text of 4 GiB was taken";
    } catch (const VUKBasRangeException& exception) {
        EXPECT_EQ(exception.Index(), 4'294'967'296);
        EXPECT_EQ(exception.Length(), 4'294'967'295);
        EXPECT_EQ(exception.Line(), 3);
    }
    EXPECT_STREQ(text.UTF8(), "short");
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(String, RefusesToJoinTwoTextsToOneThatIsTooLong)
{
    RepeatedPages pages(2'147'483'648 + RepeatedPages::kRepeat, 'a');
    pages.ZeroLastRepeat();
    const mem_Functions before = mem_CurrentFunctions();
    mem_CurrentFunctions() = {AllocateHuge, AllocateHuge, ReleaseHuge};
    {
        const VUKString text(pages.Bytes());
        EXPECT_EQ(text.GetLengthInByte(), 2'147'483'648U);
        try {
            static_cast<void>(text + text);
            ADD_FAILURE() << "a text of 4 GiB was made";
        } catch (const VUKBasRangeException& exception) {
            EXPECT_EQ(exception.Index(), 4'294'967'296);
            EXPECT_EQ(exception.Length(), 4'294'967'295);
            EXPECT_STREQ(exception.Path(), "VUKSim/VUKBasCoreUtils.m/src/VUKString");
            EXPECT_EQ(exception.Line(), 2);
        }
    }
    mem_CurrentFunctions() = before;
}
