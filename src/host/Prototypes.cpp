#include "host/Prototypes.h"

#include "frontend/Module.h"

namespace brannoc {
namespace {

// The procedure's header: its first line and the lines it continues onto.
std::string HeaderOf(const Procedure& procedure)
{
    std::string header;
    std::size_t position = 0;
    const std::string& text = procedure.text;
    while (position < text.size()) {
        std::size_t end = text.find_first_of("\r\n", position);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(position, end - position);
        const bool continued = line.size() >= 2 && line.compare(line.size() - 2, 2, " _") == 0;
        header += continued ? line.substr(0, line.size() - 1) : line;
        if (!continued)
            break;
        position = text.find('\n', end);
        position = position == std::string::npos ? text.size() : position + 1;
    }
    if (!procedure.headerComment.empty()) {
        const std::size_t comment = header.rfind(procedure.headerComment);
        if (comment != std::string::npos)
            header.erase(comment);
        const std::size_t apostrophe = header.find_last_of('\'');
        if (apostrophe != std::string::npos && header.find_first_not_of(" \t", apostrophe + 1) == std::string::npos)
            header.erase(apostrophe);
    }
    const std::size_t first = header.find_first_not_of(" \t");
    const std::size_t last = header.find_last_not_of(" \t");
    return first == std::string::npos ? std::string() : header.substr(first, last - first + 1);
}

} // namespace

std::string PrototypeList(const Module& module)
{
    std::string list;
    const CompiledModule* compiled = module.Compiled();
    if (!compiled)
        return list;
    for (const auto& procedure : compiled->procedures) {
        const std::string header = HeaderOf(*procedure);
        if (!header.empty())
            list += header + "\r\n";
    }
    return list;
}

} // namespace brannoc
