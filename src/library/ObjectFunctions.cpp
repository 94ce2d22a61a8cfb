// Built-ins that reach automation objects: CreateObject, GetObject and CallByName.
#include "library/BuiltinGroups.h"

#include "automation/DispatchCall.h"
#include "automation/ObjectCreation.h"
#include "library/BuiltinArguments.h"
#include "values/ValueError.h"

#include <string>
#include <vector>

namespace brannoc {

namespace {

// CallByName's call types (vbMethod, vbGet, vbLet, vbSet).
enum CallType : LONG { kCallMethod = 1, kCallGet = 2, kCallLet = 4, kCallSet = 8 };

bool OptionalText(BuiltinArguments& arguments, int index, std::wstring& text, bool& given)
{
    given = arguments.IsGiven(index);
    if (!given)
        return true;
    std::wstring_view view;
    if (!arguments.String(index, view))
        return false;
    text.assign(view);
    return true;
}

void SetObjectResult(BuiltinResult& result, ComRef<IDispatch>& object)
{
    Variant made;
    made.SetObject(object.Detach(), false);
    result.SetVariant(std::move(made));
}

// CreateObject(Class): a new object of the class named by a ProgID or a class identifier.
bool CreateObject(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view name;
    if (!arguments.String(0, name))
        return false;
    ComRef<IDispatch> object;
    if (!automation::CreateNamedObject(std::wstring(name), object))
        return false;
    SetObjectResult(result, object);
    return true;
}

// GetObject([File], [Class]): the running object of a class, an object bound from a file name, or a
// new object that loads a file.
bool GetObject(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring file;
    std::wstring className;
    bool hasFile = false;
    bool hasClass = false;
    if (!OptionalText(arguments, 0, file, hasFile) || !OptionalText(arguments, 1, className, hasClass))
        return false;
    ComRef<IDispatch> object;
    if (!automation::FindObject(hasFile ? &file : nullptr, hasClass ? &className : nullptr, object))
        return false;
    SetObjectResult(result, object);
    return true;
}

// The IDispatch of an object argument; false after raising 10094 for Nothing, 10080 for a value that is
// no object.
bool DispatchArgument(BuiltinArguments& arguments, int index, ComRef<IDispatch>& dispatch)
{
    const Variant* value = nullptr;
    if (!arguments.Value(index, value))
        return false;
    const VARIANT& raw = *FollowByRefChain(&value->Raw());
    // An Object variable arrives by reference to its storage.
    const VARTYPE tag = raw.vt & ~VT_BYREF;
    if (raw.vt == VT_EMPTY)
        return RaiseValueError(kErrorObjectIsNothing);
    if (tag != VT_DISPATCH && tag != VT_UNKNOWN)
        return RaiseValueError(kErrorTypeMismatch);
    IUnknown* unknown = (raw.vt & VT_BYREF) ? (raw.ppunkVal ? *raw.ppunkVal : nullptr) : raw.punkVal;
    if (!unknown)
        return RaiseValueError(kErrorObjectIsNothing);
    if (tag == VT_DISPATCH) {
        dispatch = ComRef<IDispatch>::Share(static_cast<IDispatch*>(unknown));
        return true;
    }
    if (FAILED(unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch.Out()))))
        return RaiseValueError(kErrorAutomation);
    return true;
}

// CallByName(Object, ProcName, CallType, Args...): the member named at run time, called as a method,
// read, or assigned (the last argument is the value of a let or set).
bool CallByName(BuiltinArguments& arguments, BuiltinResult& result)
{
    ComRef<IDispatch> object;
    if (!DispatchArgument(arguments, 0, object))
        return false;
    std::wstring_view name;
    LONG callType = 0;
    if (!arguments.String(1, name) || !arguments.Long(2, callType))
        return false;
    MemberAccess access = MemberAccess::Get;
    switch (callType) {
    case kCallMethod:
    case kCallGet: access = MemberAccess::Get; break;
    case kCallLet: access = MemberAccess::Let; break;
    case kCallSet: access = MemberAccess::Set; break;
    default: return RaiseValueError(kErrorInvalidArgument);
    }
    std::vector<Variant> values(static_cast<std::size_t>(arguments.Count() > 3 ? arguments.Count() - 3 : 0));
    for (int i = 3; i < arguments.Count(); ++i) {
        const Variant* value = nullptr;
        if (!arguments.Value(i, value))
            return false;
        if (!values[static_cast<std::size_t>(i - 3)].CopyIndirectFrom(value->Raw()))
            return RaiseValueError(kErrorOutOfMemory);
    }
    if (access != MemberAccess::Get && values.empty())
        return RaiseValueError(kErrorInvalidArgument);
    // Variant holds one VARIANT, so the vector's storage is the argument array Invoke reads.
    static_assert(sizeof(Variant) == sizeof(VARIANT));
    automation::DispatchArguments call;
    call.values = values.empty() ? nullptr : &values.front().Raw();
    call.count = static_cast<int>(values.size());
    Variant value;
    if (!automation::InvokeMember(object.Get(), std::wstring(name), access, call, value))
        return false;
    result.SetVariant(std::move(value));
    return true;
}

constexpr BuiltinRecord kRecords[] = {
    Function(Token::CreateObject, ResultKind::kVariant, "$", "Class", 0, 0, &CreateObject),
    Function(Token::GetObjectFunction, ResultKind::kVariant, "$$", "PathName Class", 0, 0b11, &GetObject),
    Function(Token::CallByName, ResultKind::kVariant, "?$&?", "Object ProcName CallType Args", kBuiltinAnyCount,
             0b1000, &CallByName),
};

} // namespace

BuiltinGroup ObjectFunctions() { return kRecords; }

} // namespace brannoc
