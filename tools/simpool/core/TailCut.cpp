#include "TailCut.h"

#include "CommandFailure.h"
#include "EscapedText.h"
#include "PoolSearch.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace simpool {

TailCut PlanTailCut(const LoadedFile& file)
{
    TailCut cut;
    cut.size = file.bytes.Size();
    cut.position = std::min(file.walk.position, cut.size);
    cut.poolsKept = file.Pools().size();
    PoolSearch search(file.bytes);
    const PoolInfo* behind = search.FirstFrom(cut.position);
    for (; behind != nullptr; behind = search.FirstFrom(behind->position + 1)) {
        ++cut.poolsBehind;
    }
    return cut;
}

void CutTail(const LoadedFile& file, const TailCut& cut, const std::string& tailName,
             NewFile::Existing existing)
{
    NewFile tail(tailName, existing);
    tail.CopyFrom(file.bytes, cut.position, cut.TailLength());
    const int descriptor = ::open(file.name.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) {
        throw SystemFailure("cannot write", file.name, errno);
    }
    // Somebody may have gone on writing, or put another file in its place.
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || !file.bytes.IsSameFile(file.name.c_str()) ||
        static_cast<std::uint64_t>(status.st_size) != cut.size) {
        ::close(descriptor);
        throw CommandFailure(Quoted(file.name) + " changed meanwhile and stays as it is");
    }
    try {
        tail.Commit();
    } catch (...) {
        ::close(descriptor);
        throw;
    }
    int failure = 0;
    if (::ftruncate(descriptor, static_cast<off_t>(cut.position)) != 0 ||
        ::fsync(descriptor) != 0) {
        failure = errno;
    }
    ::close(descriptor);
    if (failure != 0) {
        throw SystemFailure("cannot cut", file.name, failure);
    }
}
} // namespace simpool
