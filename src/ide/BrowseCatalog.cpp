// The libraries, data types, named objects and members the object browser shows.
#include "ide/BrowseCatalog.h"

#include "ide/EditorFrameState.h"
#include "ide/EngineLink.h"
#include "ide/ReferenceList.h"
#include "values/Variant.h"

#include "brannoc.h"

#include <cstdlib>

namespace brannoc::ide {

namespace {

// "(extensions)": the library of extension types that no named type library contains.
constexpr unsigned IDS_EXTENSIONS = 592;

bool SameName(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, a.data(), static_cast<int>(a.size()),
                                                  b.data(), static_cast<int>(b.size())) == CSTR_EQUAL;
}

std::string LibraryNameOf(ITypeLib* library)
{
    Bstr name;
    if (FAILED(library->GetDocumentation(MEMBERID_NIL, name.Out(), nullptr, nullptr, nullptr)))
        return {};
    return NarrowText(name.View());
}

bool IsHiddenType(ITypeInfo* type, const std::string& name)
{
    TYPEATTR* attributes = nullptr;
    if (name.empty() || name.front() == '_' || FAILED(type->GetTypeAttr(&attributes)))
        return true;
    const bool hidden = (attributes->wTypeFlags & (TYPEFLAG_FHIDDEN | TYPEFLAG_FRESTRICTED)) != 0 ||
                        attributes->typekind == TKIND_ALIAS;
    type->ReleaseTypeAttr(attributes);
    return hidden;
}

std::vector<BrowseType> VisibleTypes(ITypeLib* library)
{
    std::vector<BrowseType> types;
    const UINT count = library->GetTypeInfoCount();
    for (UINT i = 0; i < count; ++i) {
        ComRef<ITypeInfo> type;
        if (FAILED(library->GetTypeInfo(i, type.Out())))
            continue;
        std::string name = TypeNameOf(type.Get());
        if (!IsHiddenType(type.Get(), name))
            types.push_back({std::move(name), std::move(type)});
    }
    return types;
}

// The name the engine gives an extension: its prefix without the "{WithEvents}" mark and the final ".".
std::string ObjectNameOfPrefix(std::string prefix)
{
    const std::string events = "{WithEvents}";
    if (prefix.compare(0, events.size(), events) == 0)
        prefix.erase(0, events.size());
    if (!prefix.empty() && prefix.back() == '.')
        prefix.pop_back();
    return prefix;
}

void AddExtensions(BrowseCatalog& catalog, const EditorFrame& frame, const std::string& extensionsName)
{
    if (!frame.m_engine)
        return;
    BrowseLibrary loose{extensionsName, {}};
    for (LONG index = 0;; ++index) {
        ComRef<IUnknown> found = ComRef<IUnknown>::Adopt(CU_ExtensionType(frame.m_engine, index));
        if (!found)
            break;
        ComRef<ITypeInfo> type;
        if (FAILED(found->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(type.Out()))))
            continue;
        const std::string objectName = ObjectNameOfPrefix(TakeEngineText(CU_ExtensionTypeName(frame.m_engine, index)));
        if (!objectName.empty())
            catalog.objects.push_back({objectName, type});
        ComRef<ITypeLib> library;
        UINT at = 0;
        if (SUCCEEDED(type->GetContainingTypeLib(library.Out(), &at)) && library && !LibraryNameOf(library.Get()).empty()) {
            AddLibrary(catalog, library.Get());
            continue;
        }
        std::string name = TypeNameOf(type.Get());
        if (!IsHiddenType(type.Get(), name))
            loose.types.push_back({std::move(name), type});
    }
    if (!loose.types.empty())
        catalog.libraries.push_back(std::move(loose));
}

ComRef<ITypeLib> LoadReference(const ReferenceEntry& entry)
{
    ComRef<ITypeLib> library;
    GUID id{};
    const std::wstring guid = WideText(entry.guid);
    if (!entry.guid.empty() && SUCCEEDED(CLSIDFromString(const_cast<LPOLESTR>(guid.c_str()), &id))) {
        const WORD major = static_cast<WORD>(std::strtoul(entry.version.c_str(), nullptr, 10));
        const size_t dot = entry.version.find('.');
        const WORD minor = dot == std::string::npos ? 0 : static_cast<WORD>(std::strtoul(entry.version.c_str() + dot + 1, nullptr, 10));
        const LCID locale = static_cast<LCID>(std::strtoul(entry.locale.c_str(), nullptr, 16));
        if (SUCCEEDED(LoadRegTypeLib(id, major, minor, locale, library.Out())))
            return library;
    }
    if (!entry.path.empty())
        LoadTypeLib(WideText(entry.path).c_str(), library.Out());
    return library;
}

void AddReferences(BrowseCatalog& catalog, const EditorFrame& frame)
{
    const Sheet* sheet = frame.Current();
    if (!sheet)
        return;
    const std::string& text = sheet->references;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        if (auto entry = ParseReferenceLine(std::string_view(text).substr(start, end - start))) {
            ComRef<ITypeLib> library = LoadReference(*entry);
            if (library)
                AddLibrary(catalog, library.Get());
        }
        start = end + 1;
    }
}

std::string ConstantValue(ITypeInfo* type, UINT variableIndex)
{
    VARDESC* variable = nullptr;
    if (FAILED(type->GetVarDesc(variableIndex, &variable)))
        return {};
    std::string text;
    if (variable->varkind == VAR_CONST && variable->lpvarValue) {
        Variant value;
        if (SUCCEEDED(VariantChangeTypeEx(&value.Raw(), variable->lpvarValue, 0x409, 0, VT_BSTR)))
            text = NarrowText(value.StringView());
        if (variable->lpvarValue->vt == VT_BSTR)
            text = "\"" + text + "\"";
    }
    type->ReleaseVarDesc(variable);
    return text;
}

bool IsConstant(ITypeInfo* type, UINT variableIndex)
{
    VARDESC* variable = nullptr;
    if (FAILED(type->GetVarDesc(variableIndex, &variable)))
        return false;
    const bool constant = variable->varkind == VAR_CONST;
    type->ReleaseVarDesc(variable);
    return constant;
}

} // namespace

bool BrowseCatalog::Empty() const
{
    for (const BrowseLibrary& library : libraries)
        if (!library.types.empty())
            return false;
    return true;
}

int BrowseCatalog::FindLibrary(std::string_view name) const
{
    for (size_t i = 0; i < libraries.size(); ++i)
        if (SameName(libraries[i].name, name))
            return static_cast<int>(i);
    return -1;
}

const BrowseType* BrowseCatalog::FindType(std::string_view name, int library) const
{
    for (size_t i = 0; i < libraries.size(); ++i) {
        if (library >= 0 && static_cast<int>(i) != library)
            continue;
        for (const BrowseType& type : libraries[i].types)
            if (SameName(type.name, name))
                return &type;
    }
    return nullptr;
}

const NamedObject* BrowseCatalog::FindObject(std::string_view name) const
{
    for (const NamedObject& object : objects)
        if (SameName(object.name, name))
            return &object;
    return nullptr;
}

void AddLibrary(BrowseCatalog& catalog, ITypeLib* library)
{
    std::string name = LibraryNameOf(library);
    if (catalog.FindLibrary(name) >= 0)
        return;
    catalog.libraries.push_back({std::move(name), VisibleTypes(library)});
}

BrowseCatalog CollectBrowseCatalog(const EditorFrame& frame)
{
    BrowseCatalog catalog;
    AddExtensions(catalog, frame, frame.Text(IDS_EXTENSIONS));
    AddReferences(catalog, frame);
    return catalog;
}

std::string TypeNameOf(ITypeInfo* type)
{
    Bstr name;
    if (!type || FAILED(type->GetDocumentation(MEMBERID_NIL, name.Out(), nullptr, nullptr, nullptr)))
        return {};
    return NarrowText(name.View());
}

namespace {

// The kind and flags of a type; false when the type cannot tell.
bool ReadKind(ITypeInfo* type, TYPEKIND& kind, WORD& flags)
{
    TYPEATTR* attributes = nullptr;
    if (!type || FAILED(type->GetTypeAttr(&attributes)))
        return false;
    kind = attributes->typekind;
    flags = attributes->wTypeFlags;
    type->ReleaseTypeAttr(attributes);
    return true;
}

} // namespace

bool IsEnumeration(ITypeInfo* type)
{
    TYPEKIND kind{};
    WORD flags = 0;
    return ReadKind(type, kind, flags) && kind == TKIND_ENUM;
}

bool IsCreatable(ITypeInfo* type)
{
    TYPEKIND kind{};
    WORD flags = 0;
    return ReadKind(type, kind, flags) && kind == TKIND_COCLASS && (flags & TYPEFLAG_FCANCREATE) != 0;
}

bool IsUsedUnqualified(ITypeInfo* type)
{
    TYPEKIND kind{};
    WORD flags = 0;
    if (!ReadKind(type, kind, flags))
        return false;
    return kind == TKIND_ENUM || kind == TKIND_MODULE || (kind == TKIND_COCLASS && (flags & TYPEFLAG_FAPPOBJECT) != 0);
}

bool FindGlobalMember(const BrowseCatalog& catalog, std::string_view name, MemberLine& found)
{
    for (const BrowseLibrary& library : catalog.libraries) {
        for (const BrowseType& type : library.types) {
            if (!IsUsedUnqualified(type.type.Get()))
                continue;
            for (MemberLine& member : ReadMembers(type.type.Get())) {
                if (SameName(member.name, name)) {
                    found = std::move(member);
                    return true;
                }
            }
        }
    }
    return false;
}

std::vector<MemberLine> ReadMembers(ITypeInfo* type)
{
    std::vector<MemberLine> members;
    ComRef<ITypeInfo> shown = ComRef<ITypeInfo>::Adopt(OA_GetDispatchType(type));
    TYPEATTR* attributes = nullptr;
    if (!shown || FAILED(shown->GetTypeAttr(&attributes)))
        return members;
    const LONG functions = attributes->cFuncs;
    shown->ReleaseTypeAttr(attributes);
    for (LONG index = 0;; ++index) {
        const std::string line = TakeEngineText(OA_GetTypeDescA(shown.Get(), index, 1));
        if (line.empty())
            break;
        const bool variable = index >= functions;
        const UINT variableIndex = static_cast<UINT>(index - functions);
        std::optional<MemberLine> member = ParseMemberLine(line, variable && IsConstant(shown.Get(), variableIndex));
        if (!member || IsHiddenMember(*member))
            continue;
        if (member->kind == MemberKind::Const)
            member->value = ConstantValue(shown.Get(), variableIndex);
        members.push_back(std::move(*member));
    }
    return JoinPropertyPairs(std::move(members));
}

} // namespace brannoc::ide
