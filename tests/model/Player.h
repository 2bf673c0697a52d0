#pragma once

#include "PlayFiles.h"
#include "PlayLocators.h"
#include "PlayPools.h"
#include "PlayStreams.h"

#include <string>

/// Plays operations on one store, and tells all that came of each.
template <class Store>
class Player
{
public:
    /// Files lie in `folder`, which is named without a slash at its end.
    explicit Player(const std::string& folder) : mRegisters(folder) {}

    void Play(const Operation& operation, Outcome& outcome)
    {
        outcome.Clear();
        outcome.failure = Store::Try([&] {
            if (!FilePlay<Store>(mRegisters, operation, outcome).Play() &&
                !PoolPlay<Store>(mRegisters, operation, outcome).Play() &&
                !LocatorPlay<Store>(mRegisters, operation, outcome).Play()) {
                StreamPlay<Store>(mRegisters, operation, outcome).Play();
            }
        });
        outcome.reports = Store::TakeReports();
        Store::ForceUuid(nullptr); // an identifier that was not needed
    }

    /// The full name that number `name` stands for by now.
    [[nodiscard]] const std::string& NameOf(std::uint32_t name) const
    {
        return mRegisters.names[name];
    }

private:
    Registers<Store> mRegisters;
};
