// SPDX-License-Identifier: MIT
#include "foundation/object_memory.h"

#include <atomic>
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

// The address sanitizer watches the ends of single allocations only.

void* allocateObject(std::size_t size) {
    return ::operator new(size);
}

void freeObject(void* object) noexcept {
    ::operator delete(object);
}

#else

namespace {

constexpr std::size_t blockSize = 32 * 1024;

/// In front of its objects; each object has the block's address in front of itself.
struct Block {
    /// Objects alive, and one for the thread that carves from it.
    std::atomic<std::size_t> users{1};

    void release() {
        if (users.fetch_sub(1, std::memory_order_acq_rel) == 1) ::operator delete(this);
    }
};

static_assert(sizeof(Block) % objectAlignment == 0 && sizeof(Block*) <= objectAlignment);

/// The block of one thread and what is left of it.
class Carver {
  public:
    ~Carver() {
        if (block_) block_->release();
    }
    void* carve(std::size_t size) {
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

    void startBlock(std::size_t size) {
        if (size > blockSize - sizeof(Block)) fatal("an object larger than a block");
        Block* const fresh = new (::operator new(blockSize)) Block;
        if (block_) block_->release();
        block_ = fresh;
        next_ = reinterpret_cast<char*>(fresh + 1);
        left_ = blockSize - sizeof(Block);
    }
};

thread_local Carver carver;

}  // namespace

void* allocateObject(std::size_t size) {
    const std::size_t rounded = (size + objectAlignment - 1) / objectAlignment * objectAlignment;
    return carver.carve(objectAlignment + rounded);
}

void freeObject(void* object) noexcept {
    static_cast<Block**>(object)[-1]->release();
}

#endif

}  // namespace foundation
