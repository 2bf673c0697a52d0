#include "Oracle.h"

#include <filesystem>
#include <optional>
#include <sstream>
#include <typeinfo>

#include <fcntl.h>

namespace {

constexpr char kFileSource[] = "VUKSim/VUKSimUtt.m/src/VUKSimUttOSFile";
constexpr char kOpenSource[] = "VUKSim/VUKSimUtt.m/src/VUKSimUttOSFileOpen";

// The failure that a call leads to: what the exception says, and from where.
struct Failure
{
    std::string operation;
    const char* source;
    int line;
};

bool CameBefore(const Hit& hit, std::size_t steps, SystemCall call)
{
    return hit.before.size() >= steps && hit.before[hit.before.size() - steps].call == call;
}

// The end of the move of a descriptor that came in too low.
bool MoveCameBefore(const Hit& hit, std::size_t steps)
{
    return CameBefore(hit, steps, SystemCall::Fcntl);
}

// An open, alone or with such a move.
bool OpenCameBefore(const Hit& hit, std::size_t steps)
{
    return CameBefore(hit, steps, SystemCall::Open) ||
           (CameBefore(hit, steps, SystemCall::Close) && MoveCameBefore(hit, steps + 1));
}

Failure FailureOfOpen(int flags)
{
    return (flags & O_EXCL) != 0 ? Failure{"create", kOpenSource, 96}
                                 : Failure{"open", kOpenSource, 52};
}

std::optional<Failure> FailureOfLook(const Operation& operation, const Hit& hit)
{
    if (OpenCameBefore(hit, 1)) {
        return Failure{"open", kOpenSource, 58};
    }
    const std::string purpose = operation.LooksFor(hit);
    const int line = purpose == "measure" ? 127 : purpose == "write" ? 174 : 263;
    return Failure{purpose, kFileSource, line};
}

// What the call leads to when it fails; nothing where the operation gets on without it.
std::optional<Failure> FailureOf(const Operation& operation, const Hit& hit)
{
    const int error = hit.trouble.flaw.errorNumber;
    switch (hit.made.call) {
    case SystemCall::Open:
        if ((hit.made.flags & O_DIRECTORY) != 0 ||
            (error == EEXIST && hit.trouble.reach == Reach::Once)) {
            return {}; // the whole file system is synced; another name is taken
        }
        return FailureOfOpen(hit.made.flags);
    case SystemCall::Fcntl:
        return FailureOfOpen(hit.before.back().flags).operation == "create"
                   ? Failure{"create", kOpenSource, 103}
                   : Failure{"open", kOpenSource, 52};
    case SystemCall::Fstat:
        return FailureOfLook(operation, hit);
    case SystemCall::Stat:
        if (CameBefore(hit, 1, SystemCall::Fstat) && error != ENOENT) {
            return Failure{"remove", kFileSource, 263};
        }
        return {}; // a name that cannot be looked up is one that is not there
    case SystemCall::Ftruncate:
        return CameBefore(hit, 1, SystemCall::Fstat) && OpenCameBefore(hit, 2)
                   ? Failure{"open", kOpenSource, 77}
                   : Failure{"truncate", kFileSource, 207};
    case SystemCall::Pread:
        return Failure{"read", kFileSource, 149};
    case SystemCall::Pwrite:
        return Failure{"write", kFileSource, 183};
    case SystemCall::Fdatasync:
        return Failure{"flush", kFileSource, 229};
    case SystemCall::Fsync:
        if (error == EINVAL) {
            return {}; // the whole file system is synced
        }
        return Failure{"flush", kFileSource, 236};
    case SystemCall::Syncfs:
        return Failure{"flush", kFileSource, 236};
    case SystemCall::Close:
        if (hit.folder || MoveCameBefore(hit, 1)) {
            return {};
        }
        return Failure{"close", kFileSource, 258};
    case SystemCall::Unlink:
        if (error == ENOENT) {
            return {};
        }
        return Failure{"remove", kFileSource, 263};
    case SystemCall::Getcwd:
        return {};
    case SystemCall::Mmap:
    case SystemCall::Munmap:
    case SystemCall::Madvise:
    case SystemCall::Sigaction:
        return {}; // calls do what a map would have done
    }
    return {};
}

// Whether two names are those of one file, there or not.
bool SameName(const std::string& one, const std::string& other)
{
    const auto real = [](const std::string& name) {
        std::error_code ignored;
        return std::filesystem::weakly_canonical(std::filesystem::absolute(name), ignored);
    };
    return real(one) == real(other);
}

// The request that the failing transfer was the last part of: the whole of it must be told.
bool RequestHolds(const Hit& hit, const VUKSimUttOSFileException& raised)
{
    const auto& made = hit.made;
    if (made.call == SystemCall::Pread || made.call == SystemCall::Pwrite) {
        return raised.Position() <= made.position &&
               raised.Position() + raised.Length() == made.position + made.length;
    }
    if (made.call == SystemCall::Ftruncate && raised.Operation() == std::string("truncate")) {
        return raised.Position() == made.position && raised.Length() == 0;
    }
    return raised.Operation() == std::string("write") ||
           (raised.Position() == 0 && raised.Length() == 0);
}

// The sentence, put together anew from what the exception carries.
std::string SentenceOf(const VUKSimUttOSFileException& raised)
{
    std::ostringstream text;
    text << "VUKSimUttOSFileException at " << raised.Path() << ':' << raised.Line() << ": "
         << raised.Operation() << ' ';
    const std::string operation = raised.Operation();
    if (operation == "read" || operation == "write") {
        text << raised.Length() << " bytes at " << raised.Position() << " of ";
    }
    text << raised.FileName();
    if (operation == "truncate") {
        text << " at " << raised.Position();
    }
    text << ": " << ErrorText(raised.ErrorNumber());
    return text.str();
}

void JudgeFailure(const Hit& hit, const Failure& expected, int error,
                  const VUKSimUttOSFileException& raised, Complaints& complaints)
{
    complaints.Same(std::string(raised.Operation()), expected.operation, "the failed operation");
    complaints.Same(raised.ErrorNumber(), error, "the error number");
    complaints.Same(std::string(raised.Path()), std::string(expected.source), "the source");
    complaints.Same(raised.Line(), expected.line, "the line");
    complaints.Same(std::string(raised.what()), SentenceOf(raised), "the sentence");
    complaints.Expect(RequestHolds(hit, raised), "position and length are those of the request");
    // A folder is synced for a file; where a name was taken, others are tried.
    complaints.Expect(hit.file.empty() || hit.folder || error == EEXIST ||
                          SameName(hit.file, raised.FileName()),
                      std::string("the file named is the one: ") + raised.FileName());
}

std::string Raised(const std::exception* raised)
{
    return raised == nullptr ? "nothing was raised"
                             : std::string(typeid(*raised).name()) + ": " + raised->what();
}
} // namespace

void JudgeAnswer(const Operation& operation, const Hit& hit, const std::exception* raised,
                 Complaints& complaints)
{
    const Flaw& flaw = hit.trouble.flaw;
    const auto* const library = dynamic_cast<const VUKBasException*>(raised);
    if (library != nullptr && operation.Answers(hit, *library)) {
        return;
    }
    // A disk that takes nothing is in error; a read that ends early is the operation's own affair.
    const bool takesNothing = hit.made.call == SystemCall::Pwrite && flaw.moved == 0;
    const int error = flaw.errorNumber == 0 && takesNothing ? EIO : flaw.errorNumber;
    const auto expected = FailureOf(operation, hit);
    const bool harmless = error == 0 || error == EINTR || !expected || !hit.struck;
    if (raised == nullptr) {
        complaints.Expect(harmless || operation.Passes(hit), "an exception was raised");
        return;
    }
    const auto* const system = dynamic_cast<const VUKSimUttOSFileException*>(raised);
    if (harmless || system == nullptr || typeid(*raised) != typeid(VUKSimUttOSFileException)) {
        complaints.Add("raised out of place: " + Raised(raised));
        return;
    }
    JudgeFailure(hit, *expected, error, *system, complaints);
}

void JudgeManifoldAnswer(const Operation& operation, const std::vector<Hit>& hits,
                         const std::exception* raised, Complaints& complaints)
{
    if (raised == nullptr) {
        return; // the trouble may lie where nothing depends on it; the state will tell
    }
    const auto* const system = dynamic_cast<const VUKSimUttOSFileException*>(raised);
    const auto* const library = dynamic_cast<const VUKBasException*>(raised);
    bool answered = system != nullptr && system->ErrorNumber() == EIO;
    for (const Hit& hit : hits) {
        answered = answered || (library != nullptr && operation.Answers(hit, *library)) ||
                   (system != nullptr && system->ErrorNumber() == hit.trouble.flaw.errorNumber);
    }
    complaints.Expect(answered, "the exception is about one of the troubles: " + Raised(raised));
}
