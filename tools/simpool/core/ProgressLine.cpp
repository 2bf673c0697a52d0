#include "ProgressLine.h"

#include "CommandFailure.h"

namespace simpool {
namespace {

constexpr auto kDelay = std::chrono::milliseconds(500); // before it is shown
constexpr auto kInterval = std::chrono::milliseconds(100);
constexpr char kClearLine[] = "\r\x1b[K";

// Nobody's work fails because nobody can be told how far it is.
void Show(Output& err, const std::string& text)
{
    try {
        err.Write(text);
        err.Flush();
    } catch (const CommandFailure&) {
    }
}
} // namespace

ProgressLine::ProgressLine(Output& err, std::string what, std::uint64_t total)
    : mErr(err), mWhat(std::move(what)), mTotal(total),
      mNext(std::chrono::steady_clock::now() + kDelay)
{}

ProgressLine::~ProgressLine()
{
    if (mIsShown) {
        Show(mErr, kClearLine);
    }
}

void ProgressLine::At(std::uint64_t done)
{
    const auto now = std::chrono::steady_clock::now();
    if (!mErr.IsTerminal() || now < mNext || mTotal == 0) {
        return;
    }
    mNext = now + kInterval;
    mIsShown = true;
    const double share = 100 * static_cast<double>(done) / static_cast<double>(mTotal);
    Show(mErr, fmt::format("{}{} {:.0f} %", kClearLine, mWhat, share));
}
} // namespace simpool
