#include "automation/ExtensionList.h"

#include "frontend/CharClasses.h"
#include "frontend/ReachedNames.h"
#include "host/AnsiText.h"
#include "values/Variant.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace brannoc::automation {
namespace {

// Every call the engine makes on an object passes the United States locale.
constexpr LCID kLocale = 0x409;

constexpr short kTraceEntry = 0;
constexpr short kTraceExit = 1;
constexpr short kTraceDetail = 2;
constexpr short kTraceResult = 3;
constexpr short kTraceEvent = 4;

std::wstring GuidText(const GUID& guid)
{
    wchar_t text[64] = {};
    if (StringFromGUID2(guid, text, 64) == 0)
        return L"{}";
    return text;
}

std::wstring PointerText(const void* pointer)
{
    wchar_t text[16];
    std::swprintf(text, 16, L"%08lX", static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(pointer)));
    return text;
}

GUID TypeGuid(ITypeInfo* type)
{
    GUID guid = GUID_NULL;
    TYPEATTR* attributes = nullptr;
    if (SUCCEEDED(type->GetTypeAttr(&attributes)) && attributes) {
        guid = attributes->guid;
        type->ReleaseTypeAttr(attributes);
    }
    return guid;
}

GUID LibraryGuid(ITypeLib* library)
{
    GUID guid = GUID_NULL;
    TLIBATTR* attributes = nullptr;
    if (SUCCEEDED(library->GetLibAttr(&attributes)) && attributes) {
        guid = attributes->guid;
        library->ReleaseTLibAttr(attributes);
    }
    return guid;
}

// The value of a constant of an enumeration or module of the library (of the one named typeName when
// it is not empty); false when it has none of that name.
bool FindLibraryConstant(ITypeLib* library, const std::string& name, long& value, std::string_view typeName = {})
{
    const std::wstring wanted = WideFromAnsi(name);
    const UINT count = library->GetTypeInfoCount();
    for (UINT i = 0; i < count; ++i) {
        ComRef<ITypeInfo> type;
        if (FAILED(library->GetTypeInfo(i, type.Out())))
            continue;
        if (!typeName.empty() && !SameName(AnsiFromWide(TypeName(type.Get())), typeName))
            continue;
        TYPEATTR* attributes = nullptr;
        if (FAILED(type->GetTypeAttr(&attributes)) || !attributes)
            continue;
        const bool holdsConstants = attributes->typekind == TKIND_ENUM || attributes->typekind == TKIND_MODULE;
        const WORD variables = attributes->cVars;
        type->ReleaseTypeAttr(attributes);
        if (!holdsConstants)
            continue;
        for (WORD v = 0; v < variables; ++v) {
            VARDESC* description = nullptr;
            if (FAILED(type->GetVarDesc(v, &description)) || !description)
                continue;
            bool found = false;
            if (description->varkind == VAR_CONST && description->lpvarValue) {
                Bstr memberName;
                if (SUCCEEDED(type->GetDocumentation(description->memid, memberName.Out(), nullptr, nullptr, nullptr)) &&
                    CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, memberName.View().data(),
                                   static_cast<int>(memberName.Length()), wanted.c_str(),
                                   static_cast<int>(wanted.size())) == CSTR_EQUAL) {
                    VARIANT converted;
                    VariantInit(&converted);
                    if (SUCCEEDED(VariantChangeType(&converted, description->lpvarValue, 0, VT_I4))) {
                        value = converted.lVal;
                        found = true;
                    }
                }
            }
            type->ReleaseVarDesc(description);
            if (found)
                return true;
        }
    }
    return false;
}

} // namespace

std::wstring TypeName(ITypeInfo* type)
{
    Bstr name;
    if (!type || FAILED(type->GetDocumentation(MEMBERID_NIL, name.Out(), nullptr, nullptr, nullptr)))
        return {};
    return std::wstring(name.View());
}

std::wstring TypeDescription(ITypeInfo* type) { return TypeName(type) + L" " + GuidText(TypeGuid(type)); }

std::wstring LibraryName(ITypeLib* library)
{
    Bstr name;
    if (!library || FAILED(library->GetDocumentation(-1, name.Out(), nullptr, nullptr, nullptr)))
        return {};
    return std::wstring(name.View());
}

bool ExtensionList::HasMember(ITypeInfo* type, const std::string& name)
{
    if (!type || name.empty())
        return false;
    std::wstring wide = WideFromAnsi(name);
    LPOLESTR names[] = {wide.data()};
    MEMBERID id = MEMBERID_NIL;
    return SUCCEEDED(type->GetIDsOfNames(names, 1, &id));
}

bool ExtensionList::Visible(const Extension& item, const std::string& module) const
{
    // System extensions serve every project; the others only their own project's modules.
    if (!(item.flags & kExtensionSystem) && !SameName(item.project, ProjectOfModuleName(module)))
        return false;
    return item.module.empty() || (!module.empty() && SameName(item.module, module));
}

void ExtensionList::TraceItem(const wchar_t* verb, const Extension& item) const
{
    if (!item.referencedProject.empty())
        return;
    const std::wstring name = WideFromAnsi(item.name);
    if (item.library) {
        Trace(kTraceEvent, std::wstring(verb) + L" Library '" + name + L"' TypeLib=" + LibraryName(item.library.Get()) +
                               L" " + GuidText(LibraryGuid(item.library.Get())));
        return;
    }
    const std::wstring shown = item.throughVariable ? L"!" + name : name.empty() ? WideFromAnsi(item.prefix) : name;
    Trace(kTraceEvent, std::wstring(verb) + L" Extension '" + shown + L"'" +
                           (item.type ? L" TypeInfo=" + TypeDescription(item.type.Get()) : std::wstring(L" No TypeInfo")));
    if ((item.flags & kExtensionDataType) && item.type)
        Trace(kTraceEvent, std::wstring(verb) + L" DataType '" + TypeName(item.type.Get()) + L"' TypeInfo=" +
                               TypeDescription(item.type.Get()));
}

bool ExtensionList::Finish(bool result, bool changed)
{
    if (changed)
        m_host.ExtensionsChanged();
    Trace(kTraceResult, result ? L"Result=True" : L"Result=False");
    Trace(kTraceExit, L"");
    return result;
}

bool ExtensionList::Add(const std::string& prefixText, IDispatch* object)
{
    ExtensionPrefix prefix = SplitPrefix(prefixText);
    if (prefix.hasModule)
        prefix.module = QualifiedModule(prefix);
    return AddParsed(prefixText, std::move(prefix), object, true);
}

bool ExtensionList::AddReferenceLine(const std::string& module, const std::string& line)
{
    ExtensionPrefix prefix = SplitPrefix(line);
    prefix.hasModule = true;
    prefix.module = module;
    return AddParsed(line, std::move(prefix), nullptr, false);
}

bool ExtensionList::AddParsed(const std::string& text, ExtensionPrefix prefix, IDispatch* object, bool fromHost)
{
    const wchar_t* operation = prefix.withEvents ? L"AddExtensionWithEvents" : object ? L"AddExtension" : L"AddReference";
    Trace(kTraceEntry, L"*" + std::wstring(operation) + L"(\"" + WideFromAnsi(text) + L"\")");
    Trace(kTraceDetail, L"ExtObj=" + PointerText(object));
    Extension item;
    item.project = prefix.hasModule ? std::string(ProjectOfModuleName(prefix.module)) : prefix.project;
    item.module = prefix.hasModule ? prefix.module : std::string();
    item.prefix = prefix.rest;
    const char first = prefix.rest.empty() ? '\0' : prefix.rest.front();
    if (!object && first != '{' && first != '!')
        return AddProjectReference(std::move(item), prefix);
    if (const std::string* creating = fromHost ? m_host.InstanceModuleBeingCreated() : nullptr) {
        // While the host makes its object for a new instance, only that module's extensions may come.
        if (!prefix.hasModule || !SameName(m_host.MapModuleName(prefix.module), *creating)) {
            Trace(kTraceDetail, L"Only module specific extension for the current NewInstance is allowed.");
            return Finish(false, false);
        }
    } else if (fromHost && prefix.hasModule && m_host.ModuleExists(prefix.module)) {
        Trace(kTraceDetail, L"Module specific extension not allowed for a module that already exists.");
        return Finish(false, false);
    }
    if (prefix.withEvents) {
        // The system and reference-line marks stay with the object and its library.
        item.flags = prefix.flags & (kExtensionSystem | kExtensionFromReferenceLine);
        return AddWithEvents(std::move(item), object);
    }
    ReadKind(prefix);
    item.flags = prefix.flags;
    if (prefix.variable) {
        if (prefix.rest.empty())
            return Finish(false, false);
        item.name = prefix.rest;
        item.throughVariable = true;
        m_items.push_back(std::move(item));
        TraceItem(L"Add", m_items.back());
        return Finish(true, true);
    }
    if (item.flags & kExtensionLibrary)
        return AddLibrary(std::move(item), prefix, object);
    return AddObject(std::move(item), object);
}

bool ExtensionList::AddLibrary(Extension item, const ExtensionPrefix& prefix, IDispatch* object)
{
    bool changed = false;
    const bool added = PutLibrary(std::move(item), prefix.rest, object, changed);
    return Finish(added, changed);
}

bool ExtensionList::PutLibrary(Extension item, const std::string& reference, IDispatch* object, bool& changed)
{
    changed = false;
    ComRef<ITypeLib> library;
    if (reference == "{}") {
        ComRef<ITypeInfo> type;
        UINT count = 0;
        UINT index = 0;
        if (object && SUCCEEDED(object->GetTypeInfoCount(&count)) && count > 0 &&
            SUCCEEDED(object->GetTypeInfo(0, kLocale, type.Out())) && type)
            (void)type->GetContainingTypeLib(library.Out(), &index);
    } else if (LibraryReference parsed; ParseLibraryReference(reference, parsed)) {
        if (FAILED(LoadRegTypeLib(parsed.guid, parsed.major, parsed.minor, parsed.locale, library.Out())))
            library = ComRef<ITypeLib>();
    }
    if (!library) {
        Trace(kTraceDetail, L"TypeLib not available");
        return false;
    }
    const GUID guid = LibraryGuid(library.Get());
    Trace(kTraceDetail, L"TypeLib.UUID=" + GuidText(guid));
    Trace(kTraceDetail, L"TypeLib.Name=" + LibraryName(library.Get()));
    for (const Extension& held : m_items) {
        // The same library for the same owner is there already.
        if (held.library && SameName(held.project, item.project) && SameName(held.module, item.module) &&
            IsEqualGUID(LibraryGuid(held.library.Get()), guid))
            return true;
    }
    item.name = AnsiFromWide(LibraryName(library.Get()));
    item.library = std::move(library);
    item.object = ComRef<IDispatch>::Share(object);
    m_items.push_back(std::move(item));
    TraceItem(L"Add", m_items.back());
    changed = true;
    return true;
}

bool ExtensionList::AddObject(Extension item, IDispatch* object)
{
    item.object = ComRef<IDispatch>::Share(object);
    UINT count = 0;
    if (SUCCEEDED(object->GetTypeInfoCount(&count)) && count > 0 &&
        FAILED(object->GetTypeInfo(0, kLocale, item.type.Out())))
        item.type = ComRef<ITypeInfo>();
    if (item.type) {
        Trace(kTraceDetail, L"TypeInfo.UUID=" + GuidText(TypeGuid(item.type.Get())));
        Trace(kTraceDetail, L"TypeInfo.Name=" + TypeName(item.type.Get()));
    } else {
        Trace(kTraceDetail, L"TypeInfo not available");
        if ((item.flags & (kExtensionMembers | kExtensionNamed | kExtensionDataType)) == kExtensionMembers)
            return Finish(false, false);
        item.flags &= ~static_cast<unsigned>(kExtensionMembers | kExtensionDataType);
    }
    std::string rest = item.prefix;
    if (!rest.empty() && std::string("*+-.=~").find(rest.front()) != std::string::npos)
        rest.erase(0, 1);
    if (item.flags & kExtensionNamed) {
        const ObjectName name = ReadObjectName(rest);
        item.name = name.name;
        item.onlyThroughName = name.onlyThroughName;
    }
    m_items.push_back(std::move(item));
    TraceItem(L"Add", m_items.back());
    return Finish(true, true);
}

// The object becomes a named object (the prefix's part before the first "_" names it) whose events go
// to the procedures named after the rest of the prefix (the name itself when the rest is empty).
bool ExtensionList::AddWithEvents(Extension item, IDispatch* object)
{
    if (!object)
        return Finish(false, false);
    // First the library that holds the object's type, as "{}" adds it (its types, enumerations and
    // constants), under the same owner and prefix so that both go together.
    Extension library;
    library.project = item.project;
    library.module = item.module;
    library.prefix = item.prefix;
    ExtensionPrefix libraryKind = SplitPrefix("{}");
    ReadKind(libraryKind);
    library.flags = (item.flags & (kExtensionSystem | kExtensionFromReferenceLine)) | libraryKind.flags;
    bool changed = false;
    if (!PutLibrary(std::move(library), "{}", object, changed))
        return Finish(false, changed);
    const std::size_t underscore = item.prefix.find('_');
    item.name = item.prefix.substr(0, underscore);
    const std::string rest = underscore == std::string::npos ? std::string() : item.prefix.substr(underscore + 1);
    const std::string procedurePrefix = rest.empty() ? item.name : rest;
    item.flags = (item.flags & (kExtensionSystem | kExtensionFromReferenceLine)) | kExtensionNamed;
    item.object = ComRef<IDispatch>::Share(object);
    UINT count = 0;
    if (SUCCEEDED(object->GetTypeInfoCount(&count)) && count > 0 &&
        FAILED(object->GetTypeInfo(0, kLocale, item.type.Out())))
        item.type = ComRef<ITypeInfo>();
    item.events = m_host.ConnectEvents(procedurePrefix, object);
    m_items.push_back(std::move(item));
    TraceItem(L"Add", m_items.back());
    return Finish(true, true);
}

void ExtensionList::CloseEvents(Extension& item)
{
    if (EventConnection* events = std::exchange(item.events, nullptr))
        events->Close();
}

ExtensionList::~ExtensionList()
{
    for (Extension& item : m_items)
        CloseEvents(item);
}

bool ExtensionList::Remove(const std::string& prefixText)
{
    ExtensionPrefix prefix = SplitPrefix(prefixText);
    std::string rest = prefix.rest;
    std::string module = prefix.hasModule && !prefix.module.empty() ? QualifiedModule(prefix) : std::string();
    bool forModule = !module.empty();
    if (!rest.empty() && rest.front() != '{' && !prefix.hasModule) {
        prefix.module = rest;
        module = QualifiedModule(prefix);
        forModule = true;
        rest.clear();
    }
    if (SameName(rest, "{Disconnect}")) {
        // The sinks stop delivering; extensions and the variables' objects stay.
        Trace(kTraceEntry, L"*Disconnect(\"" + WideFromAnsi(module) + L"\")");
        return Finish(m_host.DisconnectEvents() > 0, false);
    }
    const bool parsingProperties = m_host.ParsingModuleProperties();
    Trace(kTraceEntry, std::wstring(parsingProperties ? L"*RemoveReferences(\"" : L"*RemoveExtensionsAndReferences(\"") +
                           WideFromAnsi(module) + L"\",\"" + WideFromAnsi(rest) + L"\")");
    if (m_host.InstanceModuleBeingCreated()) {
        Trace(kTraceDetail, L"Extensions can't be removed during NewInstance.");
        return Finish(false, false);
    }
    std::vector<Extension> removed;
    auto take = [&](auto matches) {
        auto split = std::stable_partition(m_items.begin(), m_items.end(), [&](const Extension& item) { return !matches(item); });
        for (auto it = split; it != m_items.end(); ++it)
            removed.push_back(std::move(*it));
        m_items.erase(split, m_items.end());
    };
    const bool system = (prefix.flags & kExtensionSystem) != 0;
    if (!forModule) {
        // The project's: all of them (system extensions only when asked with "$") or those of that prefix.
        take([&](const Extension& item) {
            return item.module.empty() && ((item.flags & kExtensionSystem) != 0) == system &&
                   SameName(item.project, prefix.project) &&
                   (rest.empty() || SameName(item.prefix, rest));
        });
    } else if (m_host.ModuleExists(module)) {
        Trace(kTraceDetail, L"Module specific extensions can't be removed for a module that still exists.");
        return Finish(false, false);
    } else if (rest.empty()) {
        // While the host reads a form's header only the module's references go.
        take([&](const Extension& item) { return SameName(item.module, module) && !(parsingProperties && item.object); });
    } else if (rest == "{}") {
        take([&](const Extension& item) { return SameName(item.module, module) && item.library && item.object; });
    }
    for (Extension& item : removed) {
        TraceItem(L"Remove", item);
        CloseEvents(item);
    }
    return Finish(!removed.empty(), !removed.empty());
}

void ExtensionList::RemoveModule(const std::string& module, bool referencesOnly)
{
    bool changed = false;
    for (auto it = m_items.begin(); it != m_items.end();) {
        if (!it->module.empty() && SameName(it->module, module) &&
            (!referencesOnly || (it->flags & kExtensionFromReferenceLine))) {
            TraceItem(L"Remove", *it);
            CloseEvents(*it);
            it = m_items.erase(it);
            changed = true;
        } else {
            ++it;
        }
    }
    if (changed)
        m_host.ExtensionsChanged();
}

ExtensionName ExtensionList::Find(const std::string& module, const std::string& name) const
{
    ExtensionName found;
    // The module's own extensions come before the project's.
    std::vector<const Extension*> visible;
    for (const Extension& item : m_items)
        if (!item.module.empty() && Visible(item, module))
            visible.push_back(&item);
    for (const Extension& item : m_items)
        if (item.module.empty() && Visible(item, module))
            visible.push_back(&item);
    for (const Extension* item : visible) {
        if ((item->flags & kExtensionNamed) && item->object && !item->library && !item->name.empty() &&
            SameName(item->name, name)) {
            found.kind = ExtensionName::Kind::Object;
            found.object = item->object.Get();
            return found;
        }
    }
    for (const Extension* item : visible) {
        if ((item->flags & kExtensionMembers) && item->object && item->type && !item->onlyThroughName &&
            !item->library && HasMember(item->type.Get(), name)) {
            found.kind = ExtensionName::Kind::Member;
            found.object = item->object.Get();
            return found;
        }
    }
    for (const Extension* item : visible) {
        if (item->library && FindLibraryConstant(item->library.Get(), name, found.constant)) {
            found.kind = ExtensionName::Kind::Constant;
            return found;
        }
    }
    // "Library", "Library.Constant", "Library.Enumeration.Constant".
    const std::size_t dot = name.find('.');
    const std::string libraryPart = name.substr(0, dot);
    for (const Extension* item : visible) {
        if (!item->library || !SameName(AnsiFromWide(LibraryName(item->library.Get())), libraryPart))
            continue;
        if (dot == std::string::npos) {
            found.kind = ExtensionName::Kind::Library;
            return found;
        }
        std::string constant = name.substr(dot + 1);
        std::string typeName;
        if (const std::size_t second = constant.find('.'); second != std::string::npos) {
            typeName = constant.substr(0, second);
            constant.erase(0, second + 1);
        }
        if (FindLibraryConstant(item->library.Get(), constant, found.constant, typeName)) {
            found.kind = ExtensionName::Kind::Constant;
            return found;
        }
    }
    return found;
}

ITypeInfo* ExtensionList::FindType(const std::string& module, const std::string& name) const
{
    for (const Extension& item : m_items) {
        if (!Visible(item, module))
            continue;
        if (!item.library) {
            if ((item.flags & kExtensionDataType) && item.type && SameName(AnsiFromWide(TypeName(item.type.Get())), name))
                return item.type.Get();
            continue;
        }
        const std::string libraryName = AnsiFromWide(LibraryName(item.library.Get()));
        std::string_view typeName = name;
        if (typeName.size() > libraryName.size() + 1 && typeName[libraryName.size()] == '.' &&
            SameName(typeName.substr(0, libraryName.size()), libraryName))
            typeName.remove_prefix(libraryName.size() + 1);
        const UINT count = item.library->GetTypeInfoCount();
        for (UINT i = 0; i < count; ++i) {
            Bstr own;
            if (SUCCEEDED(item.library->GetDocumentation(static_cast<INT>(i), own.Out(), nullptr, nullptr, nullptr)) &&
                SameName(AnsiFromWide(own.View()), typeName)) {
                ITypeInfo* type = nullptr;
                if (SUCCEEDED(item.library->GetTypeInfo(i, &type)) && type) {
                    // The list keeps the library, which keeps its types.
                    type->Release();
                    return type;
                }
            }
        }
    }
    return nullptr;
}

bool ExtensionList::IsNameInUse(const std::string& name) const
{
    return std::any_of(m_items.begin(), m_items.end(), [&](const Extension& item) {
        return item.module.empty() && ((item.flags & kExtensionNamed) || item.library) && !item.name.empty() &&
               SameName(item.name, name);
    });
}

std::vector<std::string> ExtensionList::MemberVariables(const std::string& module) const
{
    std::vector<std::string> names;
    for (const Extension& item : m_items)
        if (item.throughVariable && Visible(item, module))
            names.push_back(item.name);
    return names;
}

std::vector<ExtensionTypeEntry> ExtensionList::Types(const std::string& module) const
{
    std::vector<ExtensionTypeEntry> entries;
    for (const Extension& item : m_items) {
        if (!Visible(item, module))
            continue;
        if (item.library) {
            const std::wstring libraryName = LibraryName(item.library.Get());
            const UINT count = item.library->GetTypeInfoCount();
            for (UINT i = 0; i < count; ++i) {
                ExtensionTypeEntry entry;
                if (FAILED(item.library->GetTypeInfo(i, entry.type.Out())))
                    continue;
                entry.name = libraryName + L"." + TypeName(entry.type.Get());
                entry.object = item.object;
                entries.push_back(std::move(entry));
            }
        } else if ((item.flags & kExtensionDataType) && item.type) {
            entries.push_back(ExtensionTypeEntry{item.type, TypeName(item.type.Get()), item.object});
        }
    }
    return entries;
}

bool IsEnumType(ITypeInfo* type)
{
    TYPEATTR* attributes = nullptr;
    if (!type || FAILED(type->GetTypeAttr(&attributes)) || !attributes)
        return false;
    const bool isEnum = attributes->typekind == TKIND_ENUM;
    type->ReleaseTypeAttr(attributes);
    return isEnum;
}

std::wstring CreatableClassId(ITypeInfo* type)
{
    TYPEATTR* attributes = nullptr;
    if (!type || FAILED(type->GetTypeAttr(&attributes)) || !attributes)
        return {};
    const bool creatable = attributes->typekind == TKIND_COCLASS && (attributes->wTypeFlags & TYPEFLAG_FCANCREATE);
    const GUID guid = attributes->guid;
    type->ReleaseTypeAttr(attributes);
    return creatable ? GuidText(guid) : std::wstring();
}

} // namespace brannoc::automation
