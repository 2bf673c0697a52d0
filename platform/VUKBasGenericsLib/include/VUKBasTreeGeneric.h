#pragma once

#include "VUKBas_Export.h"

#include <cstddef>
#include <set>
#include <utility>

/// A sorted tree of elements with unique keys.
///
/// Element is a VUKBasPair<const Key, Value>; `Comparator(a, b, nullptr)` says whether the key at
/// `a` comes before the key at `b`. NodeAllocator gives the nodes their memory. An element stays
/// where it is for as long as the tree lives.
template <template <class> class NodeAllocator, class Element,
          bool (*Comparator)(const void*, const void*, void*)>
class VUKBAS_EXPORT VUKBasTreeGeneric
{
public:
    using Key = decltype(Element::first); // const, as the element has it

    VUKBasTreeGeneric() = default;

    [[nodiscard]] long long size() const noexcept { return static_cast<long long>(mNodes.size()); }

    /// The element with this key, or End() when there is none.
    [[nodiscard]] const Element* Find(Key& key) const
    {
        const auto node = mNodes.find(key);
        return node != mNodes.end() ? &*node : End();
    }

    /// What Find returns for a key that is not in the tree: null.
    [[nodiscard]] static constexpr const Element* End() noexcept { return nullptr; }

    /// Adds the element and returns true; when its key is there already, changes nothing and
    /// returns false. Without memory for the node it throws std::bad_alloc and changes nothing.
    bool InsertUnique(const Element& element) { return mNodes.insert(element).second; }

    /// The element with this one's key: the one that is there already, else this one, added. The
    /// work of one InsertUnique, and fails as that does.
    const Element& FindOrInsert(const Element& element) { return *mNodes.insert(element).first; }

private:
    struct Before
    {
        using is_transparent = void; // lets Find compare a key with elements

        bool operator()(const Element& a, const Element& b) const
        {
            return Comparator(&a.first, &b.first, nullptr);
        }
        bool operator()(const Element& a, Key& b) const
        {
            return Comparator(&a.first, &b, nullptr);
        }
        bool operator()(Key& a, const Element& b) const
        {
            return Comparator(&a, &b.first, nullptr);
        }
    };

    std::set<Element, Before, NodeAllocator<Element>> mNodes;
};
