// Peer: RocksDB, one value for each record.
#include "Keyed.h"

#include <stdexcept>

#include <endian.h>

#include <rocksdb/db.h>
#include <rocksdb/filter_policy.h>
#include <rocksdb/table.h>
#include <rocksdb/version.h>
#include <rocksdb/write_batch.h>

namespace {

class RocksDb
{
public:
    static std::string Name() { return "rocksdb"; }
    static std::string Version()
    {
        return std::to_string(ROCKSDB_MAJOR) + "." + std::to_string(ROCKSDB_MINOR) + "." +
               std::to_string(ROCKSDB_PATCH);
    }
    // From its tuning guide and FAQ: IncreaseParallelism, write batches, no write-ahead log for a
    // bulk load that ends with a flush, one compaction by hand behind it (its threads would also
    // work beside others' rounds otherwise), a bloom filter of 10 bits and a large block cache for
    // point lookups, mmap reads for data that fits into memory, no compression of what does not
    // shrink.
    static std::string Tuning()
    {
        return "write batches of 1,000, no write-ahead log, flush and compaction at the end, bloom "
               "filter of 10 bits, block cache 512 MiB, allow_mmap_reads, no compression";
    }

    void Open(const std::string& path)
    {
        rocksdb::Options options;
        options.create_if_missing = true;
        options.IncreaseParallelism();
        options.compression = rocksdb::kNoCompression;
        options.allow_mmap_reads = true;
        options.disable_auto_compactions = true;
        rocksdb::BlockBasedTableOptions table;
        table.filter_policy.reset(rocksdb::NewBloomFilterPolicy(10));
        table.block_cache = rocksdb::NewLRUCache(std::size_t{512} << 20U);
        options.table_factory.reset(rocksdb::NewBlockBasedTableFactory(table));
        rocksdb::DB* database = nullptr;
        Check(rocksdb::DB::Open(options, path, &database));
        mDatabase.reset(database);
    }
    void Close()
    {
        if (mDatabase) {
            Check(mDatabase->Flush(rocksdb::FlushOptions())); // no log would bring it back
            mDatabase.reset();
        }
    }

    void Begin() {}
    void Commit()
    {
        rocksdb::WriteOptions options;
        options.disableWAL = true;
        Check(mDatabase->Write(options, &mBatch));
        mBatch.Clear();
    }
    void BeginReading() {}
    void EndReading() {}

    void Put(long long key, std::string_view value) { PutKey(Key(key), value); }
    void Replace(long long key, std::string_view value) { Put(key, value); }
    void PutNamed(const std::string& name, std::string_view value) { PutKey(name, value); }

    std::string_view Get(long long key) { return GetKey(Key(key)); }
    std::string_view GetNamed(const std::string& name) { return GetKey(name); }

    template <class Visit>
    void Scan(Visit visit)
    {
        rocksdb::ReadOptions options;
        options.verify_checksums = false;
        const std::unique_ptr<rocksdb::Iterator> at(mDatabase->NewIterator(options));
        for (at->SeekToFirst(); at->Valid(); at->Next()) {
            visit(at->value().ToStringView());
        }
        Check(at->status());
    }

    void Sync()
    {
        Check(mDatabase->Flush(rocksdb::FlushOptions()));
        Check(mDatabase->CompactRange(rocksdb::CompactRangeOptions(), nullptr, nullptr));
    }

private:
    static constexpr int kBatch = 1000;

    static void Check(const rocksdb::Status& status)
    {
        if (!status.ok()) {
            throw std::runtime_error("RocksDB: " + status.ToString());
        }
    }

    // Big-endian, so that keys order as numbers.
    rocksdb::Slice Key(long long key)
    {
        mKey = htobe64(static_cast<Word>(key));
        return {reinterpret_cast<const char*>(&mKey), sizeof mKey};
    }

    void PutKey(const rocksdb::Slice& key, std::string_view value)
    {
        Check(mBatch.Put(key, value));
        if (mBatch.Count() == kBatch) {
            Commit();
        }
    }
    std::string_view GetKey(const rocksdb::Slice& key)
    {
        mValue.Reset();
        Check(mDatabase->Get(mReading, mDatabase->DefaultColumnFamily(), key, &mValue));
        return mValue.ToStringView();
    }

    std::unique_ptr<rocksdb::DB> mDatabase;
    rocksdb::WriteBatch mBatch;
    rocksdb::ReadOptions mReading;
    rocksdb::PinnableSlice mValue;
    Word mKey = 0;
};

const Announced<KeyedContender<RocksDb>> kAnnounced;
} // namespace
