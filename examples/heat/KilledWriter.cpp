#include "KilledWriter.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <system_error>

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace heat {

namespace {

struct Message
{
    enum Kind : std::uint32_t
    {
        Stored,
        BeforeCheckpoint // the writer waits for an answer: the same message back
    };
    Kind kind = Stored;
    std::uint32_t step = 0;
};

// One end of the line between the two processes. A message is far smaller than what the system
// transfers in one piece.
class Line
{
public:
    explicit Line(int descriptor) : mDescriptor(descriptor) {}
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;
    ~Line() { ::close(mDescriptor); }

    // False when the other end is gone.
    bool Send(const Message& message) const
    {
        return ::send(mDescriptor, &message, sizeof message, MSG_NOSIGNAL) ==
               static_cast<ssize_t>(sizeof message);
    }

    bool Receive(Message& message) const
    {
        ssize_t count = 0;
        do {
            count = ::recv(mDescriptor, &message, sizeof message, 0);
        } while (count < 0 && errno == EINTR);
        return count == static_cast<ssize_t>(sizeof message);
    }

private:
    int mDescriptor;
};

class Announcer final : public StoredRunObserver
{
public:
    explicit Announcer(const Line& line) : mLine(line) {}

    void Stored(std::uint32_t step) override
    {
        if (!mLine.Send({Message::Stored, step})) {
            throw std::runtime_error("nobody listens any more");
        }
    }

    void BeforeCheckpoint(std::uint32_t step) override
    {
        Message answer;
        if (!mLine.Send({Message::BeforeCheckpoint, step}) || !mLine.Receive(answer)) {
            throw std::runtime_error("nobody answers any more");
        }
    }

private:
    const Line& mLine;
};

// Leaves by _exit: what the parent has in its buffers and at its exits is not the child's.
[[noreturn]] void Write(const Line& line, const StoredRunPlan& plan, const Model& model)
{
    int status = 0;
    try {
        Announcer announcer(line);
        RunFromStart(plan, model, announcer);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "writer: %s\n", error.what());
        status = 1;
    }
    ::_exit(status);
}

int Wait(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "waiting for the writer");
        }
    }
    return status;
}

void Listen(const Line& line, std::uint32_t killStep, KillReport& report,
            const std::function<void(std::uint32_t)>& progress)
{
    Message message;
    while (report.announcedStep < killStep && line.Receive(message)) {
        if (message.kind == Message::Stored) {
            report.announcedStep = message.step;
            progress(message.step);
        } else {
            report.checkpointStep = message.step;
            line.Send(message);
        }
    }
}

} // namespace

KillReport KillWriterAt(std::uint32_t killStep, const StoredRunPlan& plan, const Model& model,
                        const std::function<void(std::uint32_t)>& progress)
{
    if (killStep == 0 || killStep >= model.steps || killStep % plan.checkpointEvery == 0) {
        throw std::invalid_argument("step " + std::to_string(killStep) +
                                    " does not lie between two checkpoints of the run");
    }
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "a line to the writer");
    }
    std::fflush(nullptr);
    KillReport report;
    report.process = ::fork();
    if (report.process == 0) {
        ::close(ends[0]);
        const Line line(ends[1]);
        Write(line, plan, model);
    }
    ::close(ends[1]);
    const Line line(ends[0]);
    if (report.process < 0) {
        throw std::system_error(errno, std::generic_category(), "starting the writer");
    }

    Listen(line, killStep, report, progress);
    ::kill(report.process, SIGKILL);
    const int status = Wait(report.process);
    if (report.announcedStep < killStep || !WIFSIGNALED(status) || WTERMSIG(status) != SIGKILL) {
        throw std::runtime_error("the writer ended by itself after step " +
                                 std::to_string(report.announcedStep));
    }
    return report;
}

} // namespace heat
