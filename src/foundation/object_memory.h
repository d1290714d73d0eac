#pragma once
// SPDX-License-Identifier: MIT
//
// Memory for the many small objects of a decoded graph: one arena a thread, whose blocks are freed
// with the last of their objects. Loading 100,000 keyed messages takes 12 % longer without it. Not
// for objects that outlive their neighbours: each keeps its whole block. Any thread may free them.
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
/// Frees what allocateObject() returned.
void freeObject(void* object) noexcept;

/// Advises the system to back this memory, not yet written, with large pages: that saves many page
/// faults.
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
