#pragma once
// What a module's whole text is: its kind (macro, code, object or class module), the type word of
// an object module, and where its hidden header, reference lines and code lie.
#include "ide/ModuleText.h"

#include <string>
#include <string_view>

namespace brannoc::ide {

enum class SheetKind { Macro = 0, Code = 1, Object = 2, Class = 3 };

struct ModuleLayout {
    SheetKind kind = SheetKind::Macro;
    std::string objectType;      // object modules: the VERSION line's last word, or "Form"
    ModuleTextParts parts;       // hidden header, hidden references, shown code
    int versionOffset = -1;      // byte offset of the VERSION line, -1 without one
    int multiUseLine = -1;       // line (0-based, whole text) of "MultiUse" inside BEGIN ... END
    int firstAttributeLine = -1; // line (0-based, whole text) of the first "Attribute" line
};

ModuleLayout ReadModuleLayout(std::string_view wholeText);

// The new-sheet texts by kind; `typeWord` is the frame's object-module type word, `name` the display name.
std::string NewModuleText(SheetKind kind, std::string_view typeWord, std::string_view name);

} // namespace brannoc::ide
