#include "Graphviz.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <memory>
#include <thread>

namespace simpool {
namespace {

using TemporaryFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

// Without a name, and gone with the object. Both sides of the program are files, since with pipes
// each could wait for the other.
TemporaryFile MakeTemporaryFile()
{
    return {std::tmpfile(), &std::fclose};
}

// The process of "dot", or -1.
pid_t Start(int input, int output)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    char name[] = "dot";
    char format[] = "-Tsvg";
    char* arguments[] = {name, format, nullptr};
    pid_t process = -1;
    if (::posix_spawnp(&process, name, &actions, nullptr, arguments, ::environ) != 0) {
        process = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

bool EndsWell(pid_t process)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    int status = 0;
    while (::waitpid(process, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > limit) {
            ::kill(process, SIGKILL);
            ::waitpid(process, &status, 0);
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string ReadAll(std::FILE* file)
{
    std::rewind(file);
    std::string text;
    char chunk[65536];
    while (const std::size_t count = std::fread(chunk, 1, sizeof(chunk), file)) {
        text.append(chunk, count);
    }
    return text;
}
} // namespace

std::optional<std::string> DrawWithGraphviz(const std::string& dot)
{
    const TemporaryFile input = MakeTemporaryFile();
    const TemporaryFile output = MakeTemporaryFile();
    if (!input || !output || std::fwrite(dot.data(), 1, dot.size(), input.get()) != dot.size() ||
        std::fflush(input.get()) != 0) {
        return std::nullopt;
    }
    std::rewind(input.get()); // the program reads from where we stand
    const pid_t process = Start(::fileno(input.get()), ::fileno(output.get()));
    if (process < 0 || !EndsWell(process)) {
        return std::nullopt;
    }
    return ReadAll(output.get());
}
} // namespace simpool
