// Peer: Boost.Interprocess, a managed mapped file.
#include "Region.h"

#include <optional>

#include <boost/interprocess/indexes/iset_index.hpp>
#include <boost/interprocess/managed_mapped_file.hpp>
#include <boost/interprocess/mem_algo/rbtree_best_fit.hpp>
#include <boost/interprocess/sync/mutex_family.hpp>
#include <boost/version.hpp>

namespace {

namespace ipc = boost::interprocess;

class ManagedFile
{
public:
    static constexpr Kind kKind = Kind::Peer;
    static std::string Name() { return "boost"; }
    static std::string Version()
    {
        return std::to_string(BOOST_VERSION / 100000) + "." +
               std::to_string(BOOST_VERSION / 100 % 1000);
    }
    // From its pages on managed memory segments: null_mutex_family where one thread works, handles
    // for places that another mapping has to find, reserve_named_objects before many of them.
    static std::string Tuning()
    {
        return "basic_managed_mapped_file over rbtree_best_fit<null_mutex_family> and iset_index, "
               "sized before; memcpy, fdatasync at the end; handles as references; named objects, "
               "reserved before";
    }

    void Create(const std::string& path, long long bytes)
    {
        const auto size = static_cast<std::size_t>(bytes);
        mPath = path;
        mFile.emplace(ipc::create_only, path.c_str(), size + size / 64 + (1U << 20U));
        mBytes = static_cast<char*>(mFile->allocate(size));
        mFile->construct<File::handle_t>("start")(mFile->get_handle_from_address(mBytes));
    }
    void Attach(const std::string& path)
    {
        mPath = path;
        mFile.emplace(ipc::open_only, path.c_str());
        mBytes = static_cast<char*>(
            mFile->get_address_from_handle(*mFile->find<File::handle_t>("start").first));
    }
    [[nodiscard]] char* Bytes() const { return mBytes; }
    void Sync() const { Descriptor(mPath, O_RDWR).Sync(); } // flush() would not wait
    void Close() { mFile.reset(); }

    static void CopyIn(char* to, const void* from, std::size_t n) { std::memcpy(to, from, n); }
    static void Settle() {}

    [[nodiscard]] Reference Refer(long long offset, std::uint32_t file) const
    {
        return {static_cast<Word>(mFile->get_handle_from_address(mBytes + offset)), file};
    }
    static const char* Follow(const std::array<ManagedFile, 2>& stores, const Reference& reference)
    {
        return static_cast<const char*>(stores[reference[1]].mFile->get_address_from_handle(
            static_cast<File::handle_t>(reference[0])));
    }

    void CreatePools(const std::string& path, long long count)
    {
        mPath = path;
        mFile.emplace(ipc::create_only, path.c_str(),
                      static_cast<std::size_t>(count) * 512 + (1U << 20U));
        mFile->reserve_named_objects(static_cast<std::size_t>(count));
        for (long long i = 0; i < count; ++i) {
            auto* object = mFile->construct<Object>(PoolName(i).c_str())();
            FillBulk(object->data(), i * kPoolSize, kPoolSize);
        }
    }

    Word OpenPools(const std::string& path, long long count)
    {
        mPath = path;
        mFile.emplace(ipc::open_only, path.c_str());
        Word sum = 0;
        for (long long i = 0; i < count; ++i) {
            char piece[kPoolRead];
            std::memcpy(piece, mFile->find<Object>(PoolName(i).c_str()).first->data(), kPoolRead);
            sum += SumEnds<kPoolRead>(piece);
        }
        return sum;
    }

private:
    using File = ipc::basic_managed_mapped_file<char, ipc::rbtree_best_fit<ipc::null_mutex_family>,
                                                ipc::iset_index>;
    using Object = std::array<char, kPoolSize>;

    std::string mPath;
    std::optional<File> mFile;
    char* mBytes = nullptr; // of the stretch; in mFile
};

const Announced<RegionContender<ManagedFile>> kAnnounced;
} // namespace
