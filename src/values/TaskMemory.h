#pragma once
// Owns one block of the COM task allocator (CoTaskMemAlloc): record blocks before they are handed to a
// value, and the blocks a record type's copy routine returns.
#include <objbase.h>
#include <utility>

namespace brannoc {

class TaskMemory final {
public:
    TaskMemory() = default;
    // Allocates size bytes (at least one); empty when the allocator refused.
    static TaskMemory Allocate(SIZE_T size) { return TaskMemory(CoTaskMemAlloc(size > 0 ? size : 1)); }
    TaskMemory(const TaskMemory&) = delete;
    TaskMemory& operator=(const TaskMemory&) = delete;
    TaskMemory(TaskMemory&& other) noexcept : m_block(std::exchange(other.m_block, nullptr)) {}
    TaskMemory& operator=(TaskMemory&& other) noexcept
    {
        std::swap(m_block, other.m_block);
        return *this;
    }
    ~TaskMemory() { CoTaskMemFree(m_block); }

    void* Get() const noexcept { return m_block; }
    explicit operator bool() const noexcept { return m_block != nullptr; }
    // Hands the block to the caller.
    [[nodiscard]] void* Detach() noexcept { return std::exchange(m_block, nullptr); }
    // Address for an out parameter; the current block is freed first.
    void** Out() noexcept
    {
        CoTaskMemFree(std::exchange(m_block, nullptr));
        return &m_block;
    }

private:
    explicit TaskMemory(void* block) noexcept : m_block(block) {}
    void* m_block = nullptr;
};

} // namespace brannoc
