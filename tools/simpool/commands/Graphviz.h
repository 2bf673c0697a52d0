#pragma once

#include <optional>
#include <string>

namespace simpool {

/// What graphviz makes of `dot`, as SVG: runs the program "dot" of the search path. Nothing when it
/// is not installed, fails, or has not come to an end within a minute.
[[nodiscard]] std::optional<std::string> DrawWithGraphviz(const std::string& dot);
} // namespace simpool
