// Operations on locators and memory pools.
#pragma once

#include "Registers.h"

#include <string>

template <class Store>
class LocatorPlay
{
public:
    LocatorPlay(Registers<Store>& registers, const Operation& operation, Outcome& outcome)
        : r(registers), op(operation), out(outcome)
    {}

    /// False for a kind that belongs elsewhere.
    bool Play() { return PlayPlace() || PlayTransfer() || PlayMemory(); }

private:
    using Locator = typename Store::Locator;
    using Place = typename Registers<Store>::Place;

    [[nodiscard]] std::uint32_t Arg(std::size_t i) const { return op.arguments[i]; }
    [[nodiscard]] Place& ThePlace() { return r.places[Arg(0)]; }
    [[nodiscard]] const Locator& TheLocator() { return ThePlace().locator; }

    bool PlayPlace()
    {
        switch (op.kind) {
        case Kind::ResetLocator:
            ThePlace() = {};
            return true;
        case Kind::CopyLocator:
            r.places[Arg(1)] = Place(ThePlace());
            return true;
        case Kind::MoveLocator:
            Move();
            return true;
        case Kind::CarryMemory:
            Carry();
            return true;
        case Kind::AskLocator:
            Ask();
            return true;
        case Kind::CompareLocators:
            Compare();
            return true;
        default:
            return false;
        }
    }

    bool PlayTransfer()
    {
        switch (op.kind) {
        case Kind::ReadLocator:
            Answer(TheLocator().Read(Arg(1), out.Room(Arg(1))));
            return true;
        case Kind::WriteLocator:
            Write();
            return true;
        case Kind::ReadDirect:
            ReadDirect();
            return true;
        case Kind::WriteDirect:
            WriteDirect();
            return true;
        default:
            return false;
        }
    }

    bool PlayMemory()
    {
        switch (op.kind) {
        case Kind::MakeMemory:
            MakeMemory();
            return true;
        case Kind::AskMemory:
        case Kind::ReadMemory:
        case Kind::WriteMemory:
            UseMemory();
            return true;
        default:
            return false;
        }
    }

    void Move()
    {
        const std::uint64_t delta = Arg(2);
        Place moved = ThePlace();
        switch (Arg(1)) {
        case 0:
            moved.locator = Locator(TheLocator(), delta);
            break;
        case 1:
            moved.locator = TheLocator() + delta;
            break;
        case 2:
            moved.locator = TheLocator() - delta;
            break;
        default:
            moved.locator += delta;
            break;
        }
        r.places[Arg(3)] = moved;
    }

    void Carry()
    {
        auto* memory = r.memories[Arg(1)];
        out.skipped = memory == nullptr;
        if (memory != nullptr) {
            r.places[Arg(2)] = {Locator(TheLocator(), *memory), ThePlace().tame};
        }
    }

    void Ask()
    {
        Answer(TheLocator().Null());
        Answer(r.NumberOf(TheLocator().IMPool()));
        switch (Arg(1)) {
        case 0:
            out.bytes += Store::Bytes(TheLocator().GetGUID());
            break;
        case 1:
            Answer(TheLocator().ReadOnly());
            break;
        case 2:
            Answer(TheLocator().Directory().get() != nullptr);
            break;
        default:
            break;
        }
    }

    void Compare()
    {
        const Locator& that = r.places[Arg(1)].locator;
        switch (Arg(2)) {
        case 0:
            Answer(TheLocator() == that);
            break;
        case 1:
            Answer(TheLocator() < that);
            break;
        case 2:
            Answer(TheLocator() <= that);
            break;
        case 3:
            Answer(TheLocator() - that);
            break;
        default:
            Answer(TheLocator().SamePool(that));
            break;
        }
    }

    void Write()
    {
        out.skipped = !MayWrite();
        if (!out.skipped) {
            const std::string bytes = Pattern(Arg(2), Arg(1));
            Answer(TheLocator().Write(bytes.size(), bytes.data()));
        }
    }

    // A direct locator is made and used at once: once its file is closed it must not be.
    void ReadDirect()
    {
        if (TheLocator() == Locator()) {
            Answer(typename Store::DirectLocator().Read(Arg(1), out.Room(Arg(1))));
        } else {
            Answer(TheLocator().DirectLocator().Read(Arg(1), out.Room(Arg(1))));
        }
    }

    void WriteDirect()
    {
        const std::string bytes = Pattern(Arg(2), Arg(1));
        if (TheLocator() == Locator()) {
            Answer(typename Store::DirectLocator().Write(bytes.size(), bytes.data()));
            return;
        }
        out.skipped = !MayWrite();
        if (!out.skipped) {
            Answer(TheLocator().DirectLocator().Write(bytes.size(), bytes.data()));
        }
    }

    void MakeMemory()
    {
        auto memory = Store::MakeMemory(r.places[Arg(1)].locator, Arg(2), Arg(3));
        r.memories[Arg(0)] = memory.get();
        r.made.push_back(std::move(memory));
    }

    void UseMemory()
    {
        auto* memory = r.memories[Arg(0)];
        out.skipped = memory == nullptr;
        if (memory == nullptr) {
            return;
        }
        const Locator& place = r.places[Arg(1)].locator;
        const std::uint32_t size = Arg(2);
        if (op.kind == Kind::AskMemory) {
            Answer(memory->Within(place, size));
            Answer(memory->Startin(place));
        } else if (op.kind == Kind::ReadMemory) {
            Answer(memory->Read(place, size, out.Room(size)));
        } else {
            memory->Write(place, size, Pattern(Arg(3), size).data());
        }
    }

    // Where a locator may lead anywhere, only bytes that exist are written, or nothing is.
    bool MayWrite()
    {
        if (ThePlace().tame) {
            return true;
        }
        bool exists = true; // a pool that cannot be reached cannot be written either
        Store::Try([&] {
            char byte = 0;
            exists = Locator(TheLocator(), 0ULL).Read(1, &byte) == 1;
        });
        return exists;
    }

    template <class Number>
    void Answer(Number number)
    {
        out.numbers.push_back(static_cast<std::uint64_t>(number));
    }

    Registers<Store>& r;
    const Operation& op;
    Outcome& out;
};
