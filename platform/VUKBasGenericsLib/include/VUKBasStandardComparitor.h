#pragma once

/// Orders keys of type T by their own `bool Less(const T&) const`, in the untyped form that the
/// generic containers ask for.
template <class T>
struct VUKBasStandardComparitor
{
    /// True when the T at `a` comes before the T at `b`. The context plays no part.
    [[nodiscard]] static bool Compare(const void* a, const void* b, void* /*context*/)
    {
        return static_cast<const T*>(a)->Less(*static_cast<const T*>(b));
    }
};
