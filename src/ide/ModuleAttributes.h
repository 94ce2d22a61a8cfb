#pragma once
// The module attributes the properties dialog edits in a sheet's hidden header: the VB_Name value
// and the instancing (the MultiUse line and the VB_Creatable, VB_Exposed and VB_GlobalNameSpace
// attributes).
#include <string>

namespace brannoc::ide {

enum Instancing : int {
    INSTANCING_PRIVATE = 1, INSTANCING_PUBLIC_NOT_CREATABLE = 2, INSTANCING_SINGLE_USE = 3,
    INSTANCING_GLOBAL_SINGLE_USE = 4, INSTANCING_MULTI_USE = 5, INSTANCING_GLOBAL_MULTI_USE = 6,
};

// The VB_Name value without its quotes (empty when the header has none).
std::string ReadVbName(const std::string& header);
// Replaces the value after "=" by the name in double quotes; answers false without a VB_Name line.
bool WriteVbName(std::string& header, const std::string& name);

int ReadInstancing(const std::string& header);
// Rewrites the MultiUse line and the three attributes (appending missing ones); answers the number
// of lines added to the header.
int WriteInstancing(std::string& header, int instancing);

// Removes the characters that cannot stand in an identifier at their place (the first must be a
// letter); `caret` is moved back by the characters removed before it.
std::string CleanIdentifier(const std::string& text, int& caret);

} // namespace brannoc::ide
