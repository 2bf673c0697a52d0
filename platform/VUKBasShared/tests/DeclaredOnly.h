// A holder of pointers to a class that is only declared here, and in DeclaredOnly.cpp. What
// compiles there is what code may do without the class's definition.
#pragma once

#include "VUKBasSharedPtr.h"
#include "VUKBasWeakPtr.h"

class Hidden;

struct HiddenHolder
{
    HiddenHolder();
    explicit HiddenHolder(const VUKBasSharedPtr<Hidden>& shared);
    HiddenHolder(const HiddenHolder& other);
    HiddenHolder& operator=(const HiddenHolder& other);
    ~HiddenHolder();

    [[nodiscard]] bool Alive() const;
    [[nodiscard]] bool SameAs(const HiddenHolder& other) const;
    [[nodiscard]] VUKBasSharedPtr<Hidden> LockWeak() const;
    void DropStrong();

    VUKBasSharedPtr<Hidden> strong;
    VUKBasWeakPtr<Hidden> weak;
};
