#include "Damage.h"

#include "Choices.h"
#include "Registers.h"

#include <algorithm>

namespace {

// The pool's bytes as they would be with one field hit; may be longer than the pool.
void Hit(std::string& pool, const std::string& first, Field field, std::uint32_t byte)
{
    const auto character = static_cast<char>(byte);
    switch (field) {
    case Field::Signature:
        pool[byte % 8] = static_cast<char>(pool[byte % 8] ^ 1);
        break;
    case Field::Version:
        pool[8] = std::string{5, 7, 1, 0, '\xFF', '\x80', 6}[byte % 7];
        break;
    case Field::UserSignature:
        pool.replace(16, 4, byte % 2 == 0 ? "AAAA" : "BBBB");
        break;
    case Field::LengthDigit:
        pool[20 + byte % 16] = static_cast<char>(byte / 2 + 40);
        break;
    case Field::WholeLength:
        pool.replace(20, 16, std::string(13, '0') + std::to_string(100 + byte));
        break;
    case Field::Reserved:
        pool[9 + byte % 7] = pool[36 + byte % 8] = character;
        break;
    case Field::SmallCount:
        pool[44] = static_cast<char>(byte % 8);
        break;
    case Field::CountByte:
        pool[44 + byte % 4] = static_cast<char>(byte / 4);
        break;
    case Field::UuidByte:
        pool[48 + byte % 64] = static_cast<char>(byte % 3 == 0 ? 0 : byte);
        break;
    case Field::OwnUuid:
        pool.replace(48, 32, first, 48, 32);
        break;
    default:
        pool[80 + byte] = character;
        break;
    }
}
} // namespace

std::vector<std::size_t> PoolStarts(const std::string& content)
{
    std::vector<std::size_t> starts{0};
    for (std::size_t at = 0; starts.size() < kMostPools;) {
        std::size_t length = 0;
        for (std::size_t i = at + 20; i < std::min(at + 36, content.size()); ++i) {
            length = length * 10 + static_cast<std::size_t>(content[i] - '0');
        }
        at += length;
        if (length == 0 || at >= content.size() || content.compare(at, 4, "\x89SIM") != 0) {
            break;
        }
        starts.push_back(at);
    }
    return starts;
}

std::string Damaged(const Operation& operation, std::string content)
{
    const auto& arguments = operation.arguments;
    if (operation.kind == Kind::LengthenFile) {
        return content + Pattern(arguments[2], arguments[1]);
    }
    const std::vector<std::size_t> starts = PoolStarts(content);
    const std::size_t start = starts[arguments[1] % starts.size()];
    if (operation.kind == Kind::CutFile) {
        content.resize(std::min(content.size(), start + arguments[2]));
        return content;
    }
    std::string pool = content.substr(start);
    const std::size_t size = pool.size();
    pool.resize(std::max<std::size_t>(size, 400)); // room for any hit
    std::string first = content;
    first.resize(std::max<std::size_t>(first.size(), 80));
    Hit(pool, first, static_cast<Field>(arguments[2]), arguments[3]);
    pool.resize(size); // a file does not become longer
    return content.replace(start, size, pool);
}
