#include "VUKSimRpm_UUID.h"

#include "VUKBasStandardComparitor.h"

#include "Bytes.h"
#include "LimitedMemory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace {

std::string Create()
{
    char text[32];
    VUKSimRpm_UUID::CreateUUID(text);
    return std::string(text, sizeof text);
}

std::string TextOf(const VUKSimRpm_UUID& uuid)
{
    return std::string(uuid.Text(), 32);
}

// Whether `text` has the form of a generated identifier.
bool IsGenerated(const std::string& text)
{
    return text.size() == 32 && text.find_first_not_of("0123456789abcdef") == std::string::npos &&
           text[12] == '4';
}

// `count` numbers of the host's random() after srandom(42), with `between` called before each.
template <class Between>
std::vector<long> HostsNumbers(int count, Between between)
{
    srandom(42);
    std::vector<long> numbers;
    for (int i = 0; i < count; ++i) {
        between();
        numbers.push_back(random());
    }
    return numbers;
}
} // namespace

TEST(UUID, IsAPlainValueOf32Bytes)
{
    EXPECT_EQ(sizeof(VUKSimRpm_UUID), 32U);
    EXPECT_TRUE(std::is_trivially_copyable_v<VUKSimRpm_UUID>);

    const VUKSimRpm_UUID uuid("0123456789abcdef0123456789ABCDEFbehind");
    const VUKSimRpm_UUID copy = uuid;
    EXPECT_EQ(TextOf(copy), "0123456789abcdef0123456789ABCDEF");
}

TEST(UUID, CopiesAllBytesWhateverTheyAre)
{
    std::string text = bytes::Uuid('a');
    text[3] = '\0';
    text[31] = '\xFF';
    const VUKSimRpm_UUID uuid(text.c_str());
    text[0] = 'b';
    text[3] = 'b';
    EXPECT_EQ(TextOf(uuid), std::string("aaa\0aaaaaaaaaaaaaaaaaaaaaaaaaaa\xFF", 32));
}

TEST(UUID, OrdersByItsFirstDifferingByteUpToTheLast)
{
    const VUKSimRpm_UUID low("00000000000000000000000000000000");
    const VUKSimRpm_UUID lastHigher("00000000000000000000000000000001");
    const VUKSimRpm_UUID firstHigher("10000000000000000000000000000000");
    EXPECT_TRUE(low.Less(lastHigher));
    EXPECT_FALSE(lastHigher.Less(low));
    EXPECT_TRUE(lastHigher.Less(firstHigher));
    EXPECT_FALSE(firstHigher.Less(lastHigher));
}

TEST(UUID, IsNotLessThanItsEqual)
{
    const VUKSimRpm_UUID one("0123456789abcdef0123456789abcdef");
    const VUKSimRpm_UUID other("0123456789abcdef0123456789abcdef");
    EXPECT_FALSE(one.Less(one));
    EXPECT_FALSE(one.Less(other));
    EXPECT_FALSE(other.Less(one));
}

TEST(UUID, OrdersByUnsignedBytes)
{
    std::string text = bytes::Uuid('a');
    text[5] = '\x7F';
    const VUKSimRpm_UUID low(text.c_str());
    text[5] = '\x80';
    const VUKSimRpm_UUID high(text.c_str());
    text[5] = '\xFF';
    const VUKSimRpm_UUID highest(text.c_str());
    EXPECT_TRUE(low.Less(high));
    EXPECT_FALSE(high.Less(low));
    EXPECT_TRUE(high.Less(highest));
    EXPECT_FALSE(highest.Less(low));
}

TEST(UUID, OrdersByTheFirstByteThatDiffers)
{
    for (std::size_t first = 0; first < 32; ++first) {
        std::string text = bytes::Uuid('m');
        text[first] = '\x01';
        std::string larger = text;
        larger[first] = '\xFE';
        if (first < 31) {
            text[31] = 'z'; // would say the opposite
        }
        const VUKSimRpm_UUID low(text.c_str());
        const VUKSimRpm_UUID high(larger.c_str());
        EXPECT_TRUE(low.Less(high)) << first;
        EXPECT_FALSE(high.Less(low)) << first;
    }
}

TEST(UUID, ComparesOnBehindAZeroByte)
{
    std::string text = bytes::Uuid('a');
    text[0] = '\0';
    const VUKSimRpm_UUID low(text.c_str());
    text[31] = 'b';
    const VUKSimRpm_UUID high(text.c_str());
    EXPECT_TRUE(low.Less(high));
    EXPECT_FALSE(high.Less(low));
}

TEST(UUID, OrdersWithoutAllocating)
{
    const VUKSimRpm_UUID a(bytes::Uuid('a').c_str());
    const VUKSimRpm_UUID b(bytes::Uuid('b').c_str());
    const LimitedMemory none(0);
    EXPECT_TRUE(a.Less(b));
    EXPECT_FALSE(none.RanOut());
}

TEST(UUID, OrdersTheKeysOfATreeByTheStandardComparitor)
{
    const VUKSimRpm_UUID a(bytes::Uuid('a').c_str());
    const VUKSimRpm_UUID b(bytes::Uuid('b').c_str());
    int context = 0;
    EXPECT_TRUE(VUKBasStandardComparitor<VUKSimRpm_UUID>::Compare(&a, &b, nullptr));
    EXPECT_TRUE(VUKBasStandardComparitor<VUKSimRpm_UUID>::Compare(&a, &b, &context));
    EXPECT_FALSE(VUKBasStandardComparitor<VUKSimRpm_UUID>::Compare(&b, &a, &context));
    EXPECT_FALSE(VUKBasStandardComparitor<VUKSimRpm_UUID>::Compare(&a, &a, nullptr));
}

TEST(UUID, GeneratesLowercaseHexadecimalOfTheFourthVersion)
{
    for (int i = 0; i < 1000; ++i) {
        const std::string text = Create();
        ASSERT_EQ(text.find_first_not_of("0123456789abcdef"), std::string::npos) << text;
        ASSERT_EQ(text[12], '4') << text;
        ASSERT_NE(std::string("89ab").find(text[16]), std::string::npos) << text;
        for (const std::size_t top : {7U, 15U, 23U, 31U}) {
            ASSERT_NE(std::string("01234567").find(text[top]), std::string::npos) << text;
        }
    }
}

TEST(UUID, DrawsEveryDigitThatAPositionMayHave)
{
    std::set<char> seen[32];
    for (int i = 0; i < 2000; ++i) {
        const std::string text = Create();
        for (std::size_t position = 0; position < 32; ++position) {
            seen[position].insert(text[position]);
        }
    }
    for (std::size_t position = 0; position < 32; ++position) {
        std::size_t digits = 16;
        if (position % 8 == 7) {
            digits = 8; // the top of a 31-bit number
        } else if (position == 12) {
            digits = 1;
        } else if (position == 16) {
            digits = 4;
        }
        EXPECT_EQ(seen[position].size(), digits) << position;
    }
}

TEST(UUID, GeneratesNoValueTwiceAmongManyThousand)
{
    std::set<std::string> all;
    for (int i = 0; i < 20000; ++i) {
        all.insert(Create());
    }
    EXPECT_EQ(all.size(), 20000U);
}

TEST(UUID, WritesNothingBehindItsCharacters)
{
    std::string text(34, '#');
    VUKSimRpm_UUID::CreateUUID(text.data() + 1);
    EXPECT_EQ(text.front(), '#');
    EXPECT_EQ(text.back(), '#');

    const std::string forced = bytes::Uuid('f');
    VUKSimRpm_UUID::TestForceUUID(forced.c_str());
    VUKSimRpm_UUID::CreateUUID(text.data() + 1);
    EXPECT_EQ(text, "#" + forced + "#");
}

TEST(UUID, GivesAForcedValueOnceThoughItIsNotHexadecimal)
{
    const char forced[] = "No hexadecimal digits: \x80\xFF\tXYZ!!!";
    VUKSimRpm_UUID::TestForceUUID(forced);
    EXPECT_EQ(Create(), "No hexadecimal digits: \x80\xFF\tXYZ!!!");

    const std::string next = Create();
    EXPECT_TRUE(IsGenerated(next)) << next;
}

TEST(UUID, KeepsThePointerToAForcedValueAndNoCopy)
{
    std::string forced = bytes::Uuid('f');
    VUKSimRpm_UUID::TestForceUUID(forced.c_str());
    forced[31] = 'g';
    EXPECT_EQ(Create(), "fffffffffffffffffffffffffffffffg");
}

TEST(UUID, CopiesAForcedValuePastAZeroByte)
{
    std::string forced = bytes::Uuid('f');
    forced[2] = '\0';
    VUKSimRpm_UUID::TestForceUUID(forced.c_str());
    EXPECT_EQ(Create(), forced);
}

TEST(UUID, ForgetsAForcedValueForNullOrAnotherOne)
{
    const std::string forced = bytes::Uuid('x');
    const std::string other = bytes::Uuid('y');
    VUKSimRpm_UUID::TestForceUUID(forced.c_str());
    VUKSimRpm_UUID::TestForceUUID(nullptr);
    EXPECT_TRUE(IsGenerated(Create()));

    VUKSimRpm_UUID::TestForceUUID(forced.c_str());
    VUKSimRpm_UUID::TestForceUUID(other.c_str());
    EXPECT_EQ(Create(), "yyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyy");
    EXPECT_TRUE(IsGenerated(Create()));
}

TEST(UUID, LeavesTheHostsRandomSequenceUndisturbed)
{
    const auto alone = HostsNumbers(8, [] {});
    const auto mixed = HostsNumbers(8, [] { Create(); });
    EXPECT_EQ(mixed, alone);

    const std::string forced = bytes::Uuid('f');
    const auto forcedOnes = HostsNumbers(8, [&] {
        VUKSimRpm_UUID::TestForceUUID(forced.c_str());
        Create();
    });
    EXPECT_EQ(forcedOnes, alone);
}

TEST(UUID, GivesTheHostItsOwnRandomStateBack)
{
    char hosts[64] = {};
    char* const outer = initstate(7, hosts, sizeof hosts);
    Create();
    char* const inForce = setstate(outer);
    EXPECT_EQ(inForce, hosts);
}

TEST(UUID, DoesNotFollowTheHostsSeed)
{
    srandom(42);
    const std::string first = Create();
    srandom(42);
    EXPECT_NE(Create(), first);
}
