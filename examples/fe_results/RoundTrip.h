#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace fe {

struct RoundTripOptions
{
    std::vector<std::string> inputs; // result files; at least one
    std::string folder;              // where the document is left; empty: nowhere
    bool quiet = false;              // tell only what was proved
};

/// Stores all inputs in one document, closes it, opens its files in reverse order, writes every
/// result file again by following locators, compares it with its input byte for byte, and leaves
/// document and copies in the folder. Tells its story on `out`.
/// \throws std::exception's heirs, with the reason, when any of it does not hold: nothing is left
/// in the folder then.
void RunRoundTrip(const RoundTripOptions& options, std::ostream& out);

} // namespace fe
