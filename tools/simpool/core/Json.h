#pragma once

#include "Output.h"
#include "StoredHeader.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>

namespace simpool {

using Json = nlohmann::ordered_json;

/// A document to fill: {"schema": "simpool/1", "command": name}.
[[nodiscard]] Json NewDocument(const std::string& command);

/// Writes `document`, indented by two, with a line's end. Text in it must have been Escaped.
void PrintJson(Output& out, const Json& document);

/// Reads a file that holds one document of `command`.
/// \throws CommandFailure when it cannot be read, is no JSON or another document.
[[nodiscard]] Json ReadDocument(const std::string& name, const std::string& command);
} // namespace simpool
