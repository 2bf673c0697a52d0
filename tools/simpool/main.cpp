#include "Commands.h"

#include <fcntl.h>

#include <csignal>
#include <cstdlib>

namespace {

// A standard descriptor that came closed would be given to the next file that is opened, and what
// is meant for the user would be written there. This one can only fail.
void KeepStandardDescriptorsTaken()
{
    for (int descriptor = 0; descriptor <= 2; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) < 0 && ::open("/dev/null", O_RDONLY) != descriptor) {
            std::_Exit(2);
        }
    }
}
} // namespace

int main(int argumentCount, char** arguments)
{
    KeepStandardDescriptorsTaken();
    // A reader that has gone and a file that may not grow are errors of the write.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    return simpool::RunProgram(simpool::AllCommands(), argumentCount, arguments);
}
