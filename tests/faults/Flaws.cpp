#include "Flaws.h"

#include <map>
#include <set>
#include <stdexcept>

#include <fcntl.h>

namespace {

using Made = ScriptedSystemCalls::Made;

std::vector<int> OpenErrors(int flags)
{
    if ((flags & O_DIRECTORY) != 0) {
        return {ENOENT, EACCES, EMFILE, ENOTDIR, EINTR};
    }
    std::vector<int> errors = {ENOENT, EACCES, EMFILE, ENFILE, EIO, EINTR};
    if ((flags & O_EXCL) != 0) {
        errors.push_back(EEXIST);
    } else {
        errors.push_back(EISDIR);
    }
    if ((flags & O_ACCMODE) == O_RDWR) {
        errors.push_back(EROFS);
    }
    if ((flags & O_CREAT) != 0) {
        errors.insert(errors.end(), {ENOSPC, EDQUOT});
    }
    return errors;
}

std::vector<int> ErrorsOf(const Made& made)
{
    switch (made.call) {
    case SystemCall::Open:
        return OpenErrors(made.flags);
    case SystemCall::Close:
        return {EIO, ENOSPC, EDQUOT, EINTR};
    case SystemCall::Fcntl:
        return {EMFILE, EINTR};
    case SystemCall::Pread:
        return {EIO, EINTR};
    case SystemCall::Pwrite:
        return {ENOSPC, EDQUOT, EFBIG, EIO, EINTR};
    case SystemCall::Ftruncate:
        return {ENOSPC, EDQUOT, EFBIG, EIO, EINTR};
    case SystemCall::Fstat:
        return {EIO, ENOMEM, EINTR};
    case SystemCall::Stat:
        return {ENOENT, EACCES, EIO, ENOMEM, EINTR};
    case SystemCall::Fdatasync:
        return {EIO, ENOSPC, EDQUOT, EINTR};
    case SystemCall::Fsync:
        return {EIO, ENOSPC, EINVAL, EINTR};
    case SystemCall::Syncfs:
        return {EIO, ENOSPC, EINTR};
    case SystemCall::Unlink:
        return {ENOENT, EACCES, EBUSY, EROFS, EIO, EINTR};
    case SystemCall::Getcwd:
        return {ENOENT, EACCES};
    case SystemCall::Mmap:
        return {ENOMEM, ENODEV, EACCES, EAGAIN};
    case SystemCall::Munmap:
    case SystemCall::Madvise:
        return {ENOMEM};
    case SystemCall::Sigaction:
        return {EINVAL};
    }
    throw std::logic_error("an unknown system call");
}

// Where a write is cut: at its ends, and at every place where a pool's header means something else
// than before, the digits of its length above all.
std::set<std::size_t> CutsOf(std::size_t length)
{
    std::set<std::size_t> cuts;
    for (const std::size_t cut : {std::size_t{1}, std::size_t{20}, std::size_t{34}, std::size_t{35},
                                  std::size_t{36}, std::size_t{45}, std::size_t{48},
                                  std::size_t{60}, std::size_t{80}, length / 2, length - 1}) {
        if (cut > 0 && cut < length) {
            cuts.insert(cut);
        }
    }
    return cuts;
}

bool IsTransfer(const Made& made)
{
    return (made.call == SystemCall::Pread || made.call == SystemCall::Pwrite) && made.length > 0;
}

std::vector<Flaw> FlawsOf(const Made& made)
{
    std::vector<Flaw> flaws;
    for (const int error : ErrorsOf(made)) {
        flaws.push_back({.errorNumber = error});
    }
    if (!IsTransfer(made)) {
        return flaws;
    }
    flaws.push_back({}); // the end of the file, or a disk that takes nothing
    const bool write = made.call == SystemCall::Pwrite;
    for (const std::size_t cut : CutsOf(made.length)) {
        flaws.push_back({.moved = cut});
        flaws.push_back({.errorNumber = write ? ENOSPC : EIO, .moved = cut});
    }
    return flaws;
}

const char* NameOf(SystemCall call)
{
    constexpr const char* kNames[] = {"open",      "close",    "fcntl",  "pread",     "pwrite",
                                      "ftruncate", "fstat",    "stat",   "fdatasync", "fsync",
                                      "syncfs",    "unlink",   "getcwd", "mmap",      "munmap",
                                      "madvise",   "sigaction"};
    return kNames[static_cast<int>(call)];
}
} // namespace

std::vector<Trouble> TroublesOf(const Made& made)
{
    // A call that a signal interrupts is repeated until it is not: left out is a signal that comes
    // for ever, which is an endless loop by design. So is a long transfer byte by byte, for time.
    constexpr std::size_t kShort = 4096;
    std::vector<Trouble> troubles;
    for (const Flaw& flaw : FlawsOf(made)) {
        troubles.push_back({flaw, Reach::Once});
        const bool crawls = flaw.errorNumber == 0 && flaw.moved > 0 && made.length > kShort;
        if (flaw.errorNumber != EINTR && !crawls) {
            troubles.push_back({flaw, Reach::Sticky});
        }
    }
    troubles.push_back({{.errorNumber = EIO}, Reach::Dead});
    return troubles;
}

std::vector<Trouble> MainTroublesOf(const Made& made)
{
    const bool write = made.call == SystemCall::Pwrite;
    std::vector<Trouble> troubles = {{{.errorNumber = write ? ENOSPC : EIO}, Reach::Once}};
    if (write && made.length > 1) {
        for (const std::size_t cut : {std::size_t{34}, made.length / 2}) {
            if (cut < made.length) {
                troubles.push_back({{.errorNumber = ENOSPC, .moved = cut}, Reach::Once});
            }
        }
    }
    if (made.call == SystemCall::Pread && made.length > 0) {
        troubles.push_back({{}, Reach::Once});
    }
    return troubles;
}

std::string ErrorText(int errorNumber)
{
    static const std::map<int, std::string> kTexts = {
        {ENOENT, "No such file or directory (ENOENT)"},
        {EACCES, "Permission denied (EACCES)"},
        {EMFILE, "Too many open files (EMFILE)"},
        {ENFILE, "Too many open files in system (ENFILE)"},
        {ENOTDIR, "Not a directory (ENOTDIR)"},
        {EISDIR, "Is a directory (EISDIR)"},
        {EROFS, "Read-only file system (EROFS)"},
        {EEXIST, "File exists (EEXIST)"},
        {ENOSPC, "No space left on device (ENOSPC)"},
        {EDQUOT, "Disk quota exceeded (EDQUOT)"},
        {EFBIG, "File too large (EFBIG)"},
        {EIO, "Input/output error (EIO)"},
        {EINTR, "Interrupted system call (EINTR)"},
        {EINVAL, "Invalid argument (EINVAL)"},
        {ENOMEM, "Cannot allocate memory (ENOMEM)"},
        {EBUSY, "Device or resource busy (EBUSY)"},
    };
    return kTexts.at(errorNumber);
}

std::string Describe(const Made& made)
{
    std::string text = NameOf(made.call);
    if (IsTransfer(made)) {
        text += " of " + std::to_string(made.length) + " bytes";
    }
    if (IsTransfer(made) || made.call == SystemCall::Ftruncate) {
        text += " at " + std::to_string(made.position);
    }
    return text;
}

std::string Describe(const Trouble& trouble)
{
    std::string text;
    if (trouble.flaw.moved > 0) {
        text = "moves " + std::to_string(trouble.flaw.moved) + " bytes";
    }
    if (trouble.flaw.errorNumber != 0) {
        text += (text.empty() ? "" : " and then ") +
                ("fails with " + ErrorText(trouble.flaw.errorNumber));
    } else if (trouble.flaw.moved == 0) {
        text = "moves nothing";
    }
    const char* const kReaches[] = {", once", ", and so do all after it",
                                    ", and so does every call after it"};
    return text + kReaches[static_cast<int>(trouble.reach)];
}
