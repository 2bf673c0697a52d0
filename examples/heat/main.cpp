#include "Demo.h"

#include <cstring>
#include <exception>
#include <iostream>
#include <unistd.h>

namespace {

constexpr char kUsage[] =
    "usage: heat [--out FOLDER]\n"
    "\n"
    "Computes the heating of a plate with a hole, stores mesh and history in FOLDER\n"
    "(default heat-demo: model.sim, results.sim, field.svg; earlier ones are replaced),\n"
    "is killed half way, goes on from the files, and proves that nothing was lost.\n"
    "Exit status: 0 all proved, 1 something did not hold, 2 wrong use.\n";

} // namespace

int main(int count, char** arguments)
{
    heat::DemoOptions options;
    for (int i = 1; i < count; ++i) {
        if (std::strcmp(arguments[i], "--help") == 0) {
            std::cout << kUsage;
            return 0;
        }
        if (std::strcmp(arguments[i], "--out") != 0 || i + 1 == count) {
            std::cerr << "heat: cannot make sense of \"" << arguments[i] << "\"\n\n" << kUsage;
            return 2;
        }
        options.folder = arguments[++i];
    }
    options.terminal = ::isatty(STDOUT_FILENO) == 1;
    try {
        heat::RunDemo(options, std::cout);
    } catch (const std::exception& error) {
        std::cout << std::endl;
        std::cerr << "heat: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
