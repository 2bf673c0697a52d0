#include "Library.h"

#include "Posix.h"
#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimUttSystemCalls.h"

#include <cstdio>

namespace {

template <class Table>
constexpr bool kMaps = requires(Table table)
{
    table.mmap;
};

// Every mapping that is asked for fails while one of these lives.
template <class Table>
class NoMappings
{
public:
    explicit NoMappings(bool active) : mBefore(Table::Current())
    {
        if constexpr (kMaps<Table>) {
            if (active) {
                Table::Current().mmap = [](auto...) -> void* {
                    errno = ENODEV;
                    return MAP_FAILED;
                };
            }
        }
    }
    NoMappings(const NoMappings&) = delete;
    NoMappings& operator=(const NoMappings&) = delete;
    ~NoMappings() { Table::Current() = mBefore; }

private:
    Table mBefore;
};
using MappingSwitch = NoMappings<VUKSimUttSystemCalls>;
} // namespace

Library::Library(Variant variant) : mVariant(variant)
{
    VUKSimPoolManager_initializeC();
    for (int i = 0; i < 1000; ++i) {
        mTexts.emplace_back(Text(i).c_str());
    }
}

Library::~Library()
{
    Close();
    VUKSimPoolManager_finalizeC();
}

std::string Library::Name() const
{
    switch (mVariant) {
    case Variant::Plain:
        return "library";
    case Variant::OverBase:
        return "library-base";
    default:
        return "library-calls";
    }
}

std::string Library::Tuning() const
{
    switch (mVariant) {
    case Variant::Plain:
        return "streams with 256 KiB chunks; pools with own-entry-only directories";
    case Variant::OverBase:
        return "as library, but through a reference to VUKSimRpm_BStreamRead";
    default:
        return "as library, with every mmap refused";
    }
}

bool Library::Offers(const Job& job) const
{
    switch (mVariant) {
    case Variant::Plain:
        return true;
    case Variant::OverBase:
        return job.work == Workload::Decode;
    default: // where mappings make a difference
        return kMaps<VUKSimUttSystemCalls> && job.work != Workload::ReadImage &&
               job.work != Workload::StoreLocators && job.work != Workload::LoadLocators;
    }
}

void Library::Make(const Job& job)
{
    const MappingSwitch mappings(mVariant == Variant::WithoutMappings);
    StoreContender::Make(job);
}

void Library::Open(const Job& job)
{
    const MappingSwitch mappings(mVariant == Variant::WithoutMappings);
    const bool writes = job.work == Workload::Overwrite || job.work == Workload::WriteRandom;
    for (long long file = 0; NeedsFiles(job) && file < Files(job); ++file) {
        Add(Path(job, file), writes ? Document::Update : Document::Read);
    }
    if (job.work == Workload::ReadImage) {
        mImage = std::make_unique<VUKSimRpm_MemoryPool>(
            mFiles[0].Start(), static_cast<unsigned long>(job.bulk), VUKBasAllocator(), nullptr);
    } else if (job.work == Workload::StoreLocators || job.work == Workload::LoadLocators) {
        OpenTargets(job);
    }
}

Sample Library::Run(const Job& job)
{
    const MappingSwitch mappings(mVariant == Variant::WithoutMappings);
    return StoreContender::Run(job);
}

void Library::Close()
{
    mTargets.clear();
    mImage.reset();
    mFiles.clear();
    if (mDocument) {
        mDocument->Close();
    }
    mDocument.reset();
}

// A file of the one document, which is made with its first file.
VUKSimRpm_File Library::Add(const std::string& path, Document::AccessMode mode)
{
    if (!mDocument) {
        mDocument.emplace("BNCH");
    }
    mFiles.push_back(mDocument->AddFile(path.c_str(), mode));
    return mFiles.back();
}

void Library::Remove(const std::string& path)
{
    mFiles.clear();
    mDocument.reset();
    std::remove(path.c_str());
}

void Library::MakeBulk(const Job& job)
{
    VUKSimRpm_File file = Add(Path(job, 0), Document::Write);
    const VUKSimRpm_Locator start = file.Allocate(static_cast<unsigned long long>(job.bulk));
    PutBulk(job.bulk, kChunk, [&](long long offset, const char* bytes, long long length) {
        (start + static_cast<unsigned long long>(offset))
            .Write(static_cast<unsigned long>(length), bytes);
    });
}

Sample Library::Append(const Job& job)
{
    Records records(job.size, job.turn);
    Remove(Path(job, 0));
    return Timed(
        job.count,
        [&] {
            VUKSimRpm_BStreamAppendToPool stream(Add(Path(job, 0), Document::Write).Pool(), kChunk);
            WithSize(job.size, [&](auto n) {
                for (long long i = 0; i < job.count; ++i) {
                    stream.Write(records.Next(), n());
                }
            });
            stream.Flush();
        },
        [&] { mDocument->Flush(); });
}

Sample Library::Overwrite(const Job& job)
{
    Records records(job.size, job.turn);
    return Timed(
        job.count,
        [&] {
            VUKSimRpm_BStreamWriteLocator stream(mFiles[0].Start(), 0, kChunk);
            WithSize(job.size, [&](auto n) {
                for (long long i = 0; i < job.count; ++i) {
                    stream.Write(records.Next(), n());
                }
            });
            stream.Flush();
        },
        [&] { mDocument->Flush(); });
}

Sample Library::Decode(const Job& job)
{
    return Timed(job.count, [&] {
        VUKSimRpm_BStreamReadLocator stream(mFiles[0].Start(), 0, kChunk);
        VUKSimRpm_BStreamRead* base = &stream;
        Keep(&base); // the compiler must not know the type behind it
        return WithSize(job.size, [&](auto n) {
            if (mVariant == Variant::OverBase) {
                return SumRecords<n()>(job.count, [&] { return base->PrepRead(n()); });
            }
            return SumRecords<n()>(job.count, [&] { return stream.PrepRead(n()); });
        });
    });
}

Sample Library::ReadRandom(const Job& job)
{
    const VUKSimRpm_Locator start = mFiles[0].Start();
    return Timed(job.count, [&] {
        VUKSimRpm_Locator at = mImage ? VUKSimRpm_Locator(start, *mImage) : start;
        long long position = 0;
        return WithSize(job.size, [&](auto n) {
            return ReadPieces<n()>(job, [&](long long offset, char* buffer) {
                at += static_cast<unsigned long long>(offset - position);
                position = offset;
                if (at.Read(n(), buffer) != n()) {
                    throw std::runtime_error("a short read");
                }
            });
        });
    });
}

Sample Library::WriteRandom(const Job& job)
{
    const VUKSimRpm_Locator start = mFiles[0].Start();
    Sample sample = Timed(
        job.count,
        [&] {
            VUKSimRpm_Locator at = start;
            long long position = 0;
            WithSize(job.size, [&](auto n) {
                WritePieces<n()>(job, [&](long long offset, const char* piece) {
                    at += static_cast<unsigned long long>(offset - position);
                    position = offset;
                    at.Write(n(), piece);
                });
            });
        },
        [&] { mDocument->Flush(); });
    sample.sum = SumPlaces(job, [&](long long offset, char* word) {
        if ((start + static_cast<unsigned long long>(offset)).Read(8, word) != 8) {
            throw std::runtime_error("a short read");
        }
    });
    return sample;
}

namespace {
const Announced<Library> kPlain(Variant::Plain);
const Announced<Library> kOverBase(Variant::OverBase);
const Announced<Library> kCalls(Variant::WithoutMappings);
} // namespace
