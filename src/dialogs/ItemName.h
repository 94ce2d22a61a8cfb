#pragma once
// The name of a user-dialog item that has no field name, made from its text: characters are skipped up
// to the first letter; from there letters, digits and "_" are kept and everything else skipped; the
// name ends with the text, at 31 characters, or when a second space has been skipped.
#include <string>
#include <string_view>

namespace brannoc {

std::wstring ItemNameFromText(std::wstring_view text);

} // namespace brannoc
