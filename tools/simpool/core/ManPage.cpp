#include "Describe.h"

#include "OptionText.h"

#include <fmt/format.h>

namespace simpool {
namespace {

// Text that the macros leave alone; a line of it may begin with any character.
std::string Roff(std::string_view text)
{
    std::string result;
    bool isLineBegin = true;
    for (const char c : text) {
        if (isLineBegin && (c == '.' || c == '\'')) {
            result += "\\&";
        }
        if (c == '\\') {
            result += "\\e";
        } else if (c == '-') {
            result += "\\-";
        } else {
            result += c;
        }
        isLineBegin = c == '\n';
    }
    return result;
}

// Empty lines part paragraphs.
std::string Paragraphs(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find("\n\n"), text.size());
        result += ".PP\n" + Roff(text.substr(0, end)) + "\n";
        text.remove_prefix(std::min(end + 2, text.size()));
    }
    return result;
}

std::string Options(const CLI::App& options)
{
    std::string result;
    for (const OptionText& text : OptionTexts(options)) {
        std::string head;
        for (const std::string& name : text.names) {
            head += fmt::format("{}\\fB{}\\fR", head.empty() ? "" : ", ", Roff(name));
        }
        if (!text.value.empty()) {
            head += fmt::format("{}\\fI{}\\fR", head.empty() ? "" : " ", Roff(text.value));
        }
        result += fmt::format(".TP\n{}\n{}\n", head, Roff(text.description));
    }
    return result;
}

std::string CommandPart(const CLI::App& options, const CommandText& text)
{
    return fmt::format(".SS \"simpool {} [OPTION]... {}\"\n{}.\n", Roff(text.name),
                       Roff(PositionalLine(options)), Roff(text.summary)) +
           Paragraphs(text.description) + Options(options) +
           fmt::format(".PP\nExample:\n.PP\n.nf\n.RS\n{}.RE\n.fi\n", Roff(text.example));
}
} // namespace

std::string ManPage(const CommandList& commands)
{
    bool json = false;
    const std::unique_ptr<CLI::App> program = DescribeProgram(commands, json);
    std::string page = ".TH SIMPOOL 1 \"\" \"simpool " SIMPOOL_VERSION "\" \"User Commands\"\n"
                       ".SH NAME\nsimpool \\- look into files of pools and mend them\n"
                       ".SH SYNOPSIS\n.B simpool\n.I COMMAND\n[\\fIOPTION\\fR]... "
                       "[\\fIARGUMENT\\fR]...\n.SH DESCRIPTION\n" +
                       Roff(program->get_description()) + ".\n.SH COMMANDS\n";
    for (const std::unique_ptr<Command>& command : commands) {
        page += CommandPart(*program->get_subcommand(command->Text().name), command->Text());
    }
    page += ".SH EXIT STATUS\n.TP\n0\nFine.\n.TP\n1\nA finding or a difference.\n.TP\n2\n"
            "Wrong usage, or an input or output error.\n"
            ".SH ENVIRONMENT\n.TP\n\\fBNO_COLOR\\fR\n"
            "When it is set and not empty, terminals get no colours either.\n";
    return page;
}
} // namespace simpool
