#include "Progress.h"

#include <algorithm>

namespace heat {

namespace {

constexpr unsigned kCells = 40;

} // namespace

Progress::Progress(std::ostream& out, bool terminal, std::uint32_t total)
    : mOut(out), mTerminal(terminal), mTotal(total)
{}

void Progress::Show(std::uint32_t step)
{
    mStep = std::min(step, mTotal);
    const auto cells = static_cast<unsigned>(std::uint64_t{kCells} * mStep / mTotal);
    if (mTerminal && cells != mShown) {
        mShown = cells;
        Write("");
        mOut << std::flush;
    }
}

void Progress::Finish(const std::string& word)
{
    Write(word.empty() ? word : "  " + word);
    mOut << std::endl;
}

void Progress::Write(const std::string& word)
{
    const auto cells = static_cast<unsigned>(std::uint64_t{kCells} * mStep / mTotal);
    mOut << (mTerminal ? "\r" : "") << "   [" << std::string(cells, '#')
         << std::string(kCells - cells, '.') << "] step " << mStep << " of " << mTotal << word;
}

} // namespace heat
