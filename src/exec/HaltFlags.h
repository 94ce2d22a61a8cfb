#pragma once
// The halt byte of the engine that is currently running. Every loop of the interpreter tests it; an
// engine that is not current keeps its own copy, merged back when it becomes current again. Engine code
// runs under the one engine lock, but a thread that waits for the engine sets the hand-over bit from
// outside it, so every change is an atomic operation; the test itself stays one plain load.
#include <cstdint>

namespace brannoc {

class HaltFlags final {
public:
    enum Bit : std::uint8_t {
        kError = 1,           // run-time error (or a stop) in the running code
        kAction = 2,          // a host-control action is pending
        kOutOfMemory = 4,     // sticky: no clearing operation removes it
        kEvaluationError = 8, // run-time error while a host evaluation is in progress
        kHandOver = 16,       // another thread waits for the engine: give it up at the next statement
    };
    // Any of these ends a statement sequence at once.
    static constexpr std::uint8_t kStopMask = kError | kEvaluationError;
    // Bits that belong to the process rather than to one engine: they stay when engines change places.
    static constexpr std::uint8_t kProcessBits = kOutOfMemory | kHandOver;

    // The running engine's bits (the hand-over bit is not one of them).
    static std::uint8_t Value() noexcept { return static_cast<std::uint8_t>(Load() & ~kHandOver); }
    static bool Any() noexcept { return Load() != 0; }
    static bool Has(std::uint8_t mask) noexcept { return (Load() & mask) != 0; }
    static bool MustStop() noexcept { return (Load() & kStopMask) != 0; }
    static bool HandOverWanted() noexcept { return (Load() & kHandOver) != 0; }
    static void Set(std::uint8_t bits) noexcept { __atomic_or_fetch(&s_bits, bits, __ATOMIC_SEQ_CST); }
    // Clears the given bits except the out-of-memory bit.
    static void Clear(std::uint8_t bits) noexcept
    {
        __atomic_and_fetch(&s_bits, static_cast<std::uint8_t>(~(bits & ~kOutOfMemory)), __ATOMIC_SEQ_CST);
    }
    // Replaces the engine's bits (used when engines change places); keeps the process bits.
    static void Assign(std::uint8_t bits) noexcept
    {
        __atomic_and_fetch(&s_bits, kProcessBits, __ATOMIC_SEQ_CST);
        __atomic_or_fetch(&s_bits, static_cast<std::uint8_t>(bits & ~kHandOver), __ATOMIC_SEQ_CST);
    }
    // The hand-over bit is set and cleared only by the engine lock.
    static void SetHandOver(bool wanted) noexcept
    {
        if (wanted)
            __atomic_or_fetch(&s_bits, kHandOver, __ATOMIC_SEQ_CST);
        else
            __atomic_and_fetch(&s_bits, static_cast<std::uint8_t>(~kHandOver), __ATOMIC_SEQ_CST);
    }

private:
    // A relaxed load compiles to the plain byte load, yet is read again on every test.
    static std::uint8_t Load() noexcept { return __atomic_load_n(&s_bits, __ATOMIC_RELAXED); }

    static inline std::uint8_t s_bits = 0;
};

} // namespace brannoc
