#include "DeclaredOnly.h"

HiddenHolder::HiddenHolder() = default;

HiddenHolder::HiddenHolder(const VUKBasSharedPtr<Hidden>& shared) : strong(shared), weak(shared) {}

HiddenHolder::HiddenHolder(const HiddenHolder& other) = default;

HiddenHolder& HiddenHolder::operator=(const HiddenHolder& other) = default;

HiddenHolder::~HiddenHolder() = default;

bool HiddenHolder::Alive() const
{
    return strong != nullptr && !weak.expired();
}

bool HiddenHolder::SameAs(const HiddenHolder& other) const
{
    return strong == other.strong;
}

VUKBasSharedPtr<Hidden> HiddenHolder::LockWeak() const
{
    return weak.lock();
}

void HiddenHolder::DropStrong()
{
    strong.reset();
}
