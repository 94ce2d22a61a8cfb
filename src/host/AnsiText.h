#pragma once
// Conversions between the host's wide texts and the engine's ANSI texts (the process code page).
#include <string>
#include <string_view>

namespace brannoc {

std::wstring WideFromAnsi(std::string_view text);
std::string AnsiFromWide(std::wstring_view text);

} // namespace brannoc
