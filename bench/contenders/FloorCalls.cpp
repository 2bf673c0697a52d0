// Floor: positioned reads and writes, hand-written.
#include "Positioned.h"

#include <stdexcept>

namespace {

class Calls
{
public:
    static constexpr Kind kKind = Kind::Floor;
    static constexpr bool kInPlace = true;
    static std::string Name() { return "pread/pwrite"; }
    static std::string Version() { return "pread(2)"; }
    static std::string Tuning()
    {
        return "chunks of 256 KiB in order, at the same place in their page as in the file; one "
               "call per random access";
    }

    void Create(const std::string& path, long long /*bytes*/)
    {
        mFile = Descriptor(path, O_RDWR | O_CREAT | O_TRUNC);
    }
    void Attach(const std::string& path) { mFile = Descriptor(path, O_RDWR); }
    [[nodiscard]] long long Size() const { return mFile.Size(); }
    void Read(char* to, std::size_t length, long long position) const
    {
        mFile.Read(to, length, position);
    }
    void Write(const char* from, std::size_t length, long long position) const
    {
        mFile.Write(from, length, position);
    }
    static void Settle() {}
    void Sync() const { mFile.Sync(); }
    void Close() { mFile = Descriptor(); }

    // UUID and data of one pool behind those of the one before, one call for each pool.
    void CreatePools(const std::string& path, long long count)
    {
        Create(path, 0);
        char record[kStep];
        for (long long i = 0; i < count; ++i) {
            std::memcpy(record, PoolName(i).data(), 32);
            FillBulk(record + 32, i * kPoolSize, kPoolSize);
            mFile.Write(record, sizeof record, i * kStep);
        }
    }

    Word OpenPools(const std::string& path, long long count)
    {
        Attach(path);
        Word sum = 0;
        char record[32 + kPoolRead];
        for (long long i = 0; i < count; ++i) {
            mFile.Read(record, sizeof record, i * kStep);
            if (std::memcmp(record, PoolName(i).data(), 32) != 0) {
                throw std::runtime_error("another UUID");
            }
            sum += SumEnds<kPoolRead>(record + 32);
        }
        return sum;
    }

private:
    static constexpr long long kStep = 32 + kPoolSize;

    Descriptor mFile;
};

const Announced<PositionedContender<Calls>> kAnnounced;
} // namespace
