#pragma once
// The halt byte of the engine that is currently running. Every loop of the interpreter tests it; an
// engine that is not current keeps its own copy, merged back when it becomes current again. All engine
// code runs under the one engine lock, so a plain byte is enough.
#include <cstdint>

namespace brannoc {

class HaltFlags final {
public:
    enum Bit : std::uint8_t {
        kError = 1,           // run-time error (or a stop) in the running code
        kAction = 2,          // a host-control action is pending
        kOutOfMemory = 4,     // sticky: no clearing operation removes it
        kEvaluationError = 8, // run-time error while a host evaluation is in progress
    };
    // Any of these ends a statement sequence at once.
    static constexpr std::uint8_t kStopMask = kError | kEvaluationError;

    static std::uint8_t Value() noexcept { return s_bits; }
    static bool Any() noexcept { return s_bits != 0; }
    static bool Has(std::uint8_t mask) noexcept { return (s_bits & mask) != 0; }
    static bool MustStop() noexcept { return (s_bits & kStopMask) != 0; }
    static void Set(std::uint8_t bits) noexcept { s_bits = static_cast<std::uint8_t>(s_bits | bits); }
    // Clears the given bits except the out-of-memory bit.
    static void Clear(std::uint8_t bits) noexcept
    {
        s_bits = static_cast<std::uint8_t>(s_bits & ~(bits & ~kOutOfMemory));
    }
    // Replaces the byte (used when engines change places); keeps the sticky bit.
    static void Assign(std::uint8_t bits) noexcept
    {
        s_bits = static_cast<std::uint8_t>(bits | (s_bits & kOutOfMemory));
    }

private:
    static inline std::uint8_t s_bits = 0;
};

} // namespace brannoc
