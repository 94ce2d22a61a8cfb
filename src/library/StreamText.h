#pragma once
// The sequential text forms of file streams: writing the text of Print # and Write # as ANSI bytes,
// reading one Input # field and one Line Input # line.
#include "library/FileStream.h"
#include "values/Variant.h"

#include <string_view>

namespace brannoc {

// How an Input # field is converted: the kind of the variable that receives it.
enum class FieldTarget { kVariant, kString, kNumber };

// The stream may be written by Print # and Write # (not Input or Random, and with write access);
// false after raising 10058 or 10049.
[[nodiscard]] bool CheckTextWrite(const FileStream& stream);
// Writes text as ANSI bytes at the stream's position; false after raising 10059.
[[nodiscard]] bool WriteStreamText(FileStream& stream, std::wstring_view text);
// Reads the next Input # field of a stream opened For Input into value, converted for target; false
// after raising 10053, 10055, 10062 or 10080.
[[nodiscard]] bool ReadInputField(FileStream& stream, FieldTarget target, Variant& value);
// Reads the next line (without its line end) of a stream opened For Input or Binary; false after
// raising 10058 or 10053.
[[nodiscard]] bool ReadStreamLine(FileStream& stream, Variant& value);
// The stream may be read (read access); false after raising 10048.
[[nodiscard]] bool CheckRead(const FileStream& stream);

} // namespace brannoc
