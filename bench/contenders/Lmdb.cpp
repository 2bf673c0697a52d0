// Peer: LMDB, one value for each record, and many records packed into values of 256 KiB.
#include "Keyed.h"
#include "Positioned.h"

#include <stdexcept>

#include <lmdb.h>

namespace {

void Check(int result)
{
    if (result != MDB_SUCCESS) {
        throw std::runtime_error(std::string("LMDB: ") + mdb_strerror(result));
    }
}

// From lmdb.h: MDB_WRITEMAP is "faster and uses fewer mallocs", MDB_NORDAHEAD "may help random read
// performance", MDB_NOSYNC leaves the flush to mdb_env_sync.
MDB_env* OpenEnvironment(const std::string& path)
{
    MDB_env* environment = nullptr;
    Check(mdb_env_create(&environment));
    Check(mdb_env_set_mapsize(environment, std::size_t{4} << 30U));
    Check(mdb_env_set_maxdbs(environment, 2));
    Check(mdb_env_open(environment, path.c_str(),
                       MDB_NOSUBDIR | MDB_WRITEMAP | MDB_NOSYNC | MDB_NORDAHEAD, 0644));
    return environment;
}

class Lmdb
{
public:
    static std::string Name() { return "lmdb"; }
    static std::string Version() { return mdb_version(nullptr, nullptr, nullptr); }
    // From lmdb.h, beside what OpenEnvironment does: MDB_APPEND "can be used for fast bulk
    // loading", MDB_INTEGERKEY for binary integers.
    static std::string Tuning()
    {
        return "MDB_WRITEMAP, MDB_NOSYNC with mdb_env_sync at the end, MDB_NORDAHEAD, "
               "MDB_INTEGERKEY, MDB_APPEND for rising keys, commits every 100,000 records";
    }

    void Open(const std::string& path)
    {
        mEnvironment = OpenEnvironment(path);
        Begin();
        Check(mdb_dbi_open(mTransaction, "numbers", MDB_CREATE | MDB_INTEGERKEY, &mNumbers));
        Check(mdb_dbi_open(mTransaction, "names", MDB_CREATE, &mNames));
        Commit();
    }
    void Close()
    {
        if (mEnvironment != nullptr) {
            mdb_env_close(mEnvironment);
            mEnvironment = nullptr;
        }
    }

    void Begin() { Check(mdb_txn_begin(mEnvironment, nullptr, 0, &mTransaction)); }
    void Commit() { Check(mdb_txn_commit(mTransaction)); }
    void BeginReading() { Check(mdb_txn_begin(mEnvironment, nullptr, MDB_RDONLY, &mTransaction)); }
    void EndReading() { mdb_txn_abort(mTransaction); }

    void Put(long long key, std::string_view value)
    {
        PutValue(mNumbers, {sizeof key, &key}, value, MDB_APPEND);
    }
    void Replace(long long key, std::string_view value)
    {
        PutValue(mNumbers, {sizeof key, &key}, value, 0);
    }
    void PutNamed(const std::string& name, std::string_view value)
    {
        PutValue(mNames, {name.size(), const_cast<char*>(name.data())}, value, 0);
    }
    std::string_view Get(long long key) { return Value(mNumbers, {sizeof key, &key}); }
    std::string_view GetNamed(const std::string& name)
    {
        return Value(mNames, {name.size(), const_cast<char*>(name.data())});
    }

    template <class Visit>
    void Scan(Visit visit)
    {
        MDB_cursor* cursor = nullptr;
        Check(mdb_cursor_open(mTransaction, mNumbers, &cursor));
        MDB_val key = {};
        MDB_val value = {};
        while (mdb_cursor_get(cursor, &key, &value, MDB_NEXT) == MDB_SUCCESS) {
            visit(std::string_view(static_cast<const char*>(value.mv_data), value.mv_size));
        }
        mdb_cursor_close(cursor);
    }

    void Sync() { Check(mdb_env_sync(mEnvironment, 1)); }

private:
    void PutValue(MDB_dbi database, MDB_val key, std::string_view value, unsigned flags)
    {
        MDB_val bytes{value.size(), const_cast<char*>(value.data())};
        Check(mdb_put(mTransaction, database, &key, &bytes, flags));
    }

    std::string_view Value(MDB_dbi database, MDB_val key)
    {
        MDB_val value = {};
        Check(mdb_get(mTransaction, database, &key, &value));
        return {static_cast<const char*>(value.mv_data), value.mv_size};
    }

    MDB_env* mEnvironment = nullptr;
    MDB_txn* mTransaction = nullptr;
    MDB_dbi mNumbers = 0; // keys are 8-byte integers
    MDB_dbi mNames = 0;   // keys are texts
};

class PackedLmdb
{
public:
    static constexpr Kind kKind = Kind::Peer;
    static constexpr bool kInPlace = false; // each piece would cost a copy of its whole value
    static std::string Name() { return "lmdb-packed"; }
    static std::string Version() { return mdb_version(nullptr, nullptr, nullptr); }
    // From lmdb.h: MDB_RESERVE saves "an extra memcpy".
    static std::string Tuning()
    {
        return "as lmdb, with values of 256 KiB and MDB_RESERVE; read in one transaction";
    }

    void Create(const std::string& path, long long /*bytes*/) { Open(path, 0); }
    void Attach(const std::string& path)
    {
        Open(path, MDB_RDONLY);
        MDB_stat status = {};
        Check(mdb_stat(mTransaction, mPieces, &status));
        mSize = static_cast<long long>(status.ms_entries - 1) * kChunk;
        mSize +=
            static_cast<long long>(Value(static_cast<long long>(status.ms_entries) - 1).size());
    }
    [[nodiscard]] long long Size() const { return mSize; }

    void Read(char* to, std::size_t length, long long position)
    {
        while (length > 0) {
            const auto offset = static_cast<std::size_t>(position % kChunk);
            const std::string_view value = Value(position / kChunk).substr(offset, length);
            std::memcpy(to, value.data(), value.size());
            to += value.size();
            length -= value.size();
            position += static_cast<long long>(value.size());
        }
    }

    // A whole chunk at a time, in order.
    void Write(const char* from, std::size_t length, long long position)
    {
        long long index = position / kChunk;
        MDB_val key{sizeof index, &index};
        MDB_val value{length, nullptr};
        Check(mdb_put(mTransaction, mPieces, &key, &value, MDB_APPEND | MDB_RESERVE));
        std::memcpy(value.mv_data, from, length);
    }
    void Settle() { Check(mdb_txn_commit(std::exchange(mTransaction, nullptr))); }
    void Sync() { Check(mdb_env_sync(mEnvironment, 1)); }
    void Close()
    {
        if (mTransaction != nullptr) {
            mdb_txn_abort(std::exchange(mTransaction, nullptr));
        }
        if (mEnvironment != nullptr) {
            mdb_env_close(std::exchange(mEnvironment, nullptr));
        }
    }

private:
    void Open(const std::string& path, unsigned flags)
    {
        mEnvironment = OpenEnvironment(path);
        Check(mdb_txn_begin(mEnvironment, nullptr, flags, &mTransaction));
        Check(mdb_dbi_open(mTransaction, "pieces",
                           MDB_INTEGERKEY | (flags == 0 ? unsigned{MDB_CREATE} : 0U), &mPieces));
    }
    std::string_view Value(long long index)
    {
        MDB_val key{sizeof index, &index};
        MDB_val value = {};
        Check(mdb_get(mTransaction, mPieces, &key, &value));
        return {static_cast<const char*>(value.mv_data), value.mv_size};
    }

    MDB_env* mEnvironment = nullptr;
    MDB_txn* mTransaction = nullptr;
    MDB_dbi mPieces = 0; // keys count chunks
    long long mSize = 0; // bytes, of an attached one
};

const Announced<KeyedContender<Lmdb>> kKeyed;
const Announced<PositionedContender<PackedLmdb>> kPacked;
} // namespace
