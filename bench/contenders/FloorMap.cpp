// Floor: one shared mapping of the file and memcpy.
#include "Region.h"

namespace {

class RawMapping
{
public:
    static constexpr Kind kKind = Kind::Floor;
    static std::string Name() { return "mapping"; }
    static std::string Version() { return "mmap(2)"; }
    static std::string Tuning()
    {
        return "shared mapping of the whole file, sized with ftruncate before; memcpy";
    }

    void Create(const std::string& path, long long bytes)
    {
        mFile = Descriptor(path, O_RDWR | O_CREAT | O_TRUNC);
        mFile.Resize(bytes);
        mMapping = Mapping(mFile);
    }
    void Attach(const std::string& path)
    {
        mFile = Descriptor(path, O_RDWR);
        mMapping = Mapping(mFile);
    }
    [[nodiscard]] char* Bytes() const { return mMapping.Bytes(); }
    void Sync() const { mFile.Sync(); }
    void Close()
    {
        mMapping = Mapping();
        mFile = Descriptor();
    }

    static void CopyIn(char* to, const void* from, std::size_t n) { std::memcpy(to, from, n); }
    static void Settle() {}

    static Reference Refer(long long offset, std::uint32_t file)
    {
        return {static_cast<Word>(offset), file};
    }
    static const char* Follow(const std::array<RawMapping, 2>& stores, const Reference& reference)
    {
        return stores[reference[1]].Bytes() + reference[0];
    }

    // UUID and data of one pool behind those of the one before.
    void CreatePools(const std::string& path, long long count)
    {
        Create(path, count * kStep);
        for (long long i = 0; i < count; ++i) {
            char* to = Bytes() + i * kStep;
            std::memcpy(to, PoolName(i).data(), 32);
            FillBulk(to + 32, i * kPoolSize, kPoolSize);
        }
    }

    Word OpenPools(const std::string& path, long long count)
    {
        Attach(path);
        Word sum = 0;
        for (long long i = 0; i < count; ++i) {
            const char* from = Bytes() + i * kStep;
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
    static constexpr long long kStep = 32 + kPoolSize;

    Descriptor mFile;
    Mapping mMapping;
};

const Announced<RegionContender<RawMapping>> kAnnounced;
} // namespace
