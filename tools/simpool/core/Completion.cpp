#include "Describe.h"

#include "OptionText.h"

#include <fmt/format.h>

namespace simpool {
namespace {

// In single quotes, for a shell.
std::string InQuotes(std::string_view text, std::string_view quoteInside)
{
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string(quoteInside) : std::string(1, c);
    }
    return quoted + "'";
}

std::string ZshQuoted(std::string_view text)
{
    return InQuotes(text, "'\\''");
}

std::string FishQuoted(std::string_view text)
{
    return InQuotes(text, "\\'");
}

// Characters that mean something within zsh's own specifications.
std::string ZshEscaped(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        escaped += (c == '[' || c == ']' || c == ':' || c == '\\' ? "\\" : "") + std::string(1, c);
    }
    return escaped;
}

std::string Joined(const std::vector<std::string>& words)
{
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() ? "" : " ") + word;
    }
    return line;
}

std::vector<std::string> OptionNames(const CLI::App& options)
{
    std::vector<std::string> names;
    for (const OptionText& text : OptionTexts(options)) {
        names.insert(names.end(), text.names.begin(), text.names.end());
    }
    return names;
}

using Visitor = void (*)(std::string& script, const CLI::App& options, const CommandText& text);

void ForEachCommand(const CommandList& commands, std::string& script, Visitor visit)
{
    bool json = false;
    const std::unique_ptr<CLI::App> program = DescribeProgram(commands, json);
    for (const std::unique_ptr<Command>& command : commands) {
        visit(script, *program->get_subcommand(command->Text().name), command->Text());
    }
}

void AddZshArguments(std::string& script, const CLI::App& options, const CommandText& text)
{
    script += fmt::format("    {})\n        _arguments \\\n", text.name);
    for (const OptionText& option : OptionTexts(options)) {
        const std::string value =
            option.value.empty() ? "" : ":" + ZshEscaped(option.value) + ":_files";
        for (const std::string& name : option.names) {
            const std::string shown = fmt::format("({}){}[{}]{}", Joined(option.names), name,
                                                  ZshEscaped(option.description), value);
            script += fmt::format("            {} \\\n", ZshQuoted(shown));
        }
    }
    script += "            '*:file:_files'\n        ;;\n";
}

void AddFishOptions(std::string& script, const CLI::App& options, const CommandText& text)
{
    script += fmt::format("complete -c simpool -n __fish_use_subcommand -f -a {} -d {}\n",
                          text.name, FishQuoted(text.summary));
    for (const OptionText& option : OptionTexts(options)) {
        if (option.names.empty()) {
            continue;
        }
        script += fmt::format("complete -c simpool -n '__fish_seen_subcommand_from {}'", text.name);
        for (const std::string& name : option.names) {
            script += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
        }
        script +=
            (option.value.empty() ? "" : " -r") + (" -d " + FishQuoted(option.description)) + "\n";
    }
}
} // namespace

std::string BashCompletion(const CommandList& commands)
{
    std::vector<std::string> names;
    for (const std::unique_ptr<Command>& command : commands) {
        names.emplace_back(command->Text().name);
    }
    std::string script = "# bash completion for simpool\n"
                         "_simpool()\n{\n"
                         "    local word=${COMP_WORDS[COMP_CWORD]} options=\n"
                         "    COMPREPLY=()\n"
                         "    if ((COMP_CWORD == 1)); then\n"
                         "        mapfile -t COMPREPLY < <(compgen -W \"" +
                         Joined(names) +
                         " --help --version\" -- \"$word\")\n"
                         "        return\n"
                         "    fi\n"
                         "    case ${COMP_WORDS[1]} in\n";
    ForEachCommand(commands, script,
                   [](std::string& text, const CLI::App& options, const CommandText& command) {
                       text += fmt::format("    {}) options=\"{}\" ;;\n", command.name,
                                           Joined(OptionNames(options)));
                   });
    return script + "    esac\n"
                    "    if [[ $word == -* ]]; then\n"
                    "        mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$word\")\n"
                    "    else\n"
                    "        mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n"
                    "    fi\n"
                    "}\n"
                    "complete -o filenames -F _simpool simpool\n";
}

std::string ZshCompletion(const CommandList& commands)
{
    std::string script = "#compdef simpool\n\n"
                         "_simpool() {\n"
                         "    local -a commands\n"
                         "    commands=(\n";
    for (const std::unique_ptr<Command>& command : commands) {
        const CommandText text = command->Text();
        script +=
            "        " + ZshQuoted(std::string(text.name) + ":" + ZshEscaped(text.summary)) + "\n";
    }
    script += "    )\n"
              "    if ((CURRENT == 2)); then\n"
              "        _describe command commands\n"
              "        return\n"
              "    fi\n"
              "    shift words\n"
              "    ((CURRENT--))\n"
              "    case $words[1] in\n";
    ForEachCommand(commands, script, AddZshArguments);
    return script + "    esac\n}\n\n_simpool \"$@\"\n";
}

std::string FishCompletion(const CommandList& commands)
{
    std::string script = "# fish completion for simpool\n";
    ForEachCommand(commands, script, AddFishOptions);
    return script;
}
} // namespace simpool
