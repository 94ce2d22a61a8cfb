#pragma once
// Strings that grow by appending. A string value that `&` appends to is given spare room: its BSTR
// block is allocated larger than its text and the length prefix holds only the used length, so the
// value stays an ordinary BSTR (copied, freed and measured by the platform as usual) while later
// appends fill the spare room in place. Growth doubles the room, so n appends cost O(log n) blocks.
#include "values/Variant.h"

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

// storage = storage & right for the storage of a String or Variant variable (a by-reference chain is
// followed to it), as `s = s & expression` needs: a String there is appended to in place, keeping its
// spare room, so a loop of such statements allocates O(log n) times. A Variant holding another kind
// gets the result of & over it. Typed storage of another kind raises 10080. False after raising.
[[nodiscard]] bool AppendToStorage(VARIANT& storage, const Variant& right);

// How many string blocks AppendToString has allocated since the process started; tests use it to
// check that repeated appends grow geometrically.
unsigned long StringAppendAllocations() noexcept;

} // namespace brannoc
