#pragma once
// A growable array of execution entries, used for the execution stack and the pending stack. Popping
// never frees memory, so a run in steady state pushes and pops without allocating.
#include "code/Node.h"

#include <cstddef>

namespace brannoc {

class ExecStack final {
public:
    ExecStack() = default;
    ExecStack(const ExecStack&) = delete;
    ExecStack& operator=(const ExecStack&) = delete;
    ~ExecStack();

    // False when the array could not grow (nothing was pushed).
    [[nodiscard]] bool Push(const ExecEntry& entry)
    {
        if (m_size == m_capacity && !Grow())
            return false;
        m_entries[m_size++] = entry;
        return true;
    }
    // Room for count more entries without growing; false when the array could not grow.
    [[nodiscard]] bool Reserve(std::size_t count)
    {
        while (m_capacity - m_size < count)
            if (!Grow())
                return false;
        return true;
    }
    // Pushes onto a stack that has room (see Reserve).
    void PushInRoom(const ExecEntry& entry) noexcept { m_entries[m_size++] = entry; }
    // Pushes two entries, `lower` first, onto a stack that has room for both.
    void PushPairInRoom(const ExecEntry& lower, const ExecEntry& upper) noexcept
    {
        ExecEntry* top = m_entries + m_size;
        top[0] = lower;
        top[1] = upper;
        m_size += 2;
    }
    // Removes the top count entries.
    void Drop(std::size_t count) noexcept { m_size -= count; }
    // Removes and returns the top entry; the stack must not be empty.
    ExecEntry Pop() noexcept { return m_entries[--m_size]; }

    ExecEntry& Top() noexcept { return m_entries[m_size - 1]; }
    ExecEntry& At(std::size_t index) noexcept { return m_entries[index]; }
    const ExecEntry& At(std::size_t index) const noexcept { return m_entries[index]; }
    std::size_t Size() const noexcept { return m_size; }
    bool IsEmpty() const noexcept { return m_size == 0; }
    std::size_t Capacity() const noexcept { return m_capacity; }

private:
    [[nodiscard]] bool Grow();

    ExecEntry* m_entries = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

} // namespace brannoc
