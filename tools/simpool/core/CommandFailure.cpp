#include "CommandFailure.h"

#include "EscapedText.h"

#include <system_error>

namespace simpool {

CommandFailure SystemFailure(const std::string& what, const std::string& name, int errorNumber)
{
    return CommandFailure(what + " " + Quoted(name) + ": " +
                          std::generic_category().message(errorNumber));
}
} // namespace simpool
