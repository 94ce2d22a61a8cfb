#pragma once
// The prototype a host gives CreateHandler: an optional "<project>" part, an optional "module|" part
// and a procedure declaration ("Sub" or "Function", its name, parameters and result type), read into
// its parts and rewritten in canonical form.
#include <optional>
#include <string>

namespace brannoc {

// The "<project>" and "module|" parts that may stand in front of a prototype or a CreateHandlers prefix.
struct HandlerModule {
    std::string project;
    std::string module; // empty: not specific to a module
    std::string rest;   // what follows the two parts
    // text with the same project and module parts in front.
    std::string Qualify(const std::string& text) const;
};

// The parts split off text; nothing when a "<" is not closed or the module part is empty.
std::optional<HandlerModule> SplitHandlerModule(const std::string& text);

struct HandlerPrototype {
    std::string project;
    std::string module;    // empty: not specific to a module
    bool isFunction = false;
    std::string name;
    // "Public " or "Private " (module-specific), "Sub " or "Function ", the name, each parameter with
    // its ByVal, Optional and ParamArray words and " As " and its type, and a Function's result type.
    std::string canonical;
    // Parameters declared with the OLE_XPOS_... and OLE_YPOS_... type names (-1: none); events convert
    // the positions they carry.
    int xParameter = -1;
    int yParameter = -1;
    bool xInPixels = false;
    bool yInPixels = false;
};

// The prototype read from text; nothing when it does not parse, has more than 31 parameters, or uses a
// fixed-length string or a type other than the language's own and object class names.
std::optional<HandlerPrototype> ParseHandlerPrototype(const std::string& text);

} // namespace brannoc
