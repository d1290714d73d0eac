#pragma once
// SPDX-License-Identifier: MIT
//
// Memory for the many small objects of a decoded graph. They are carved one behind the other from
// blocks that are given back when the last of their objects has died: an archive of a hundred
// thousand messages costs a few hundred allocations, and freeing it walks no lists. Not for objects
// that outlive their neighbours: each keeps its whole block. Each thread carves from a block of its
// own; objects may be freed by any thread.
//
//     auto message = foundation::makeObject<InstantMessage>(date);

#include <cstddef>
#include <memory>
#include <utility>

namespace foundation {

/// Suits pointers, integers and reals.
inline constexpr std::size_t objectAlignment = 8;

/// Memory for one object of at most a few kilobytes. Throws std::bad_alloc.
[[nodiscard]] void* allocateObject(std::size_t size);
/// Gives back what allocateObject() has answered.
void freeObject(void* object) noexcept;

/// Tells the system that this memory, not written yet, will be filled: where it can, it then hands
/// it out in large pages, which saves the time of many small ones.
void useLargePages(void* memory, std::size_t size) noexcept;

/// A standard allocator over these functions.
template <class T>
struct ObjectAllocator {
    static_assert(alignof(T) <= objectAlignment);
    using value_type = T;

    ObjectAllocator() = default;
    template <class Other>
    ObjectAllocator(const ObjectAllocator<Other>&) {}
    T* allocate(std::size_t count) { return static_cast<T*>(allocateObject(count * sizeof(T))); }
    void deallocate(T* objects, std::size_t) noexcept { freeObject(objects); }
    friend bool operator==(const ObjectAllocator&, const ObjectAllocator&) = default;
};

/// std::make_shared, in such memory.
template <class T, class... Arguments>
[[nodiscard]] std::shared_ptr<T> makeObject(Arguments&&... arguments) {
    return std::allocate_shared<T>(ObjectAllocator<T>(), std::forward<Arguments>(arguments)...);
}

}  // namespace foundation
