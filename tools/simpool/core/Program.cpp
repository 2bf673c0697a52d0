#include "Program.h"

#include "CommandFailure.h"
#include "EscapedText.h"

#include <exception>
#include <new>
#include <sstream>

namespace simpool {
namespace {

constexpr std::size_t kWidth = 80;       // columns of help
constexpr std::size_t kOptionWidth = 66; // columns of an option's description in it

// Paragraphs of one line each, broken at spaces.
std::string Wrapped(std::string_view text, std::size_t width)
{
    std::string result;
    std::size_t column = 0;
    while (!text.empty()) {
        const std::size_t end = text.find_first_of(" \n");
        const std::string_view word = text.substr(0, end);
        if (column > 0 && column + word.size() > width) {
            result.back() = '\n'; // was a space
            column = 0;
        }
        result += word;
        column += word.size();
        if (end == std::string_view::npos) {
            break;
        }
        result += text[end];
        column = text[end] == '\n' ? 0 : column + 1;
        text.remove_prefix(end + 1);
    }
    return result;
}

std::string Indented(std::string_view lines)
{
    std::string result;
    while (!lines.empty()) {
        const std::size_t length = std::min(lines.find('\n'), lines.size() - 1) + 1;
        result += "  " + std::string(lines.substr(0, length));
        lines.remove_prefix(length);
    }
    return result;
}

// Each line by itself: what the user typed may be quoted in it.
std::string EscapedLines(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        result += Escaped(text.substr(0, end)) + "\n";
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return result;
}

// Prints help, or what is wrong with the arguments.
ExitCode Explain(const CLI::App& program, const CLI::ParseError& error, Output& out, Output& err)
{
    std::ostringstream help;
    std::ostringstream complaint;
    if (program.exit(error, help, complaint) == 0) {
        out.Write(help.str());
        return ExitCode::Fine;
    }
    err.Write(EscapedLines("simpool: " + complaint.str()));
    return ExitCode::Failure;
}

ExitCode ParseAndRun(const CommandList& commands, int argumentCount, const char* const* arguments,
                     Output& out, Output& err)
{
    bool json = false;
    const std::unique_ptr<CLI::App> program = DescribeProgram(commands, json);
    try {
        program->parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return Explain(*program, error, out, err);
    }
    for (const std::unique_ptr<Command>& command : commands) {
        if (program->got_subcommand(command->Text().name)) {
            return command->Run({out, err, json});
        }
    }
    return ExitCode::Failure; // not reached: one command is required
}
} // namespace

std::unique_ptr<CLI::App> DescribeProgram(const CommandList& commands, bool& json)
{
    auto program = std::make_unique<CLI::App>(
        "Shows what is in files of pools, whether they are whole, and gets data out of broken ones",
        "simpool");
    program->set_version_flag("--version", "simpool " SIMPOOL_VERSION);
    program->require_subcommand(1);
    program->footer("simpool COMMAND --help tells more. Exit status: 0 fine, 1 finding or\n"
                    "difference, 2 usage or input/output error.");
    for (const std::unique_ptr<Command>& command : commands) {
        const CommandText text = command->Text();
        CLI::App* options = program->add_subcommand(text.name, text.summary);
        options->footer(Wrapped(text.description, kWidth) + "\n\nExample:\n" +
                        Indented(text.example));
        command->AddOptions(*options);
        options->add_flag("--json", json, "Print one JSON document instead of text");
        for (CLI::Option* option : options->get_options()) {
            option->description(Wrapped(option->get_description(), kOptionWidth));
        }
    }
    return program;
}

int RunProgram(const CommandList& commands, int argumentCount, const char* const* arguments)
{
    Output out(1, "standard output");
    Output err(2, "standard error");
    auto code = ExitCode::Failure;
    std::string trouble;
    try {
        code = ParseAndRun(commands, argumentCount, arguments, out, err);
        out.Flush();
    } catch (const CommandFailure& failure) {
        trouble = failure.what();
    } catch (const std::bad_alloc&) {
        trouble = "memory ran out";
    } catch (const std::exception& failure) {
        trouble = Escaped(failure.what());
    }
    try {
        if (!trouble.empty()) {
            code = ExitCode::Failure;
            err.Print("simpool: {}\n", trouble);
        }
        err.Flush();
    } catch (const CommandFailure&) {
        code = ExitCode::Failure;
    }
    return static_cast<int>(code);
}
} // namespace simpool
