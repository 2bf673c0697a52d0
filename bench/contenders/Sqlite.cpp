// Peer: SQLite, one row for each record, and incremental input and output of one large blob.
#include "Keyed.h"
#include "Positioned.h"

#include <stdexcept>

#include <sqlite3.h>

namespace {

/// An open database, tuned as the FAQ and the pragma pages say: synchronous off where durability
/// comes later, a memory journal, mmap_size for reads without a copy, a large page cache, exclusive
/// locking for one process.
class Database
{
public:
    void Open(const std::string& path, std::initializer_list<const char*> statements)
    {
        mPath = path;
        Check(sqlite3_open(path.c_str(), &mHandle));
        for (const char* pragma : {"PRAGMA journal_mode=MEMORY", "PRAGMA synchronous=OFF",
                                   "PRAGMA locking_mode=EXCLUSIVE", "PRAGMA mmap_size=1073741824",
                                   "PRAGMA cache_size=-65536"}) {
            Execute(pragma);
        }
        for (const char* statement : statements) {
            Execute(statement);
        }
    }
    void Close()
    {
        sqlite3_close(mHandle);
        mHandle = nullptr;
    }

    [[nodiscard]] sqlite3* Handle() const { return mHandle; }
    void Execute(const char* text)
    {
        Check(sqlite3_exec(mHandle, text, nullptr, nullptr, nullptr));
    }
    void Check(int result) const
    {
        if (result != SQLITE_OK) {
            Fail();
        }
    }
    [[noreturn]] void Fail() const
    {
        throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(mHandle));
    }
    void Sync() const { Descriptor(mPath, O_RDWR).Sync(); }

private:
    std::string mPath;
    sqlite3* mHandle = nullptr;
};

class SqliteRows
{
public:
    static std::string Name() { return "sqlite"; }
    static std::string Version() { return sqlite3_libversion(); }
    static std::string Tuning()
    {
        return "prepared statements, 100,000 rows a transaction, synchronous=OFF and fdatasync at "
               "the end, journal_mode=MEMORY, locking_mode=EXCLUSIVE, mmap_size=1 GiB, cache 64 "
               "MiB";
    }

    void Open(const std::string& path)
    {
        mDatabase.Open(
            path,
            {"CREATE TABLE IF NOT EXISTS numbers(id INTEGER PRIMARY KEY, value BLOB)",
             "CREATE TABLE IF NOT EXISTS names(name TEXT PRIMARY KEY, value BLOB) WITHOUT ROWID"});
        const char* const texts[kStatements] = {"INSERT INTO numbers(value, id) VALUES(?2, ?1)",
                                                "UPDATE numbers SET value=?2 WHERE id=?1",
                                                "INSERT INTO names(name, value) VALUES(?1, ?2)",
                                                "SELECT value FROM numbers WHERE id=?1",
                                                "SELECT value FROM names WHERE name=?1",
                                                "SELECT value FROM numbers ORDER BY id"};
        for (int i = 0; i < kStatements; ++i) {
            mDatabase.Check(sqlite3_prepare_v3(mDatabase.Handle(), texts[i], -1,
                                               SQLITE_PREPARE_PERSISTENT, &mStatements[i],
                                               nullptr));
        }
    }
    void Close()
    {
        for (sqlite3_stmt*& statement : mStatements) {
            sqlite3_finalize(statement);
            statement = nullptr;
        }
        mDatabase.Close();
    }

    void Begin() { mDatabase.Execute("BEGIN"); }
    void Commit() { mDatabase.Execute("COMMIT"); }
    void BeginReading() { Begin(); }
    void EndReading()
    {
        sqlite3_reset(mStatements[kGet]);
        sqlite3_reset(mStatements[kGetNamed]);
        Commit();
    }

    void Put(long long key, std::string_view value) { Store(mStatements[kPut], key, value); }
    void Replace(long long key, std::string_view value)
    {
        Store(mStatements[kReplace], key, value);
    }
    void PutNamed(const std::string& name, std::string_view value)
    {
        BindName(mStatements[kPutNamed], name);
        Finish(mStatements[kPutNamed], value);
    }

    std::string_view Get(long long key)
    {
        sqlite3_stmt* statement = mStatements[kGet];
        sqlite3_reset(statement);
        sqlite3_bind_int64(statement, 1, key);
        return Row(statement);
    }
    std::string_view GetNamed(const std::string& name)
    {
        sqlite3_reset(mStatements[kGetNamed]);
        BindName(mStatements[kGetNamed], name);
        return Row(mStatements[kGetNamed]);
    }

    template <class Visit>
    void Scan(Visit visit)
    {
        sqlite3_stmt* statement = mStatements[kScan];
        while (sqlite3_step(statement) == SQLITE_ROW) {
            visit(Column(statement));
        }
        sqlite3_reset(statement);
    }

    void Sync() const { mDatabase.Sync(); }

private:
    enum Which
    {
        kPut,
        kReplace,
        kPutNamed,
        kGet,
        kGetNamed,
        kScan,
        kStatements
    };

    static void BindName(sqlite3_stmt* statement, const std::string& name)
    {
        sqlite3_bind_text(statement, 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
    }
    void Store(sqlite3_stmt* statement, long long key, std::string_view value)
    {
        sqlite3_bind_int64(statement, 1, key);
        Finish(statement, value);
    }
    void Finish(sqlite3_stmt* statement, std::string_view value)
    {
        sqlite3_bind_blob(statement, 2, value.data(), static_cast<int>(value.size()),
                          SQLITE_STATIC);
        if (sqlite3_step(statement) != SQLITE_DONE) {
            mDatabase.Fail();
        }
        mDatabase.Check(sqlite3_reset(statement));
    }
    [[nodiscard]] std::string_view Row(sqlite3_stmt* statement) const
    {
        if (sqlite3_step(statement) != SQLITE_ROW) {
            mDatabase.Fail();
        }
        return Column(statement);
    }
    static std::string_view Column(sqlite3_stmt* statement)
    {
        return {static_cast<const char*>(sqlite3_column_blob(statement, 0)),
                static_cast<std::size_t>(sqlite3_column_bytes(statement, 0))};
    }

    Database mDatabase;
    sqlite3_stmt* mStatements[kStatements] = {};
};

class SqliteBlob
{
public:
    static constexpr Kind kKind = Kind::Peer;
    static constexpr bool kInPlace = true;
    static std::string Name() { return "sqlite-blob"; }
    static std::string Version() { return sqlite3_libversion(); }
    // Its page on blobs finds pages of 8 or 16 KiB the best for large ones.
    static std::string Tuning()
    {
        return "as sqlite, with pages of 16 KiB; one zeroblob, sqlite3_blob_read and "
               "sqlite3_blob_write on one handle";
    }

    void Create(const std::string& path, long long bytes)
    {
        Attach(path);
        mDatabase.Execute(
            ("INSERT INTO blobs VALUES(1, zeroblob(" + std::to_string(bytes) + "))").c_str());
    }
    void Attach(const std::string& path)
    {
        mDatabase.Open(path,
                       {"PRAGMA page_size=16384",
                        "CREATE TABLE IF NOT EXISTS blobs(id INTEGER PRIMARY KEY, value BLOB)"});
    }
    [[nodiscard]] long long Size() { return sqlite3_blob_bytes(Blob()); }

    void Read(char* to, std::size_t length, long long position)
    {
        mDatabase.Check(
            sqlite3_blob_read(Blob(), to, static_cast<int>(length), static_cast<int>(position)));
    }
    void Write(const char* from, std::size_t length, long long position)
    {
        mDatabase.Check(
            sqlite3_blob_write(Blob(), from, static_cast<int>(length), static_cast<int>(position)));
    }
    // Closing the handle ends its transaction.
    void Settle() { mDatabase.Check(sqlite3_blob_close(std::exchange(mBlob, nullptr))); }
    void Sync() const { mDatabase.Sync(); }
    void Close()
    {
        sqlite3_blob_close(std::exchange(mBlob, nullptr));
        mDatabase.Close();
    }

private:
    sqlite3_blob* Blob()
    {
        if (mBlob == nullptr) {
            mDatabase.Check(
                sqlite3_blob_open(mDatabase.Handle(), "main", "blobs", "value", 1, 1, &mBlob));
        }
        return mBlob;
    }

    Database mDatabase;
    sqlite3_blob* mBlob = nullptr;
};

const Announced<KeyedContender<SqliteRows>> kRows;
const Announced<PositionedContender<SqliteBlob>> kBlob;
} // namespace
