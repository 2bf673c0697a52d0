#pragma once

#include <stdexcept>
#include <string>

namespace simpool {

/// What ends a command with exit code 2: a sentence for the user, already free of bytes that a
/// terminal would obey. The program puts its own name in front of it.
class CommandFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// "cannot open 'a.sim': No such file or directory", from "cannot open", the name and errno.
[[nodiscard]] CommandFailure SystemFailure(const std::string& what, const std::string& name,
                                           int errorNumber);
} // namespace simpool
