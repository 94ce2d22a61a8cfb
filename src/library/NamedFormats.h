#pragma once
// The named formats of Format, matched without regard to case: most stand for a pattern, the
// others are handled by the engine itself.
#include <string_view>

namespace brannoc {

enum class NamedFormatKind { kPattern, kGeneralNumber, kYesNo, kTrueFalse, kOnOff, kUnsupported };

struct NamedFormat {
    std::wstring_view name;
    NamedFormatKind kind;
    std::wstring_view pattern; // for kPattern
};

// The named format that form names, or null.
const NamedFormat* FindNamedFormat(std::wstring_view form);

} // namespace brannoc
