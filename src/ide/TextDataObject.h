#pragma once
// The data object a text drag offers: the dragged text as CF_TEXT in global memory.
#include <windows.h>
#include <objidl.h>

#include <string>

namespace brannoc::ide {

// A data object holding `text` (one reference for the caller); null when out of memory.
IDataObject* CreateTextDataObject(std::string text);

// The CF_TEXT of a data object, line ends as the object gives them; false when it offers none.
bool ReadDataObjectText(IDataObject* data, std::string& text);

// The FORMATETC of CF_TEXT in global memory.
FORMATETC TextFormat();

} // namespace brannoc::ide
