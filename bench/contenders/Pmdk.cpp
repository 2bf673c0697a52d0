// Peer: PMDK's libpmemobj on an ordinary file.
#include "Region.h"

#include <cstdlib>
#include <stdexcept>

#include <libpmemobj.h>

namespace {

class ObjectPool
{
public:
    static constexpr Kind kKind = Kind::Peer;
    static std::string Name() { return "pmdk"; }
    static std::string Version()
    {
        return "libpmemobj " + std::to_string(PMEMOBJ_MAJOR_VERSION) + "." +
               std::to_string(PMEMOBJ_MINOR_VERSION);
    }
    // From pmemobj_memcpy(3) and libpmem(7): PMEMOBJ_F_MEM_NODRAIN with one drain behind many
    // copies; PMEM_IS_PMEM_FORCE, since each allocation would wait for the disk otherwise.
    static std::string Tuning()
    {
        return "PMEM_IS_PMEM_FORCE=1 and fdatasync at the end; pmemobj_memcpy with "
               "PMEMOBJ_F_MEM_NODRAIN, one drain for many; PMEMoid as references";
    }

    void Create(const std::string& path, long long bytes)
    {
        Make(path, static_cast<std::size_t>(bytes));
        if (pmemobj_alloc(mPool, &Root()->start, static_cast<std::size_t>(bytes), 1, nullptr,
                          nullptr) != 0) {
            Fail("pmemobj_alloc");
        }
        FindStart();
    }
    void Attach(const std::string& path)
    {
        mPath = path;
        mPool = pmemobj_open(path.c_str(), kLayout);
        if (mPool == nullptr) {
            Fail("pmemobj_open");
        }
        FindStart();
    }
    [[nodiscard]] char* Bytes() const { return mBytes; }
    void Sync() const { Descriptor(mPath, O_RDWR).Sync(); }
    void Close()
    {
        if (mPool != nullptr) {
            pmemobj_close(mPool);
            mPool = nullptr;
        }
    }

    void CopyIn(char* to, const void* from, std::size_t n)
    {
        pmemobj_memcpy(mPool, to, from, n, PMEMOBJ_F_MEM_NODRAIN);
    }
    void Settle() { pmemobj_drain(mPool); }

    [[nodiscard]] Reference Refer(long long offset, std::uint32_t /*file*/) const
    {
        return {mStart.pool_uuid_lo, mStart.off + static_cast<Word>(offset)};
    }
    static const char* Follow(const std::array<ObjectPool, 2>& /*stores*/,
                              const Reference& reference)
    {
        return static_cast<const char*>(pmemobj_direct({reference[0], reference[1]}));
    }

    // An array of object identifiers, each object with its UUID and data.
    void CreatePools(const std::string& path, long long count)
    {
        const std::size_t table = static_cast<std::size_t>(count) * sizeof(PMEMoid);
        Make(path, table + static_cast<std::size_t>(count) * 512);
        if (pmemobj_zalloc(mPool, &Root()->start, table, 2) != 0) {
            Fail("pmemobj_zalloc");
        }
        FindStart();
        auto* identifiers = reinterpret_cast<PMEMoid*>(mBytes);
        for (long long i = 0; i < count; ++i) {
            const auto construct = [](PMEMobjpool* pool, void* object, void* argument) {
                const long long index = *static_cast<const long long*>(argument);
                auto* to = static_cast<char*>(object);
                std::memcpy(to, PoolName(index).data(), 32);
                FillBulk(to + 32, index * kPoolSize, kPoolSize);
                pmemobj_persist(pool, object, 32 + kPoolSize);
                return 0;
            };
            if (pmemobj_alloc(mPool, identifiers + i, 32 + kPoolSize, 3, construct, &i) != 0) {
                Fail("pmemobj_alloc");
            }
        }
    }

    Word OpenPools(const std::string& path, long long count)
    {
        Attach(path);
        const auto* identifiers = reinterpret_cast<const PMEMoid*>(mBytes);
        Word sum = 0;
        for (long long i = 0; i < count; ++i) {
            const auto* from = static_cast<const char*>(pmemobj_direct(identifiers[i]));
            if (std::memcmp(from, PoolName(i).data(), 32) != 0) {
                throw std::runtime_error("another UUID");
            }
            char piece[kPoolRead];
            std::memcpy(piece, from + 32, kPoolRead);
            sum += SumEnds<kPoolRead>(piece);
        }
        return sum;
    }

private:
    static constexpr const char* kLayout = "bench";

    struct RootObject
    {
        PMEMoid start;
    };

    [[noreturn]] static void Fail(const std::string& what)
    {
        throw std::runtime_error(what + ": " + pmemobj_errormsg());
    }

    void Make(const std::string& path, std::size_t bytes)
    {
        mPath = path;
        mPool =
            pmemobj_create(path.c_str(), kLayout, bytes + bytes / 16 + 4 * PMEMOBJ_MIN_POOL, 0644);
        if (mPool == nullptr) {
            Fail("pmemobj_create");
        }
    }

    RootObject* Root()
    {
        return static_cast<RootObject*>(pmemobj_direct(pmemobj_root(mPool, sizeof(RootObject))));
    }

    void FindStart()
    {
        mStart = Root()->start;
        mBytes = static_cast<char*>(pmemobj_direct(mStart));
    }

    std::string mPath;
    PMEMobjpool* mPool = nullptr;
    PMEMoid mStart = {};
    char* mBytes = nullptr; // where mStart leads
};

// Read by the library when it is first asked for memory.
[[maybe_unused]] const int kForced = setenv("PMEM_IS_PMEM_FORCE", "1", 1);
const Announced<RegionContender<ObjectPool>> kAnnounced;
} // namespace
