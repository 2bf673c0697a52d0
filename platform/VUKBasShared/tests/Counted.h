#pragma once

#include "mem_Alloc.h"

/// An object that counts in the int it is given how many of its kind are alive.
class Counted : public mem_AllocationOperators
{
public:
    explicit Counted(int& alive, int number = 0) : mAlive(alive), mNumber(number) { ++mAlive; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --mAlive; }

    [[nodiscard]] int Number() const { return mNumber; }

private:
    int& mAlive;
    int mNumber;
};
