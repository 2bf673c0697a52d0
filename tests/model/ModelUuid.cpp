#include "ModelUuid.h"

#include "Failure.h"

#include <cstddef>
#include <utility>

namespace model {
namespace {

bool OneOf(char c, const char* allowed)
{
    return std::string(allowed).find(c) != std::string::npos;
}
} // namespace

Uuid UuidSource::Create()
{
    if (!forced.empty()) {
        return std::exchange(forced, {});
    }
    if (!LooksGenerated(told)) {
        throw Failure{
            .exception = "no identifier that the library generated", .text = told, .path = {}};
    }
    return std::exchange(told, {});
}

bool LooksGenerated(const Uuid& uuid)
{
    if (uuid.size() != 32) {
        return false;
    }
    for (std::size_t i = 0; i < 32; ++i) {
        const char* allowed = "0123456789abcdef";
        if (i % 8 == 7) {
            allowed = "01234567";
        } else if (i == 12) {
            allowed = "4";
        } else if (i == 16) {
            allowed = "89ab";
        }
        if (!OneOf(uuid[i], allowed)) {
            return false;
        }
    }
    return true;
}
} // namespace model
