// Stored bytes from readable pieces, for tests that write them out by hand. It builds and never
// reads, and knows nothing of the library: what it holds is written down a second time on purpose.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace bytes {

/// `count` zero bytes.
inline std::string Zeros(std::size_t count)
{
    return std::string(count, '\0');
}

/// The lowest `size` bytes of `value`, the lowest first.
inline std::string LittleEndian(std::uint64_t value, int size)
{
    std::string result;
    for (int i = 0; i < size; ++i) {
        result += static_cast<char>((value >> (8 * i)) & 0xFFU);
    }
    return result;
}

inline std::string Word(std::uint32_t value)
{
    return LittleEndian(value, 4);
}

/// As a pool's header has its words: in the order of the machine that wrote them.
inline std::string HostWord(std::uint32_t value)
{
    std::string result = Word(value);
    if constexpr (std::endian::native == std::endian::big) {
        std::ranges::reverse(result);
    }
    return result;
}

inline std::string LongWord(std::uint64_t value)
{
    return LittleEndian(value, 8);
}

/// A UUID that is easy to tell from others: 32 times `letter`.
inline std::string Uuid(char letter)
{
    return std::string(32, letter);
}

/// One pool. Left alone, it is the only pool of an honest file, up to the file's end and without
/// data: give a directory, and change what a test is about.
struct Pool
{
    std::string signature = "\x89SIM\r\n\x1A\n";
    int version = 6; // one signed byte
    std::string reserved = Zeros(7);
    std::string userSignature = "TEST";
    std::string length = "0000000000000000"; // 16 digits; zero: up to the end of the file
    std::uint32_t reserved1 = 2;
    std::uint32_t reserved2 = 0;
    std::optional<std::uint32_t> count = std::nullopt; // of the directory, if not its true one
    std::vector<std::string> directory = {};           // UUIDs of 32 characters, its own first
    std::string data = {};

    /// The first 48 bytes.
    [[nodiscard]] std::string Header() const
    {
        const auto entries = static_cast<std::uint32_t>(directory.size());
        return signature + static_cast<char>(version) + reserved + userSignature + length +
               HostWord(reserved1) + HostWord(reserved2) + HostWord(count.value_or(entries));
    }

    /// Header, directory and data.
    [[nodiscard]] std::string Bytes() const
    {
        std::string result = Header();
        for (const std::string& uuid : directory) {
            result += uuid;
        }
        return result + data;
    }
};

/// Pools laid end to end, as in a file.
inline std::string File(const std::vector<Pool>& pools)
{
    std::string result;
    for (const Pool& pool : pools) {
        result += pool.Bytes();
    }
    return result;
}
} // namespace bytes
