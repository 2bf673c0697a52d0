#pragma once

#include <cstdint>
#include <ostream>
#include <string>

namespace heat {

/// A bar that grows on one line of a terminal; elsewhere only its last line is written.
class Progress
{
public:
    /// `out` must outlive the bar, which is full at step `total`, above 0.
    Progress(std::ostream& out, bool terminal, std::uint32_t total);

    void Show(std::uint32_t step);

    /// Ends the line as it stands, with `word`, when there is one, behind it.
    void Finish(const std::string& word);

private:
    void Write(const std::string& word);

    std::ostream& mOut;
    bool mTerminal;
    std::uint32_t mTotal;
    std::uint32_t mStep = 0;
    unsigned mShown = ~0u; // cells of the bar on the screen
};

} // namespace heat
