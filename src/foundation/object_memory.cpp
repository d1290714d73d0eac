// SPDX-License-Identifier: MIT
#include "foundation/object_memory.h"

#if __has_include(<sys/mman.h>)
#include <sys/mman.h>
#endif

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <new>

#include "foundation/checked.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VELL_SINGLE_OBJECTS
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define VELL_SINGLE_OBJECTS
#endif

namespace foundation {

#ifdef VELL_SINGLE_OBJECTS

// The address sanitizer checks the bounds of single allocations only.

void* allocateObject(std::size_t size) {
    return ::operator new(size);
}

void freeObject(void* object) noexcept {
    ::operator delete(object);
}

#else

namespace {

constexpr std::size_t smallestBlock = 32 << 10;
/// A large page of most processors.
constexpr std::size_t largestBlock = 2 << 20;

#ifdef MADV_HUGEPAGE

/// Mapped directly, so that it is returned to the system at once.
void* allocateLargestBlock() {
    constexpr int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
    void* const twice = mmap(nullptr, 2 * largestBlock, PROT_READ | PROT_WRITE, flags, -1, 0);
    if (twice == MAP_FAILED) throw std::bad_alloc();
    char* const begin = static_cast<char*>(twice);
    const std::size_t before = -reinterpret_cast<std::uintptr_t>(begin) % largestBlock;
    if (before > 0) munmap(begin, before);
    munmap(begin + before + largestBlock, largestBlock - before);
    madvise(begin + before, largestBlock, MADV_HUGEPAGE);
    return begin + before;
}

void freeLargestBlock(void* block) {
    munmap(block, largestBlock);
}

#else

void* allocateLargestBlock() {
    return ::operator new(largestBlock);
}

void freeLargestBlock(void* block) {
    ::operator delete(block);
}

#endif

/// Precedes its objects; each object is preceded by the block's address.
struct Block {
    /// Objects alive, and one for the thread that allocates from it.
    std::atomic<std::size_t> users{1};
    std::size_t size;

    static Block* make(std::size_t size) {
        void* const memory = size == largestBlock ? allocateLargestBlock() : ::operator new(size);
        Block* const block = new (memory) Block;
        block->size = size;
        return block;
    }
    void release() {
        if (users.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
        if (size == largestBlock)
            freeLargestBlock(this);
        else
            ::operator delete(this);
    }
};

static_assert(sizeof(Block) % objectAlignment == 0 && sizeof(void*) <= objectAlignment);

/// The block of one thread and what is left of it.
class Arena {
  public:
    ~Arena() {
        if (block_) block_->release();
    }
    void* allocate(std::size_t size) {
        if (size > left_) startBlock(size);
        block_->users.fetch_add(1, std::memory_order_relaxed);
        char* const object = next_ + objectAlignment;
        reinterpret_cast<Block**>(object)[-1] = block_;
        next_ += size;
        left_ -= size;
        return object;
    }

  private:
    Block* block_ = nullptr;
    char* next_ = nullptr;
    std::size_t left_ = 0;

    /// Blocks double while objects of the previous one are alive: a large archive gets large pages,
    /// a small one keeps little memory.
    void startBlock(std::size_t size) {
        if (size > smallestBlock - sizeof(Block)) fatal("an object larger than a block");
        const bool isGrowing = block_ && block_->users.load(std::memory_order_relaxed) > 1;
        Block* const fresh =
            Block::make(isGrowing ? std::min(2 * block_->size, largestBlock) : smallestBlock);
        if (block_) block_->release();
        block_ = fresh;
        next_ = reinterpret_cast<char*>(fresh + 1);
        left_ = fresh->size - sizeof(Block);
    }
};

thread_local Arena arena;

}  // namespace

void* allocateObject(std::size_t size) {
    const std::size_t rounded = (size + objectAlignment - 1) / objectAlignment * objectAlignment;
    return arena.allocate(objectAlignment + rounded);
}

void freeObject(void* object) noexcept {
    static_cast<Block**>(object)[-1]->release();
}

#endif

void useLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) noexcept {
#ifdef MADV_HUGEPAGE
    constexpr std::size_t page = 2 << 20;
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    const std::size_t before = -address % page;
    if (size < before + page) return;
    madvise(static_cast<char*>(memory) + before, (size - before) / page * page, MADV_HUGEPAGE);
#endif
}

}  // namespace foundation
