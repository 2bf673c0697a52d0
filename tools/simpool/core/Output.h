#pragma once

#include <fmt/format.h>

#include <string>
#include <string_view>

namespace simpool {

enum class Colour
{
    Bold,
    Dim,
    Red,
    Green,
    Yellow,
    Blue
};

/// Standard output, standard error, or any open descriptor: buffered, and every failure counts.
///
/// A full disk or a pipe whose reader has gone is a CommandFailure, at the latest at Flush. The
/// destructor writes nothing: what was not flushed is lost, since it could not tell.
class Output
{
public:
    /// The descriptor is not owned. `name` stands in messages, as in "standard output".
    Output(int descriptor, std::string name);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void Write(std::string_view text);

    template <class... Values>
    void Print(fmt::format_string<Values...> format, Values&&... values)
    {
        Write(fmt::format(format, std::forward<Values>(values)...));
    }

    void Flush();

    [[nodiscard]] bool IsTerminal() const noexcept { return mIsTerminal; }

    /// `text` in `colour` on a terminal, unless the environment has a NO_COLOR that is not empty;
    /// else `text` as it is. Pad before colouring.
    [[nodiscard]] std::string Paint(Colour colour, std::string_view text) const;

private:
    int mDescriptor;
    std::string mName;
    std::string mBuffer = {};
    bool mIsTerminal;
    bool mHasColours;
};
} // namespace simpool
