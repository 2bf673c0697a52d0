// Peer: HDF5, one dataset of bytes, and one for each pool.
#include "Positioned.h"

#include <stdexcept>

#include <hdf5.h>

namespace {

hid_t Good(hid_t result)
{
    if (result < 0) {
        throw std::runtime_error("HDF5 failed");
    }
    return result;
}

/// An identifier of the library's, owned.
class Id
{
public:
    using CloseFunction = herr_t(hid_t);

    Id() = default;
    Id(hid_t id, CloseFunction* close) : mId(Good(id)), mClose(close) {}
    Id(Id&& that) noexcept { *this = std::move(that); }
    Id& operator=(Id&& that) noexcept
    {
        std::swap(mId, that.mId);
        std::swap(mClose, that.mClose);
        return *this;
    }
    ~Id()
    {
        if (mClose != nullptr) {
            mClose(mId);
        }
    }
    operator hid_t() const noexcept { return mId; }

private:
    hid_t mId = H5I_INVALID_HID;
    CloseFunction* mClose = nullptr;
};

class Hdf5
{
public:
    static constexpr Kind kKind = Kind::Peer;
    static constexpr bool kInPlace = true;
    static std::string Name() { return "hdf5"; }
    static std::string Version() { return H5_VERS_INFO; }
    // From its pages on property lists and on performance: the latest format, which keeps many
    // links in indexed groups; compact layout for small datasets; no fill values where all is
    // written; a sieve buffer smaller than any piece, since a miss at random would read all of it.
    static std::string Tuning()
    {
        return "H5F_LIBVER_LATEST; contiguous dataset written and read in 256 KiB hyperslabs, no "
               "fill, no sieve buffer; a compact dataset for each pool";
    }

    void Create(const std::string& path, long long bytes)
    {
        CreateFile(path);
        const Id properties(H5Pcreate(H5P_DATASET_CREATE), H5Pclose);
        Good(H5Pset_fill_time(properties, H5D_FILL_TIME_NEVER));
        const Id space = Line(static_cast<hsize_t>(bytes));
        mData = Id(H5Dcreate2(mFile, "bytes", H5T_NATIVE_CHAR, space, H5P_DEFAULT, properties,
                              H5P_DEFAULT),
                   H5Dclose);
        mSpace = Id(H5Dget_space(mData), H5Sclose);
    }
    void Attach(const std::string& path)
    {
        OpenFile(path);
        mData = Id(H5Dopen2(mFile, "bytes", H5P_DEFAULT), H5Dclose);
        mSpace = Id(H5Dget_space(mData), H5Sclose);
    }
    [[nodiscard]] long long Size() const { return H5Sget_simple_extent_npoints(mSpace); }

    void Read(char* to, std::size_t length, long long position)
    {
        Select(length, position);
        Good(H5Dread(mData, H5T_NATIVE_CHAR, mPiece, mSpace, H5P_DEFAULT, to));
    }
    void Write(const char* from, std::size_t length, long long position)
    {
        Select(length, position);
        Good(H5Dwrite(mData, H5T_NATIVE_CHAR, mPiece, mSpace, H5P_DEFAULT, from));
    }
    void Settle() const { Good(H5Fflush(mFile, H5F_SCOPE_GLOBAL)); }
    void Sync() const { Descriptor(mPath, O_RDWR).Sync(); }
    void Close()
    {
        mPiece = Id();
        mLength = 0;
        mSpace = Id();
        mData = Id();
        mFile = Id();
    }

    void CreatePools(const std::string& path, long long count)
    {
        CreateFile(path);
        const Id group(H5Pcreate(H5P_GROUP_CREATE), H5Pclose);
        Good(H5Pset_est_link_info(group, static_cast<unsigned>(std::min(count, 65535LL)), 32));
        const Id pools(H5Gcreate2(mFile, "pools", H5P_DEFAULT, group, H5P_DEFAULT), H5Gclose);
        const Id properties(H5Pcreate(H5P_DATASET_CREATE), H5Pclose);
        Good(H5Pset_layout(properties, H5D_COMPACT));
        const Id space = Line(kPoolSize);
        char data[kPoolSize];
        for (long long i = 0; i < count; ++i) {
            FillBulk(data, i * kPoolSize, kPoolSize);
            const Id pool(H5Dcreate2(pools, PoolName(i).c_str(), H5T_NATIVE_CHAR, space,
                                     H5P_DEFAULT, properties, H5P_DEFAULT),
                          H5Dclose);
            Good(H5Dwrite(pool, H5T_NATIVE_CHAR, H5S_ALL, H5S_ALL, H5P_DEFAULT, data));
        }
        Settle();
    }

    Word OpenPools(const std::string& path, long long count)
    {
        OpenFile(path);
        const Id pools(H5Gopen2(mFile, "pools", H5P_DEFAULT), H5Gclose);
        Word sum = 0;
        for (long long i = 0; i < count; ++i) {
            const Id pool(H5Dopen2(pools, PoolName(i).c_str(), H5P_DEFAULT), H5Dclose);
            char data[kPoolSize]; // a compact dataset is read whole in any case
            Good(H5Dread(pool, H5T_NATIVE_CHAR, H5S_ALL, H5S_ALL, H5P_DEFAULT, data));
            sum += SumEnds<kPoolRead>(data);
        }
        return sum;
    }

private:
    static Id Line(hsize_t length) { return {H5Screate_simple(1, &length, nullptr), H5Sclose}; }
    static Id Access()
    {
        Id access(H5Pcreate(H5P_FILE_ACCESS), H5Pclose);
        Good(H5Pset_libver_bounds(access, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST));
        Good(H5Pset_sieve_buf_size(access, 1));
        return access;
    }
    void CreateFile(const std::string& path)
    {
        mPath = path;
        mFile = Id(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, Access()), H5Fclose);
    }
    void OpenFile(const std::string& path)
    {
        mPath = path;
        mFile = Id(H5Fopen(path.c_str(), H5F_ACC_RDWR, Access()), H5Fclose);
    }

    void Select(std::size_t length, long long position)
    {
        const auto start = static_cast<hsize_t>(position);
        const auto count = static_cast<hsize_t>(length);
        Good(H5Sselect_hyperslab(mSpace, H5S_SELECT_SET, &start, nullptr, &count, nullptr));
        if (length != mLength) {
            mPiece = Line(count);
            mLength = length;
        }
    }

    std::string mPath;
    Id mFile;
    Id mData;
    Id mSpace;               // of mData, with the last selection
    Id mPiece;               // in memory, of mLength bytes
    std::size_t mLength = 0; // bytes
};

const Announced<PositionedContender<Hdf5>> kAnnounced;
} // namespace
