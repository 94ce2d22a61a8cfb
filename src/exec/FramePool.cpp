#include "exec/FramePool.h"

#include <cstdlib>
#include <cstring>

namespace brannoc {

namespace {
// Block sizes are rounded up so that frames of similar procedures share blocks.
constexpr std::size_t kGranule = 64;
// The header keeps the payload 8-byte aligned for doubles and currency values.
constexpr std::size_t kHeaderSize = 16;
}

FramePool::~FramePool()
{
    while (m_free) {
        Block* next = m_free->next;
        std::free(m_free);
        m_free = next;
    }
}

void* FramePool::Acquire(std::size_t size)
{
    static_assert(sizeof(Block) <= kHeaderSize);
    Block** link = &m_free;
    for (Block* block = m_free; block; link = &block->next, block = block->next) {
        if (block->capacity >= size) {
            *link = block->next;
            --m_cached;
            void* payload = reinterpret_cast<char*>(block) + kHeaderSize;
            std::memset(payload, 0, size);
            return payload;
        }
    }
    std::size_t capacity = (size + kGranule - 1) / kGranule * kGranule;
    auto* block = static_cast<Block*>(std::calloc(1, kHeaderSize + capacity));
    if (!block)
        return nullptr;
    block->capacity = capacity;
    return reinterpret_cast<char*>(block) + kHeaderSize;
}

void FramePool::Free(void* payload) noexcept
{
    if (!payload)
        return;
    auto* block = reinterpret_cast<Block*>(static_cast<char*>(payload) - kHeaderSize);
    if (m_cached >= kMaxCached) {
        std::free(block);
        return;
    }
    block->next = m_free;
    m_free = block;
    ++m_cached;
}

} // namespace brannoc
