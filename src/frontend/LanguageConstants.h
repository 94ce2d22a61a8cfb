#pragma once
// The constants the language itself defines (vbLong, vbCrLf, vbYesNo, vbSunday ...), in the groups the
// type library publishes them in: enumerations of Long values and one module of mixed constants. The
// compiler resolves these names after the macro's own names, so a macro may still declare its own.
#include "frontend/ConstantValue.h"

#include <span>
#include <string_view>

namespace brannoc {

struct LanguageConstant {
    const wchar_t* name;
    long value;
    // A String constant has its text here instead of a value.
    const wchar_t* text = nullptr;
};

struct LanguageConstantGroup {
    const wchar_t* name;
    // True for the module of mixed constants; false for an enumeration of Long values.
    bool isModule;
    std::span<const LanguageConstant> constants;
};

// Every group, in the order the type library lists them.
std::span<const LanguageConstantGroup> LanguageConstantGroups();

// The value of the language constant of that name (compared without regard to case); false when there
// is none.
[[nodiscard]] bool FindLanguageConstant(std::string_view name, ConstantValue& value);

} // namespace brannoc
