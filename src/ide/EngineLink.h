#pragma once
// Small pieces of the frame's link with its engine object: texts the engine hands back, the names the
// frame gives it for sheets, and the line numbers it counts in whole module texts.
#include <windows.h>
#include <oleauto.h>

#include <string>
#include <string_view>

namespace brannoc::ide {

struct Sheet;

// The text of a string the engine's exported functions returned (their strings hold the frame's code
// page, byte for byte); the string is freed.
std::string TakeEngineText(BSTR text);
// The text in the frame's code page / as the engine's wide text.
std::string NarrowText(std::wstring_view text);
std::wstring WideText(std::string_view text);

// The name the engine knows a sheet's macro by: its sheet name in double quotes.
std::string EngineName(const Sheet& sheet);
// A name without its surrounding double quotes, if it has them.
std::string Unquoted(std::string name);

// The engine numbers the lines of the whole module text from 1; the text area shows only the code,
// from line 0. These convert between the two for a sheet.
int AbsoluteLine(const Sheet& sheet, int codeLine);
int CodeLine(const Sheet& sheet, int absoluteLine);

} // namespace brannoc::ide
