#pragma once
// The key texts of SendKeys read into key entries: the low byte a virtual-key code, and modifier bits
// for Shift, Ctrl and Alt.
#include <cstdint>
#include <string_view>
#include <vector>

namespace brannoc {

enum KeyModifier : std::uint32_t { kKeyShift = 256, kKeyCtrl = 512, kKeyAlt = 1024 };

// The most keys one SendKeys call may hold.
constexpr std::size_t kMaxKeyEntries = 128;

// Reads text into keys; false after raising 10110, 10111, 10112 or 10119.
[[nodiscard]] bool ParseKeySequence(std::wstring_view text, std::vector<std::uint32_t>& keys);

} // namespace brannoc
