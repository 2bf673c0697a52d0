// Operations on pools.
#pragma once

#include "Registers.h"

template <class Store>
class PoolPlay
{
public:
    PoolPlay(Registers<Store>& registers, const Operation& operation, Outcome& outcome)
        : r(registers), op(operation), out(outcome)
    {}

    /// False for a kind that belongs elsewhere.
    bool Play()
    {
        auto& pool = r.pools[op.arguments[0] % kPools];
        switch (op.kind) {
        case Kind::AskPool:
            Ask(pool);
            return true;
        case Kind::PoolStart:
        case Kind::PoolEnd:
        case Kind::PoolAllocate:
            // Any member but two of a null pool handle lies outside the contract.
            out.skipped = !pool.has_value() || pool->Null();
            if (!out.skipped) {
                Locate(*pool);
            }
            return true;
        default:
            return false;
        }
    }

private:
    using Pool = typename Store::Pool;

    void Ask(const std::optional<Pool>& pool)
    {
        out.skipped = !pool.has_value();
        if (out.skipped) {
            return;
        }
        Answer(pool->Null());
        Answer(pool->HeaderSizeBytes());
        if (!pool->Null()) {
            Answer(pool->Length());
            Answer(pool->DirectorySizeBytes());
            Answer(pool->ReadOnly());
            out.bytes += Store::Bytes(pool->GetGUID());
        }
    }

    void Locate(Pool& pool)
    {
        const bool tame = Sane(pool);
        if (op.kind == Kind::PoolStart) {
            r.places[op.arguments[1]] = {pool.Start()};
        } else if (op.kind == Kind::PoolEnd) {
            r.places[op.arguments[1]] = {pool.End(), tame};
        } else {
            const std::uint64_t size = AllocationSize(op.arguments[1], op.arguments[3] != 0);
            r.places[op.arguments[2]] = {pool.Allocate(size), tame};
        }
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
