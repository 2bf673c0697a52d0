#include "HurtingFiles.h"

#include "Bytes.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace {

constexpr std::size_t kHeader = 48;
constexpr std::size_t kRecord = 32;

// 32 characters that differ near their end, so that comparing them takes long.
std::string Uuid(std::size_t number)
{
    std::string digits = std::to_string(number);
    return std::string(kRecord - digits.size(), 'u') + digits;
}

std::vector<std::string> Uuids(std::size_t first, std::size_t count)
{
    std::vector<std::string> uuids;
    for (std::size_t i = 0; i < count; ++i) {
        uuids.push_back(Uuid(first + i));
    }
    return uuids;
}

std::string Digits(std::size_t number)
{
    const std::string digits = std::to_string(number);
    return std::string(16 - digits.size(), '0') + digits;
}

// `pool` with the length in its header that it has.
std::string Frozen(bytes::Pool pool)
{
    pool.length = Digits(pool.Bytes().size());
    return pool.Bytes();
}

std::string Filled(std::string file, std::size_t size)
{
    file.resize(size, 'x');
    return file;
}

std::string OneDirectory(std::size_t size)
{
    return Filled(bytes::Pool{.directory = Uuids(0, (size - kHeader) / kRecord)}.Bytes(), size);
}

// As many pools as a document takes that meets them all twice, named by the first directory and
// then again and again, each time in another order.
std::string DirectoriesInOtherOrders(std::size_t size)
{
    const std::size_t count = std::min<std::size_t>(size / kRecord / 4, 15424);
    const std::vector<std::string> known = Uuids(0, count);
    std::mt19937_64 random(7);
    std::string file;
    for (std::size_t pool = 0;; ++pool) {
        std::vector<std::string> directory = known;
        std::ranges::swap(directory[0], directory[pool]); // each pool has a UUID of its own
        std::shuffle(directory.begin() + 1, directory.end(), random);
        const std::string bytes = Frozen({.directory = directory});
        if (file.size() + bytes.size() > size) {
            break;
        }
        file += bytes;
    }
    // What is left belongs to a last pool that names nobody else.
    return Filled(file + bytes::Pool{.directory = {Uuid(count)}}.Bytes(), size);
}

// Two directories after which the table of indices is as large as it gets, then such as draw from
// nearly as many pools as a document can know.
std::string DirectoriesThatDraw(std::size_t size)
{
    const std::vector<std::string> known = Uuids(0, std::min<std::size_t>(size / 64, 40000));
    const std::size_t large = std::min<std::size_t>(size / 160, 15424);
    const std::size_t small = std::min<std::size_t>(size / 320, 6000);
    std::mt19937_64 random(7);
    std::string file;
    for (std::size_t pool = 0;; ++pool) {
        std::vector<std::string> directory{Uuid(known.size() + pool)};
        while (directory.size() < (pool < 2 ? large : small)) {
            directory.push_back(pool < 2 ? known[pool * large + directory.size()]
                                         : known[random() % known.size()]);
        }
        const std::string bytes = Frozen({.directory = directory});
        if (file.size() + bytes.size() + 80 > size) {
            return Filled(file + bytes::Pool{.directory = {Uuid(0)}}.Bytes(), size);
        }
        file += bytes;
    }
}

std::string TinyPools(std::size_t size, std::size_t most)
{
    std::string file;
    for (std::size_t i = 0; i + 1 < most && file.size() + 160 <= size; ++i) {
        file += Frozen({.directory = {Uuid(i)}});
    }
    return Filled(file + bytes::Pool{.directory = {Uuid(most)}}.Bytes(), size);
}

std::string OnlyTinyPools(std::size_t size)
{
    return TinyPools(size, size);
}

std::string AsManyTinyPoolsAsOpen(std::size_t size)
{
    return TinyPools(size, 32704);
}

// Headers without a gap, each of which takes what follows it for its directory. What sets their
// UUIDs, the beginnings of the headers behind them, apart are the seven bytes that nobody reads.
std::string Nested(std::size_t size, std::uint32_t (*records)(std::size_t left))
{
    std::string file;
    for (std::size_t i = 0; file.size() + kHeader <= size; ++i) {
        std::string number = std::to_string(i);
        file += bytes::Pool{.reserved = std::string(7 - number.size(), '0') + number,
                            .length = Digits(kHeader),
                            .count = records(size - file.size() - kHeader)}
                    .Header();
    }
    return Filled(file, size);
}

std::string NestedOfOneRecord(std::size_t size)
{
    return Nested(size, [](std::size_t) { return 1U; });
}

std::string NestedOfAllThatFollows(std::size_t size)
{
    return Nested(size,
                  [](std::size_t left) { return static_cast<std::uint32_t>(left / kRecord); });
}

// Each takes a hundredth of the file: the first hundred spend what one load may read.
std::string NestedOfAHundredth(std::size_t size)
{
    static std::size_t sHundredth = 0;
    sHundredth = size / 100 / kRecord;
    return Nested(size, [](std::size_t left) {
        return static_cast<std::uint32_t>(std::min(left / kRecord, sHundredth));
    });
}

// The first pool leads to the last, and each of the others to the one before it: the last digit
// stands for -80.
std::string PoolsThatLeadBack(std::size_t size)
{
    const std::size_t count = size / 80;
    std::string file;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string length =
            i == 0 ? Digits(80 * (count - 1)) : std::string(15, '0') + static_cast<char>('0' - 80);
        file += bytes::Pool{.length = length, .directory = {Uuid(i)}}.Bytes();
    }
    return Filled(file, size);
}

std::string HugeCount(std::size_t size)
{
    return Filled(bytes::Pool{.count = 0xFFFFFFFFU, .directory = {Uuid(0)}}.Bytes(), size);
}

std::string HugeLength(std::size_t size)
{
    return Filled(
        bytes::Pool{.length = "9999999999999999", .directory = Uuids(0, size / 64)}.Bytes(), size);
}
} // namespace

const std::vector<HurtingKind>& HurtingKinds()
{
    static const std::vector<HurtingKind> kinds{
        {"one directory over the whole file", &OneDirectory},
        {"directories in other orders", &DirectoriesInOtherOrders},
        {"directories that draw from many pools", &DirectoriesThatDraw},
        {"tiny pools", &OnlyTinyPools},
        {"as many tiny pools as open", &AsManyTinyPoolsAsOpen},
        {"nested headers, one record each", &NestedOfOneRecord},
        {"nested headers, a hundredth of the file each", &NestedOfAHundredth},
        {"nested headers, all that follows each", &NestedOfAllThatFollows},
        {"pools that lead back", &PoolsThatLeadBack},
        {"a count of 4,294,967,295", &HugeCount},
        {"a length of 9,999,999,999,999,999", &HugeLength},
    };
    return kinds;
}
