// Dotted paths resolved through libraries, data types, named objects and member result types.
#include "ide/BrowsePath.h"

#include <vector>

namespace brannoc::ide {

namespace {

std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t' || text.front() == '\r' || text.front() == '\n'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r' || text.back() == '\n'))
        text.remove_suffix(1);
    return text;
}

// A name of the path: blanks and an argument list in parentheses left out.
std::string NameOfPart(std::string_view part)
{
    part = Trimmed(part);
    const size_t open = part.find('(');
    return std::string(Trimmed(part.substr(0, open)));
}

std::vector<std::string> PathNames(std::string_view expression)
{
    std::vector<std::string> names;
    int depth = 0;
    size_t start = 0;
    for (size_t i = 0; i <= expression.size(); ++i) {
        const char c = i < expression.size() ? expression[i] : '.';
        if (c == '(')
            ++depth;
        else if (c == ')')
            --depth;
        else if (c == '.' && depth <= 0) {
            names.push_back(NameOfPart(expression.substr(start, i - start)));
            start = i + 1;
        }
    }
    return names;
}

std::string Joined(const std::string& path, const std::string& name) { return path.empty() ? name : path + "." + name; }

bool SameName(const std::string& a, const std::string& b) { return lstrcmpiA(a.c_str(), b.c_str()) == 0; }

// The type the member `name` of `type` leads to; null when there is none in the catalog.
const BrowseType* MemberResult(const BrowseCatalog& catalog, ITypeInfo* type, const std::string& name)
{
    for (const MemberLine& member : ReadMembers(type))
        if (SameName(member.name, name) && member.kind != MemberKind::Const)
            return catalog.FindType(member.type);
    return nullptr;
}

// The result type of a global member (a member of an application object, a module or an enumeration).
const BrowseType* GlobalMemberResult(const BrowseCatalog& catalog, const std::string& name)
{
    MemberLine member;
    if (!FindGlobalMember(catalog, name, member) || member.kind == MemberKind::Const)
        return nullptr;
    return ResolveTypeName(catalog, member.type);
}

} // namespace

std::string TrimmedPath(std::string_view expression) { return std::string(Trimmed(expression)); }

const BrowseType* ResolveTypeName(const BrowseCatalog& catalog, std::string_view typeName)
{
    const std::string name = TrimmedPath(typeName);
    const size_t dot = name.find('.');
    if (dot == std::string::npos)
        return catalog.FindType(name);
    const int library = catalog.FindLibrary(name.substr(0, dot));
    return library < 0 ? nullptr : catalog.FindType(name.substr(dot + 1), library);
}

BrowsePlace ResolvePath(const BrowseCatalog& catalog, std::string_view expression, const DeclaredTypeLookup& declared)
{
    BrowsePlace found;
    if (Trimmed(expression).empty())
        return found;
    int library = -1;
    std::string path;
    for (const std::string& name : PathNames(expression)) {
        if (name.empty())
            return found;
        const BrowseType* type = nullptr;
        std::string declaredType;
        if (found.type) {
            type = MemberResult(catalog, found.type.Get(), name);
        } else if (library < 0 && path.empty() && catalog.FindLibrary(name) >= 0) {
            library = catalog.FindLibrary(name);
            path = name;
            found.library = library;
            continue;
        } else if (library < 0 && declared && !(declaredType = declared(name)).empty()) {
            type = ResolveTypeName(catalog, declaredType); // null for String, a user type and the like
        } else if ((type = catalog.FindType(name, library)) == nullptr && library < 0) {
            if (const NamedObject* object = catalog.FindObject(name)) {
                path = Joined(path, name);
                found = {object->type, path};
                continue;
            }
            type = GlobalMemberResult(catalog, name);
        }
        if (!type)
            return found;
        path = Joined(path, name);
        found = {type->type, path};
    }
    found.whole = true;
    return found;
}

BrowsePlace DefaultPlace(const BrowseCatalog& catalog)
{
    for (const BrowseLibrary& library : catalog.libraries)
        if (!library.types.empty())
            return {library.types.front().type, {}};
    return {};
}

} // namespace brannoc::ide
