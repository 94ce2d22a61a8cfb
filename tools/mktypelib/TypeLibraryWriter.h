#pragma once
// Builds a type library file through ICreateTypeLib2, from member tables.
#include <windows.h>
#include <oaidl.h>
#include <string>
#include <vector>

namespace mktypelib {

// Automation types a member can use. Ptr* are by-reference (pointer) forms.
// VariantArray is a SAFEARRAY of VARIANTs passed by pointer (the last parameter of a vararg member).
enum class Type {
    Void, Bool, Short, Long, Double, Bstr, Dispatch, Unknown, Variant, VariantPtr, LongPtr,
    Float, Currency, Date, Byte, VariantArray,
};

enum class Kind { Method, Get, Put };

struct Param {
    const wchar_t* name;
    Type type;
    bool optional = false;
    // A default value (a Long) the description gives an optional parameter.
    bool hasDefault = false;
    long defaultValue = 0;
};

struct Member {
    const wchar_t* name;
    Kind kind;
    DISPID id;
    std::vector<Param> params;   // input parameters; a put's value is the last one
    Type result = Type::Void;    // out-parameter (retval) of a get or method
    const wchar_t* help = nullptr;
    bool restricted = false;
    // The last parameter takes any number of arguments (a VariantArray).
    bool varArgs = false;
};

struct Constant {
    const wchar_t* name;
    long value;
    const wchar_t* text = nullptr;   // string constants (in a module) use this instead of value
};

class TypeLibraryWriter {
public:
    TypeLibraryWriter() = default;
    ~TypeLibraryWriter();
    TypeLibraryWriter(const TypeLibraryWriter&) = delete;
    TypeLibraryWriter& operator=(const TypeLibraryWriter&) = delete;

    bool Create(const wchar_t* path, const GUID& id, const wchar_t* name, const wchar_t* help,
                WORD major, WORD minor, LCID lcid);
    // A dual interface derived from IDispatch; its members become the vtable after IDispatch's.
    ITypeInfo* AddDualInterface(const wchar_t* name, const GUID& id, const wchar_t* help,
                                const std::vector<Member>& members);
    // A dispinterface with the given members.
    ITypeInfo* AddDispInterface(const wchar_t* name, const GUID& id, const wchar_t* help,
                                const std::vector<Member>& members);
    bool AddCoClass(const wchar_t* name, const GUID& id, const wchar_t* help, ITypeInfo* defaultInterface,
                    bool canCreate);
    bool AddEnum(const wchar_t* name, const GUID* id, const std::vector<Constant>& values);
    bool AddModule(const wchar_t* name, const wchar_t* dllName, const std::vector<Constant>& values);
    bool Save();

    const std::wstring& LastError() const { return m_error; }

private:
    // An interface (dual) or dispinterface over IDispatch with the given members.
    ITypeInfo* AddDispatchBased(const wchar_t* name, TYPEKIND kind, const GUID& id, const wchar_t* help,
                                const std::vector<Member>& members);
    ICreateTypeInfo* NewTypeInfo(const wchar_t* name, TYPEKIND kind, const GUID* id, const wchar_t* help);
    bool AddFunctions(ICreateTypeInfo* info, const std::vector<Member>& members, bool dispatchOnly);
    bool Fail(const wchar_t* what, HRESULT hr);

    ICreateTypeLib2* m_lib = nullptr;
    ITypeLib* m_stdole = nullptr;
    std::vector<ITypeInfo*> m_infos;   // kept until the library is saved
    std::wstring m_error;
};

} // namespace mktypelib
