#include "Output.h"

#include "CommandFailure.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace simpool {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 16;

bool WantsNoColour()
{
    const char* value = std::getenv("NO_COLOR");
    return value != nullptr && *value != '\0';
}
} // namespace

Output::Output(int descriptor, std::string name)
    : mDescriptor(descriptor), mName(std::move(name)), mIsTerminal(::isatty(descriptor) == 1),
      mHasColours(mIsTerminal && !WantsNoColour())
{}

void Output::Write(std::string_view text)
{
    mBuffer += text;
    if (mBuffer.size() >= kBufferSize) {
        Flush();
    }
}

void Output::Flush()
{
    std::string_view left = mBuffer;
    int failure = 0;
    while (!left.empty() && failure == 0) {
        const ssize_t count = ::write(mDescriptor, left.data(), left.size());
        if (count >= 0) {
            left.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            failure = errno;
        }
    }
    mBuffer.clear();
    if (failure != 0) {
        throw CommandFailure("cannot write to " + mName + ": " +
                             std::generic_category().message(failure));
    }
}

std::string Output::Paint(Colour colour, std::string_view text) const
{
    constexpr std::array<const char*, 6> kCodes = {"1", "2", "31", "32", "33", "34"};
    if (!mHasColours) {
        return std::string(text);
    }
    return fmt::format("\x1b[{}m{}\x1b[0m", kCodes[static_cast<std::size_t>(colour)], text);
}
} // namespace simpool
