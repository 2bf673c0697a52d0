// Prints what is made from the commands' description: the build installs it beside the program.
#include "Commands.h"
#include "Describe.h"

#include <cstdio>
#include <string>
#include <string_view>

int main(int argumentCount, char** arguments)
{
    const std::string_view what = argumentCount == 2 ? arguments[1] : "";
    const simpool::CommandList commands = simpool::AllCommands();
    std::string text;
    if (what == "man") {
        text = simpool::ManPage(commands);
    } else if (what == "bash") {
        text = simpool::BashCompletion(commands);
    } else if (what == "zsh") {
        text = simpool::ZshCompletion(commands);
    } else if (what == "fish") {
        text = simpool::FishCompletion(commands);
    } else {
        std::fputs("usage: simpool_describe man|bash|zsh|fish\n", stderr);
        return 2;
    }
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
                   std::fflush(stdout) == 0
               ? 0
               : 1;
}
