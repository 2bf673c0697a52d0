#include "VUKSimRpm_PoolHeader.h"

#include "Bytes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace {

// The header that `values` become.
std::string Encoded(const VUKSimRpm_PoolHeader::Values& values)
{
    std::string header(48, '?');
    VUKSimRpm_PoolHeader::Encode(values, header.data());
    return header;
}

// The four characters as the word that they form in memory.
unsigned int WordOf(const char* text)
{
    unsigned int word = 0;
    std::memcpy(&word, text, 4);
    return word;
}

unsigned long long LengthOf(const std::string& digits)
{
    const bytes::Pool pool{.length = digits};
    return VUKSimRpm_PoolHeader::Decode(pool.Header().data()).length;
}

std::string DigitsOf(unsigned long long length)
{
    return Encoded({0, length, 2, 0, 1}).substr(20, 16);
}
} // namespace

TEST(PoolHeader, WritesEveryOfIts48Bytes)
{
    EXPECT_EQ(Encoded({WordOf("TEST"), 671613264, 0x04030201, 0x08070605, 0x0C0B0A09}),
              std::string("\x89SIM\r\n\x1A\n" // signature
                          "\x06"              // version
                          "\0\0\0\0\0\0\0"    // reserved
                          "TEST"              // user signature
                          "0000000671613264", // length
                          36) +
                  bytes::HostWord(0x04030201) + // reserved1
                  bytes::HostWord(0x08070605) + // reserved2
                  bytes::HostWord(0x0C0B0A09)); // directory count
}

TEST(PoolHeader, ReadsWhatItWrites)
{
    const std::string header = Encoded({WordOf("TEST"), 85, 7, 0xFFFFFFFF, 0x80000000});
    const auto values = VUKSimRpm_PoolHeader::Decode(header.data());
    EXPECT_EQ(values.userSignature, WordOf("TEST"));
    EXPECT_EQ(values.length, 85U);
    EXPECT_EQ(values.reserved1, 7U);
    EXPECT_EQ(values.reserved2, 0xFFFFFFFFU);
    EXPECT_EQ(values.directoryCount, 0x80000000U);
}

TEST(PoolHeader, KnowsTheSignatureByAllEightBytes)
{
    const std::string header = bytes::Pool().Header();
    EXPECT_TRUE(VUKSimRpm_PoolHeader::HasSignature(header.data()));
    for (std::size_t i = 0; i < 8; ++i) {
        std::string damaged = header;
        damaged[i] = static_cast<char>(damaged[i] ^ 1);
        EXPECT_FALSE(VUKSimRpm_PoolHeader::HasSignature(damaged.data())) << "byte " << i;
    }
}

TEST(PoolHeader, NeedsNothingBehindTheSignatureToKnowIt)
{
    EXPECT_TRUE(VUKSimRpm_PoolHeader::HasSignature("\x89SIM\r\n\x1A\n"));
}

TEST(PoolHeader, ReadsTheVersionAsASignedByte)
{
    EXPECT_EQ(VUKSimRpm_PoolHeader::Version(bytes::Pool{.version = 6}.Header().data()), 6);
    EXPECT_EQ(VUKSimRpm_PoolHeader::Version(bytes::Pool{.version = 127}.Header().data()), 127);
    EXPECT_EQ(VUKSimRpm_PoolHeader::Version(bytes::Pool{.version = 128}.Header().data()), -128);
    EXPECT_EQ(VUKSimRpm_PoolHeader::Version(bytes::Pool{.version = 255}.Header().data()), -1);
}

TEST(PoolHeader, IgnoresSignatureVersionAndReservedBytesWhenItReadsValues)
{
    const bytes::Pool odd{.signature = "no magic",
                          .version = 99,
                          .reserved = "garbage",
                          .length = "0000000000000123",
                          .count = 4};
    const auto values = VUKSimRpm_PoolHeader::Decode(odd.Header().data());
    EXPECT_EQ(values.userSignature, WordOf("TEST"));
    EXPECT_EQ(values.length, 123U);
    EXPECT_EQ(values.reserved1, 2U);
    EXPECT_EQ(values.reserved2, 0U);
    EXPECT_EQ(values.directoryCount, 4U);
}

TEST(PoolHeader, RendersTheLengthAsSixteenDigits)
{
    EXPECT_EQ(DigitsOf(0), "0000000000000000");
    EXPECT_EQ(DigitsOf(9), "0000000000000009");
    EXPECT_EQ(DigitsOf(6442451024), "0000006442451024");
    EXPECT_EQ(DigitsOf(9999999999999999), "9999999999999999");
}

TEST(PoolHeader, KeepsTheLowSixteenDigitsOfALongerLength)
{
    EXPECT_EQ(DigitsOf(10000000000000000), "0000000000000000");
    EXPECT_EQ(DigitsOf(UINT64_MAX), "6744073709551615"); // of 18446744073709551615
}

TEST(PoolHeader, ReadsSixteenDigits)
{
    EXPECT_EQ(LengthOf("0000000000000000"), 0U);
    EXPECT_EQ(LengthOf("1234567890123456"), 1234567890123456U);
    EXPECT_EQ(LengthOf("9999999999999999"), 9999999999999999U);
}

TEST(PoolHeader, AddsTheDistanceFromZeroOfAByteThatIsNoDigit)
{
    EXPECT_EQ(LengthOf("000000000000000:"), 10U);                     // ':' is '0' + 10
    EXPECT_EQ(LengthOf("00000000000000:0"), 100U);                    // ten tens
    EXPECT_EQ(LengthOf("000000000000010 "), 84U);                     // ' ' is '0' - 16
    EXPECT_EQ(LengthOf("000000000000000/"), 18446744073709551615ULL); // '/' is '0' - 1
    EXPECT_EQ(LengthOf("00000000000000/:"), 0U);                      // -10 + 10
}

TEST(PoolHeader, TakesTheLengthsBytesAsSigned)
{
    EXPECT_EQ(LengthOf("000000000000100\xFF"), 951U); // 1000 and -1 - 48
    EXPECT_EQ(LengthOf("000000000000100\x80"), 824U); // 1000 and -128 - 48
    EXPECT_EQ(LengthOf("000000000000100\x7F"), 1079U);
}

TEST(PoolHeader, ReadsALengthOfAnyBytesModulo2To64)
{
    // 79 * 1111111111111111
    EXPECT_EQ(LengthOf(std::string(16, '\x7F')), 87777777777777769U);
    // 2^64 - 176 * 1111111111111111
    EXPECT_EQ(LengthOf(std::string(16, '\x80')), 18251188518153996080ULL);
}
