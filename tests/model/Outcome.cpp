#include "Outcome.h"

#include <cctype>
#include <iomanip>

namespace {

// Letters as they are, all else as \xx.
void PrintBytes(std::ostream& out, const std::string& bytes)
{
    const auto flags = out.flags();
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 && std::isgraph(byte) != 0) {
            out << c;
        } else {
            out << '\\' << std::hex << std::setw(2) << std::setfill('0')
                << static_cast<unsigned>(byte);
        }
    }
    out.flags(flags);
}
} // namespace

std::ostream& operator<<(std::ostream& out, const Outcome& outcome)
{
    if (outcome.skipped) {
        out << "skipped ";
    }
    for (const std::uint64_t number : outcome.numbers) {
        out << number << ' ';
    }
    if (!outcome.bytes.empty()) {
        out << '"';
        PrintBytes(out, outcome.bytes);
        out << "\" ";
    }
    if (!outcome.uuid.empty()) {
        out << "pool " << outcome.uuid << ' ';
    }
    if (!outcome.name.empty()) {
        out << "file " << outcome.name << ' ';
    }
    for (const Report& report : outcome.reports) {
        out << "reported " << report << ' ';
    }
    if (outcome.failure) {
        out << "raised " << *outcome.failure;
    }
    return out;
}
