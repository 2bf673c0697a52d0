#pragma once

/// Two values side by side.
template <class A, class B>
struct VUKBasPair
{
    A first;
    B second;
};
