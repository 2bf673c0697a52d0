#include "CrashNote.h"

#include <array>
#include <cstdio>

#include <csignal>
#include <unistd.h>

namespace {

constexpr std::array kSignals{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

std::array<struct sigaction, kSignals.size()> sBefore;
std::array<char, 128> sText; // written beforehand: little is allowed in a handler
std::size_t sLength = 0;

void Note(int signal)
{
    if (write(STDERR_FILENO, sText.data(), sLength) < 0) {
        // Nobody is left to tell.
    }
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        if (kSignals[i] == signal) {
            sigaction(signal, &sBefore[i],
                      nullptr); // the fault comes again, to whom it came before
        }
    }
}
} // namespace

void CrashNote::Install()
{
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        struct sigaction action = {};
        action.sa_handler = &Note;
        sigaction(kSignals[i], &action, &sBefore[i]);
    }
}

void CrashNote::Playing(std::uint64_t seed, std::uint64_t script) noexcept
{
    const int length = std::snprintf(
        sText.data(), sText.size(), "while playing script %llu of seed %llu\n",
        static_cast<unsigned long long>(script), static_cast<unsigned long long>(seed));
    sLength = static_cast<std::size_t>(length);
}
