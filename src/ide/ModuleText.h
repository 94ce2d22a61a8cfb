#pragma once
// A module's whole text divided as the editor shows it: the hidden header (the attribute lines of a
// code module, the VERSION block and attributes of an object or class module, with any "'#Uses" lines
// before them), the hidden "'#Reference " lines after it, and the code the text area shows.
#include <string>
#include <string_view>

namespace brannoc::ide {

struct ModuleTextParts {
    std::string header;
    int headerLines = 0;
    std::string references;
    int referenceLines = 0;
    std::string code;
};

ModuleTextParts SplitModuleText(std::string_view text);

} // namespace brannoc::ide
