#include "RoundTrip.h"

#include "VUKSimPoolManager.h"

#include <cstring>
#include <exception>
#include <iostream>
#include <string>

namespace {

constexpr char kUsage[] =
    "usage: fe_results [--out FOLDER] [--quiet] MODEL.frd [MORE.frd ...]\n"
    "\n"
    "Stores result files of a finite-element solver (ASCII .frd, as calculix-ccx writes them) in\n"
    "one document: a file for the mesh and one for the results of each, linked by locators.\n"
    "Closes it, opens it in reverse order, writes the result files again from what is stored,\n"
    "and compares them with the originals byte for byte.\n"
    "\n"
    "  --out FOLDER  leave document and copies in FOLDER, which must be new or empty; without it\n"
    "                they are made in a temporary folder and removed\n"
    "  --quiet       print only what was proved\n"
    "\n"
    "Exit status: 0 all came back, 1 an input is odd or something did not hold (nothing is left\n"
    "in FOLDER then), 2 wrong use.\n";

int Complain(const std::string& what)
{
    std::cerr << "fe_results: " << what << "\n\n" << kUsage;
    return 2;
}

} // namespace

int main(int count, char** arguments)
{
    fe::RoundTripOptions options;
    for (int i = 1; i < count; ++i) {
        const char* argument = arguments[i];
        if (std::strcmp(argument, "--help") == 0) {
            std::cout << kUsage;
            return 0;
        }
        if (std::strcmp(argument, "--quiet") == 0) {
            options.quiet = true;
        } else if (std::strcmp(argument, "--out") == 0) {
            if (++i == count || *arguments[i] == '\0') {
                return Complain("--out needs the name of a folder");
            }
            options.folder = arguments[i];
        } else if (*argument == '-') {
            return Complain("cannot make sense of \"" + std::string(argument) + "\"");
        } else {
            options.inputs.emplace_back(argument);
        }
    }
    if (options.inputs.empty()) {
        return Complain("no result file given");
    }
    VUKSimPoolManager_initializeC();
    int status = 0;
    try {
        fe::RunRoundTrip(options, std::cout);
    } catch (const std::exception& error) {
        std::cout << std::flush;
        std::cerr << "fe_results: " << error.what() << std::endl;
        status = 1;
    }
    VUKSimPoolManager_finalizeC();
    return status;
}
