#include "Seen.h"

#include "PoolWalk.h"

#include "VUKBasException.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Pool.h"

#include <algorithm>

using namespace simpool;

namespace {

std::string ExceptionFor(Stop stop)
{
    switch (stop) {
    case Stop::None:
        return "";
    case Stop::ShortHeader:
        return "VUKSimExcCorruptHeader";
    case Stop::NoSignature:
        return "VUKSimExcNotSimFile";
    case Stop::OtherVersion:
        return "VUKSimExcNeedUpgrade";
    case Stop::OtherUserSignature:
        return "VUKSimExcUserSigMismatch";
    case Stop::CutDirectory:
        return "VUKSimExcCorruptDirectory";
    case Stop::DuplicatePool:
        return "VUKSimExcPoolAlreadyInDoc";
    case Stop::NoOwnEntry:
        return "VUKBasRangeException";
    case Stop::ReadFailure:
        return "read failure";
    case Stop::NoMemory:
        return "no memory";
    }
    return "no such stop";
}
} // namespace

std::ostream& operator<<(std::ostream& out, const Seen& seen)
{
    out << '[' << seen.failure << ']';
    for (const Seen::Pool& pool : seen.pools) {
        out << ' ' << pool.uuid << ' ' << pool.dataLength << ' ' << pool.directoryBytes;
    }
    return out;
}

Seen SeenByLibrary(const char* name, const char* userSignature)
{
    Seen seen;
    try {
        VUKSimRpm_Document document(userSignature);
        const VUKSimRpm_File file = document.AddFile(name, VUKSimRpm_Document::Read);
        for (unsigned int i = 0; i < file.PoolCount(); ++i) {
            const VUKSimRpm_Pool pool = file.Pool(i);
            seen.pools.push_back({pool.GetGUID().UTF8(), pool.Length(), pool.DirectorySizeBytes()});
        }
    } catch (const VUKBasException& raised) {
        seen.failure = raised.ClassName();
    }
    return seen;
}

Seen SeenByParser(const char* name, const char* userSignature)
{
    FileBytes file;
    if (const int failure = file.Open(name); failure != 0) {
        return {{}, "cannot open: " + std::to_string(failure)};
    }
    Together together;
    std::copy_n(userSignature, 4, together.userSignature.emplace().begin());
    const PoolWalk walk = WalkPools(file, together);
    Seen seen;
    seen.failure = ExceptionFor(walk.stop);
    if (seen.failure.empty()) {
        for (const PoolInfo& pool : walk.pools) {
            // The library's text ends at a zero byte, and its subtraction wraps.
            const std::string uuid(pool.uuid.begin(), pool.uuid.end());
            seen.pools.push_back({uuid.c_str(), pool.length - pool.header.FullSize(),
                                  32ULL * pool.header.directoryCount});
        }
    }
    return seen;
}
