#pragma once
// Strings that grow by appending. A string value that `&` appends to is given spare room: its BSTR
// block is allocated larger than its text and the length prefix holds only the used length, so the
// value stays an ordinary BSTR (copied, freed and measured by the platform as usual) while later
// appends fill the spare room in place. Growth doubles the room, so n appends cost O(log n) blocks.
#include "values/Variant.h"

#include <cstdint>
#include <cstring>
#include <cwchar>
#include <string_view>

namespace brannoc {

// The number of characters (without the terminator) that the block of text can hold. It is the
// string's own length when the block size cannot be learnt from the task allocator.
UINT StringCapacity(BSTR text) noexcept;

// Appends tail to the String that target holds (tag VT_BSTR, not by reference). The text is written
// into the string's spare room when it fits; otherwise a block with room for at least twice the old
// length is allocated. False (10001 raised, target unchanged) when allocation fails or the result
// would be too long.
[[nodiscard]] bool AppendToString(Variant& target, std::wstring_view tail);

// Stores text as the String that storage holds (a by-reference chain is followed to it): a String there
// takes the text into its own block when the block has room for it, so that assigning strings of
// similar lengths to a variable again and again allocates nothing; otherwise, and for a Variant that
// holds a value owning nothing, a new block is made (the old one freed). text may lie inside the
// stored string itself. Storage holding anything else is left alone: `stored` is false and the answer
// true. False (10001 raised, storage unchanged) when allocation fails.
[[nodiscard]] bool AssignText(VARIANT& storage, std::wstring_view text, bool& stored);

// Copies count characters, count being from Bytes / 2 to Bytes code units, between texts that do not
// overlap: two pieces of Bytes bytes, one from the start and one ending at the end, cover the text (they
// overlap each other when count is less than Bytes code units).
template <std::size_t Bytes> [[gnu::always_inline]] inline void CopyPieces(WCHAR* to, const WCHAR* from, UINT count) noexcept
{
    constexpr UINT kUnits = Bytes / sizeof(WCHAR);
    std::memcpy(to, from, Bytes);
    std::memcpy(to + count - kUnits, from + count - kUnits, Bytes);
}

// Copies count characters into a block that may hold them already (a text moved within its own
// block). Short texts that do not overlap their target, the usual variable contents, are copied in a few
// instructions rather than through the library's general move, whose call costs more than the copy.
[[gnu::always_inline]] inline void MoveText(WCHAR* to, const WCHAR* from, UINT count) noexcept
{
    const auto target = reinterpret_cast<std::uintptr_t>(to);
    const auto source = reinterpret_cast<std::uintptr_t>(from);
    const std::uintptr_t bytes = count * sizeof(WCHAR);
    if (count > 16 || (target < source + bytes && source < target + bytes))
        std::wmemmove(to, from, count);
    else if (count >= 8)
        CopyPieces<16>(to, from, count);
    else if (count >= 4)
        CopyPieces<8>(to, from, count);
    else if (count >= 2)
        CopyPieces<4>(to, from, count);
    else if (count == 1)
        to[0] = from[0];
}

// Sets the used length of a string whose block has room for it, and terminates the text.
[[gnu::always_inline]] inline void SetUsedLength(BSTR text, UINT length) noexcept
{
    const DWORD bytes = length * sizeof(WCHAR);
    std::memcpy(reinterpret_cast<BYTE*>(text) - sizeof(DWORD), &bytes, sizeof bytes);
    text[length] = L'\0';
}

// AssignText for the usual case, in line: storage holds a String (not by reference) at least as long as
// the text, whose block takes it without asking the allocator. Everything else goes to AssignText.
[[nodiscard, gnu::always_inline]] inline bool AssignTextInLine(VARIANT& storage, std::wstring_view text, bool& stored)
{
    const BSTR old = storage.vt == VT_BSTR ? storage.bstrVal : nullptr;
    if (!old || text.size() > TextLength(old))
        return AssignText(storage, text, stored);
    const auto length = static_cast<UINT>(text.size());
    // The text may be part of the stored string.
    if (text.data() != old)
        MoveText(old, text.data(), length);
    SetUsedLength(old, length);
    stored = true;
    return true;
}

// storage = storage & right for the storage of a String or Variant variable (a by-reference chain is
// followed to it), as `s = s & expression` needs: a String there is appended to in place, keeping its
// spare room, so a loop of such statements allocates O(log n) times. A Variant holding another kind
// gets the result of & over it. Typed storage of another kind raises 10080. False after raising.
[[nodiscard]] bool AppendToStorage(VARIANT& storage, const Variant& right);

// How many string blocks AppendToString has allocated since the process started; tests use it to
// check that repeated appends grow geometrically.
unsigned long StringAppendAllocations() noexcept;

} // namespace brannoc
