#include "VUKSimRpm_Swapper.h"

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The item that the stored bytes at `stored` stand for.
template <class Item>
Item Internalized(const char* stored)
{
    Item item{};
    EXPECT_EQ(VUKSimRpm_Swapper::InternalizeScalarUnsafe(stored, &item, sizeof item),
              int{sizeof item});
    return item;
}

// The stored bytes of `item`, between two guards that must stay.
template <class Item>
std::string Externalized(Item item)
{
    std::string stored(sizeof item + 2, '#');
    EXPECT_EQ(VUKSimRpm_Swapper::ExternalizeScalarUnsafe(stored.data() + 1, &item, sizeof item),
              int{sizeof item});
    EXPECT_EQ(stored.front(), '#');
    EXPECT_EQ(stored.back(), '#');
    return stored.substr(1, sizeof item);
}

double DoubleOfBits(std::uint64_t bits)
{
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}
} // namespace

TEST(Swapper, ReadsTheLowestByteFirst)
{
    EXPECT_EQ(Internalized<std::uint16_t>("\x34\x12"), 0x1234U);
    EXPECT_EQ(Internalized<std::uint32_t>("\x78\x56\x34\x12"), 0x12345678U);
    EXPECT_EQ(Internalized<std::uint64_t>("\xF0\xDE\xBC\x9A\x78\x56\x34\x12"), 0x123456789ABCDEF0U);
}

TEST(Swapper, WritesTheLowestByteFirst)
{
    EXPECT_EQ(Externalized<std::uint16_t>(0x1234), "\x34\x12");
    EXPECT_EQ(Externalized<std::uint32_t>(0x12345678), "\x78\x56\x34\x12");
    EXPECT_EQ(Externalized<std::uint64_t>(0x123456789ABCDEF0), "\xF0\xDE\xBC\x9A\x78\x56\x34\x12");
}

TEST(Swapper, KeepsSignsAndFloatingPointValues)
{
    EXPECT_EQ(Externalized<std::int16_t>(-2), "\xFE\xFF");
    EXPECT_EQ(Externalized<std::int32_t>(-2), "\xFE\xFF\xFF\xFF");
    EXPECT_EQ(Externalized<std::int64_t>(-2), "\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF");
    EXPECT_EQ(Externalized(1.0F), std::string("\0\0\x80\x3F", 4));
    EXPECT_EQ(Externalized(-2.5), std::string("\0\0\0\0\0\0\x04\xC0", 8));

    EXPECT_EQ(Internalized<std::int16_t>("\xFE\xFF"), -2);
    EXPECT_EQ(Internalized<std::int32_t>("\xFE\xFF\xFF\xFF"), -2);
    EXPECT_EQ(Internalized<std::int64_t>("\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF"), -2);
    EXPECT_EQ(Internalized<float>("\0\0\x80\x3F"), 1.0F);
    EXPECT_EQ(Internalized<double>("\0\0\0\0\0\0\x04\xC0"), -2.5);
}

TEST(Swapper, KeepsEveryBitOfAValueThatIsNoNumber)
{
    EXPECT_EQ(Externalized(DoubleOfBits(0x7FF0123456789ABC)), "\xBC\x9A\x78\x56\x34\x12\xF0\x7F");
}

TEST(Swapper, NeedsNoAlignment)
{
    alignas(8) char stored[16] = "#\x08\x07\x06\x05\x04\x03\x02\x01#";
    alignas(8) char item[16] = {};
    EXPECT_EQ(VUKSimRpm_Swapper::InternalizeScalarUnsafe(stored + 1, item + 3, 8), 8);
    std::uint64_t value = 0;
    std::memcpy(&value, item + 3, 8);
    EXPECT_EQ(value, 0x0102030405060708U);
    EXPECT_EQ(item[2], 0);
    EXPECT_EQ(item[11], 0);

    EXPECT_EQ(VUKSimRpm_Swapper::ExternalizeScalarUnsafe(stored + 5, item + 3, 8), 8);
    EXPECT_EQ(std::string(stored + 5, 8), "\x08\x07\x06\x05\x04\x03\x02\x01");

    EXPECT_EQ(VUKSimRpm_Swapper::InternalizeScalarUnsafe(stored + 5, item + 1, 4), 4);
    std::uint32_t word = 0;
    std::memcpy(&word, item + 1, 4);
    EXPECT_EQ(word, 0x05060708U);
    EXPECT_EQ(VUKSimRpm_Swapper::InternalizeScalarUnsafe(stored + 7, item + 5, 2), 2);
    std::uint16_t half = 0;
    std::memcpy(&half, item + 5, 2);
    EXPECT_EQ(half, 0x0506U);
}

TEST(SwapperDeathTest, AbortsOnASizeThatIsNotStored)
{
    char stored[16] = {};
    char item[16] = {};
    // An emulator adds a line of its own.
    const char kSaid[] = "^Illegal swap size\\.\n(qemu: [^\n]*\n)?$";
    for (const int size : {3, 0, -1, 1, 16}) {
        EXPECT_EXIT(VUKSimRpm_Swapper::InternalizeScalarUnsafe(stored, item, size),
                    testing::KilledBySignal(SIGABRT), kSaid);
        EXPECT_EXIT(VUKSimRpm_Swapper::ExternalizeScalarUnsafe(stored, item, size),
                    testing::KilledBySignal(SIGABRT), kSaid);
    }
}

TEST(SwapperDeathTest, SaysNothingButOneLineBeforeItAborts)
{
    const TemporaryFolder folder;
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(::open(folder.Path("said").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600), 2);
        std::signal(SIGABRT, [](int) { ::_exit(3); });
        char stored[16] = {};
        char item[16] = {};
        VUKSimRpm_Swapper::InternalizeScalarUnsafe(stored, item, 3);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 3);
    EXPECT_EQ(folder.Read("said"), "Illegal swap size.\n"); // a zero byte would be seen, too
}

TEST(SwapperDeathTest, AbortsByASignalThatTheHostMayAnswer)
{
    char stored[16] = {};
    char item[16] = {};
    const auto answered = [&] {
        std::signal(SIGABRT, [](int) { std::exit(3); });
        VUKSimRpm_Swapper::InternalizeScalarUnsafe(stored, item, 3);
    };
    EXPECT_EXIT(answered(), testing::ExitedWithCode(3), "^Illegal swap size\\.\n$");
}
