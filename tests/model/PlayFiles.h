// Operations on documents and files.
#pragma once

#include "Registers.h"

#include <string>
#include <utility>

template <class Store>
class FilePlay
{
public:
    FilePlay(Registers<Store>& registers, const Operation& operation, Outcome& outcome)
        : r(registers), op(operation), out(outcome)
    {}

    /// False for a kind that belongs elsewhere.
    bool Play() { return PlayDocument() || PlayFile(); }

private:
    using Document = typename Store::Document;
    using File = typename Store::File;
    using Pool = typename Store::Pool;
    using String = typename Store::String;

    [[nodiscard]] std::uint32_t Arg(std::size_t i) const { return op.arguments[i]; }
    [[nodiscard]] Document& TheDocument() { return r.documents[Arg(0)]; }

    bool PlayDocument()
    {
        switch (op.kind) {
        case Kind::AddFile:
            AddFile();
            return true;
        case Kind::CreateTemporary:
        case Kind::CreateGenerated:
            Create();
            return true;
        case Kind::FlushDocument:
            TheDocument().Flush();
            return true;
        case Kind::CloseDocument:
            TheDocument().Close();
            return true;
        case Kind::CloseFile:
            CloseFile();
            return true;
        case Kind::RenewDocument:
            TheDocument() = Document(Arg(0) == 2 ? "BBBB" : "AAAA");
            return true;
        case Kind::UseMovedDocument:
            UseMoved();
            return true;
        case Kind::AskVersion:
            AskVersion();
            return true;
        default:
            return false;
        }
    }

    bool PlayFile()
    {
        switch (op.kind) {
        case Kind::AskFile:
            AskFile();
            return true;
        case Kind::TakePool:
            TakePool();
            return true;
        case Kind::TakeCurrentPool:
            TakeCurrentPool();
            return true;
        case Kind::FileStart:
            FilePlace(false);
            return true;
        case Kind::FileEnd:
            FilePlace(true);
            return true;
        case Kind::FileAllocate:
            FileAllocate();
            return true;
        case Kind::NewPool:
            NewPool();
            return true;
        case Kind::ManyPools:
            ManyPools();
            return true;
        case Kind::AppendPool:
            AppendPool();
            return true;
        case Kind::FlushFile:
            FlushFile();
            return true;
        default:
            return false;
        }
    }

    void AddFile()
    {
        const auto choice = static_cast<Mode>(Arg(2));
        std::string name = r.names[Arg(1)];
        if (choice == Mode::UpdateDetour) {
            name.insert(r.folder.size(), "/.");
        } else if (choice == Mode::Write) {
            r.PrepareUuid(static_cast<UuidFrom>(Arg(4)), 0, false);
        }
        File file = TheDocument().AddFile(String(name.c_str()), AccessModeOf(choice));
        r.files[Arg(3)] = file;
        Answer(file.PoolCount());
        if (choice == Mode::Write) {
            r.NoteNewPool(file.Pool(), out);
        }
    }

    static typename Document::AccessMode AccessModeOf(Mode mode)
    {
        switch (mode) {
        case Mode::Write:
            return Document::Write;
        case Mode::Read:
            return Document::Read;
        case Mode::Unknown:
            return static_cast<typename Document::AccessMode>(3);
        default:
            return Document::Update;
        }
    }

    void Create()
    {
        const bool temporary = op.kind == Kind::CreateTemporary;
        const std::size_t number = kFixedNames + (temporary ? 0 : 1);
        const std::string stem = r.folder + (temporary ? "/t" : "/g");
        r.PrepareUuid(static_cast<UuidFrom>(Arg(3)), 0, false);
        File file = temporary ? TheDocument().CreateTemporary(String(stem.c_str()), Arg(1) != 0)
                              : TheDocument().CreateGenerated(String(stem.c_str()), String(".sim"),
                                                              Arg(1) != 0);
        r.files[Arg(2)] = file;
        out.name = Store::Bytes(file.FileName());
        out.numbers.push_back(out.name.starts_with(stem) &&
                              (temporary || out.name.ends_with(".sim")));
        r.names[number] = out.name;
        r.NoteNewPool(file.Pool(), out);
    }

    void CloseFile()
    {
        if (auto& file = r.files[Arg(1)]; !Skips(file.has_value())) {
            TheDocument().Close(*file);
            out.numbers.push_back(file->Null());
        }
    }

    void UseMoved()
    {
        auto& file = r.files[Arg(2)];
        if (Skips(Arg(1) != 5 || file.has_value())) {
            return;
        }
        // Whatever is raised, the document gets back what it lent.
        struct Loan
        {
            explicit Loan(Document& document) : lender(document), kept(std::move(document)) {}
            Loan(const Loan&) = delete;
            Loan& operator=(const Loan&) = delete;
            ~Loan() { lender = std::move(kept); }

            Document& lender;
            Document kept;
        } const loan(TheDocument());
        Document& empty = loan.lender;
        const String name(r.names[0].c_str());
        switch (Arg(1)) {
        case 0:
            empty.AddFile(name, Document::Read);
            break;
        case 1:
            empty.CreateTemporary(name, false);
            break;
        case 2:
            empty.CreateGenerated(name, name, false);
            break;
        case 3:
            empty.Flush();
            break;
        case 4:
            empty.Close();
            break;
        default:
            empty.Close(*file);
            break;
        }
    }

    void AskVersion()
    {
        const String name(r.names[Arg(0)].c_str());
        switch (Arg(1)) {
        case 0:
            Answer(Document::GetFileType(name));
            break;
        case 1:
            Answer(Document::UpgradeRequired(name));
            break;
        case 2:
            Answer(Document::DowngradeRequired(name));
            break;
        default:
            Answer(Document::BinaryUpgradeRequired(name));
            break;
        }
    }

    void AskFile()
    {
        if (const auto& file = r.files[Arg(0)]; !Skips(file.has_value())) {
            Answer(file->Null());
            out.bytes += Store::Bytes(file->FileName());
            Answer(file->ReadOnly());
            Answer(file->PoolCount());
        }
    }

    void TakePool()
    {
        if (const auto& file = r.files[Arg(0)]; !Skips(file.has_value())) {
            const std::uint32_t count = file->PoolCount();
            const bool beyond = count == 0 || Arg(1) % 16 == 15;
            r.pools[Arg(2)] = file->Pool(beyond ? count + Arg(1) / 16 : Arg(1) % count);
        }
    }

    void TakeCurrentPool()
    {
        if (const auto& file = r.files[Arg(0)]; !Skips(file.has_value())) {
            r.pools[Arg(1)] = file->Pool();
        }
    }

    void FilePlace(bool end)
    {
        if (const auto& file = r.files[Arg(0)]; !Skips(file.has_value())) {
            r.places[Arg(1)] = {end ? file->End() : file->Start(), !end || Sane(file->Pool())};
        }
    }

    void FileAllocate()
    {
        if (auto& file = r.files[Arg(0)]; !Skips(file.has_value())) {
            const bool tame = Sane(file->Pool());
            r.places[Arg(2)] = {file->Allocate(AllocationSize(Arg(1), Arg(3) != 0)), tame};
        }
    }

    void NewPool()
    {
        auto& file = r.files[Arg(0)];
        if (Skips(file.has_value() && MayGrow(*file))) {
            return;
        }
        const bool mayFail =
            !file->Null() && file->PoolCount() > 0 && file->Pool().DirectorySizeBytes() == 0;
        file->NewPool(Arg(1) != 0, r.PrepareUuid(static_cast<UuidFrom>(Arg(2)), Arg(3), mayFail));
        r.NoteNewPool(file->Pool(), out);
    }

    // Each gets a byte, so that the next one does not replace it.
    void ManyPools()
    {
        auto& file = r.files[Arg(0)];
        for (std::uint32_t i = 0; i <= Arg(1); ++i) {
            if (Skips(file.has_value() && MayGrow(*file))) {
                return;
            }
            file->NewPool(Arg(2) != 0, r.PrepareUuid(UuidFrom::Caller, 0, true));
            r.NoteNewPool(file->Pool(), out);
            file->Allocate(1);
        }
        Answer(file->PoolCount());
    }

    void AppendPool()
    {
        auto& file = r.files[Arg(0)];
        const auto& pool = r.pools[Arg(1)];
        if (Skips(file.has_value() && pool.has_value() && MayGrow(*file) &&
                  MayImport(*pool, *file))) {
            return;
        }
        file->AppendPool(*pool);
        out.bytes += Store::Bytes(file->Pool().GetGUID());
        Answer(file->Pool().Length());
    }

    void FlushFile()
    {
        if (auto& file = r.files[Arg(0)]; !Skips(file.has_value())) {
            file->Flush();
        }
    }

    // Marks the outcome unless `possible`.
    bool Skips(bool possible)
    {
        out.skipped = !possible;
        return out.skipped;
    }

    template <class Number>
    void Answer(Number number)
    {
        out.numbers.push_back(static_cast<std::uint64_t>(number));
    }

    static bool MayGrow(const File& file)
    {
        return file.Null() || file.PoolCount() == 0 ||
               (Sane(file.Pool()) && file.PoolCount() < kMostPools);
    }

    // A length just below 2^64 leaves no place for the copy, if there is a pool before it.
    static bool MayImport(const Pool& pool, const File& file)
    {
        if (pool.Null() || file.Null()) {
            return true;
        }
        const std::uint64_t size = SizeOf(pool);
        return size <= kLargestImport || (size > kMostBytes - 48 && file.PoolCount() > 1);
    }

    Registers<Store>& r;
    const Operation& op;
    Outcome& out;
};
