#include "RunSimpool.h"

#include "TemporaryFolder.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

std::string ShellQuoted(const std::string& text)
{
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}
} // namespace

Ran RunShell(const std::string& command, const std::string& folder)
{
    const TemporaryFolder outputs;
    const std::string line = "cd " + ShellQuoted(folder.empty() ? outputs.Path("") : folder) +
                             " && { " + command + "\n} >" + ShellQuoted(outputs.Path("out")) +
                             " 2>" + ShellQuoted(outputs.Path("err")) + " </dev/null";
    setenv("simpool", "timeout 30 " SIMPOOL_PROGRAM, 1);
    const int status = std::system(line.c_str());
    Ran ran;
    ran.exit = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    ran.out = outputs.Read("out");
    ran.err = outputs.Read("err");
    return ran;
}

Ran RunSimpool(const std::vector<std::string>& arguments, const std::string& folder)
{
    std::string command = "$simpool";
    for (const std::string& argument : arguments) {
        command += " " + ShellQuoted(argument);
    }
    return RunShell(command, folder);
}
