// A mutator that knows the pool header: half of its changes keep signature, version, counts and
// lengths plausible, so that what lies behind the checks is reached; the other half is the fuzzer's
// own. Linked into the targets whose input holds files.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t most, unsigned int seed);

namespace {

constexpr std::size_t kHeader = 48; // bytes
constexpr std::size_t kEntry = 32;
constexpr std::uint8_t kSignature[] = {0x89, 'S', 'I', 'M', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t kNone = ~std::size_t{0};

using Random = std::minstd_rand;

std::size_t Below(Random& random, std::size_t bound)
{
    return random() % std::max<std::size_t>(bound, 1);
}

// Where some header begins, counted around from a random place; kNone when there is none.
std::size_t FindHeader(const std::uint8_t* data, std::size_t size, Random& random)
{
    if (size < kHeader) {
        return kNone;
    }
    const std::size_t last = size - kHeader + 1;
    const std::size_t from = Below(random, last);
    for (std::size_t i = 0; i < last; ++i) {
        const std::size_t position = (from + i) % last;
        if (std::memcmp(data + position, kSignature, sizeof kSignature) == 0) {
            return position;
        }
    }
    return kNone;
}

void PutLength(std::uint8_t* header, std::uint64_t length)
{
    for (int i = 35; i >= 20; --i, length /= 10) {
        header[i] = static_cast<std::uint8_t>('0' + length % 10);
    }
}

void PutCount(std::uint8_t* header, std::uint32_t count)
{
    std::memcpy(header + 44, &count, sizeof count);
}

// A whole pool header at `position`, with a directory count and a length that nearly fit.
void PutHeader(std::uint8_t* data, std::size_t size, std::size_t position, Random& random)
{
    std::uint8_t* header = data + position;
    std::memset(header, 0, kHeader);
    std::memcpy(header, kSignature, sizeof kSignature);
    header[8] = 6;
    std::memcpy(header + 16, "FUZZ", 4);
    PutLength(header, Below(random, 2) != 0 ? 0 : Below(random, size - position + kEntry));
    PutCount(header, static_cast<std::uint32_t>(Below(random, 4)));
}

// Copies one directory entry over another, so that UUIDs meet.
void CopyEntry(std::uint8_t* data, std::size_t size, Random& random)
{
    if (size >= kHeader + 2 * kEntry) {
        const std::size_t last = size - kEntry + 1;
        std::memmove(data + Below(random, last), data + Below(random, last), kEntry);
    }
}

void ChangeHeader(std::uint8_t* data, std::size_t size, Random& random)
{
    const std::size_t position = FindHeader(data, size, random);
    if (position == kNone || Below(random, 6) == 0) {
        if (size >= kHeader) {
            PutHeader(data, size, Below(random, size - kHeader + 1), random);
        }
        return;
    }
    std::uint8_t* header = data + position;
    const std::size_t rest = size - position;
    switch (Below(random, 5)) {
    case 0:
        PutLength(header, Below(random, rest + kEntry));
        break;
    case 1:
        header[20 + Below(random, 16)] = static_cast<std::uint8_t>(random());
        break;
    case 2:
        PutCount(header, static_cast<std::uint32_t>(Below(random, rest / kEntry + 2)));
        break;
    case 3:
        PutCount(header, 0xFFFFFFFFU >> Below(random, 32));
        break;
    default:
        header[8] = static_cast<std::uint8_t>(5 + Below(random, 3));
    }
}
} // namespace

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                    unsigned int seed)
{
    Random random(seed);
    switch (Below(random, 4)) {
    case 0:
        CopyEntry(data, size, random);
        return size;
    case 1:
        ChangeHeader(data, size, random);
        return size;
    default:
        return LLVMFuzzerMutate(data, size, most);
    }
}
