// Small pieces of SVG that the pictures share.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace simpool {

/// `text`, which was Escaped before, as XML text or as an attribute's value.
[[nodiscard]] std::string XmlText(std::string_view text);

/// The first characters of `text`, and an ellipsis for the others when there are more than `most`.
[[nodiscard]] std::string Shortened(std::string_view text, std::size_t most);

/// A file's name without its folders, Escaped and Shortened.
[[nodiscard]] std::string ShortName(const std::string& name);

/// The opening tag, a white ground, and the style that all texts share.
[[nodiscard]] std::string SvgBeginning(double width, double height, std::string_view style);
} // namespace simpool
