#include "OptionText.h"

#include <algorithm>

namespace simpool {

std::vector<OptionText> OptionTexts(const CLI::App& options)
{
    std::vector<OptionText> texts;
    for (const CLI::Option* option : options.get_options()) {
        OptionText text;
        for (const std::string& name : option->get_snames()) {
            text.names.push_back("-" + name);
        }
        for (const std::string& name : option->get_lnames()) {
            text.names.push_back("--" + name);
        }
        text.positional = text.names.empty() ? option->get_name(true) : "";
        text.value = option->get_items_expected_max() == 0 ? "" : option->get_type_name();
        text.description = option->get_description();
        std::ranges::replace(text.description, '\n', ' ');
        text.isRequired = option->get_required();
        text.isMany = option->get_expected_max() > 1;
        texts.push_back(std::move(text));
    }
    return texts;
}

std::string PositionalLine(const CLI::App& options)
{
    std::string line;
    for (const OptionText& text : OptionTexts(options)) {
        if (text.names.empty()) {
            const std::string name = text.value + (text.isMany ? "..." : "");
            line += (line.empty() ? "" : " ") + (text.isRequired ? name : "[" + name + "]");
        }
    }
    return line;
}
} // namespace simpool
