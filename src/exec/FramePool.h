#pragma once
// Storage blocks for the local frames of activations. Freed blocks are kept on a free list and handed
// out again, so calls in steady state do not allocate.
#include <cstddef>

namespace brannoc {

class FramePool final {
public:
    FramePool() = default;
    FramePool(const FramePool&) = delete;
    FramePool& operator=(const FramePool&) = delete;
    ~FramePool();

    // A zero-filled block of at least size bytes (size > 0), or null when memory is exhausted.
    [[nodiscard]] void* Acquire(std::size_t size);
    // Returns a block obtained from Acquire.
    void Free(void* block) noexcept;

    std::size_t CachedBlocks() const noexcept { return m_cached; }

private:
    struct Block {
        Block* next;
        std::size_t capacity;
    };
    static constexpr std::size_t kMaxCached = 256;

    Block* m_free = nullptr;
    std::size_t m_cached = 0;
};

} // namespace brannoc
