// Tests on values: IsArray, IsDate, IsEmpty, IsError, IsMissing, IsNull, IsNumeric and IsObject, and the
// kind of a value as a number (VarType) or a name (TypeName).
#include "library/BuiltinGroups.h"

#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "frontend/Module.h"
#include "library/BuiltinArguments.h"
#include "values/ComRef.h"
#include "values/Conversion.h"
#include "values/TextForm.h"
#include "values/ValueError.h"

#include <string>

namespace brannoc {

namespace {

template <bool (*kTest)(const Variant&)>
bool Test(BuiltinArguments& arguments, BuiltinResult& result)
{
    const Variant* value = nullptr;
    if (!arguments.Value(0, value))
        return false;
    result.SetBoolean(kTest(*value));
    return true;
}

// The tag without the by-reference flag, 8192 added for arrays.
bool VarType(BuiltinArguments& arguments, BuiltinResult& result)
{
    const Variant* value = nullptr;
    if (!arguments.Value(0, value))
        return false;
    result.SetInteger(static_cast<SHORT>(FollowByRefChain(&value->Raw())->vt & ~VT_BYREF));
    return true;
}

// The name of a module instance's module: its header name, else its file name without folder and
// extension.
std::wstring ModuleNameOf(const Module& module)
{
    std::string_view name = module.RecordName();
    if (name.empty()) {
        name = module.Name();
        const std::size_t slash = name.find_last_of("/\\");
        if (slash != std::string_view::npos)
            name.remove_prefix(slash + 1);
        const std::size_t dot = name.rfind('.');
        if (dot != std::string_view::npos)
            name = name.substr(0, dot);
    }
    return std::wstring(name.begin(), name.end());
}

// Module instances are named after their module.
bool EngineObjectName(IUnknown* object, std::wstring& name)
{
    Interpreter* interpreter = Interpreter::Current();
    ModuleInstance* instance = interpreter ? interpreter->Host().InstanceOf(object) : nullptr;
    if (!instance)
        return false;
    name = ModuleNameOf(instance->OwnModule());
    return true;
}

// The debugging display and TypeName name the engine's objects alike.
const ObjectNamer s_installedNamer = SetObjectNamer(&EngineObjectName);

// The name a record description gives; 10090 when it cannot be read.
bool RecordName(IRecordInfo* info, std::wstring& name)
{
    if (!info) {
        name = kUndescribedRecordName;
        return true;
    }
    Bstr text;
    if (FAILED(info->GetName(text.Out())))
        return RaiseValueError(kErrorAutomation);
    name.assign(text.View());
    return true;
}

bool TypeName(BuiltinArguments& arguments, BuiltinResult& result)
{
    const Variant* value = nullptr;
    if (!arguments.Value(0, value))
        return false;
    const VARIANT& raw = *FollowByRefChain(&value->Raw());
    const bool byReference = (raw.vt & VT_BYREF) != 0;
    const VARTYPE tag = raw.vt & VT_TYPEMASK;
    std::wstring name;
    if (raw.vt & VT_ARRAY) {
        SAFEARRAY* array = byReference ? (raw.pparray ? *raw.pparray : nullptr) : raw.parray;
        if (tag == VT_RECORD) {
            ComRef<IRecordInfo> info;
            if (array)
                SafeArrayGetRecordInfo(array, info.Out());
            if (!RecordName(info.Get(), name))
                return false;
        } else {
            name.assign(KindName(tag));
        }
        name += L"()";
    } else if (tag == VT_DISPATCH || tag == VT_UNKNOWN) {
        IUnknown* object = byReference ? (raw.ppunkVal ? *raw.ppunkVal : nullptr) : raw.punkVal;
        name = tag == VT_UNKNOWN ? std::wstring(L"Unknown") : ObjectTypeName(object);
    } else if (tag == VT_RECORD) {
        if (!RecordName(raw.pRecInfo, name))
            return false;
    } else {
        name.assign(KindName(tag));
    }
    return result.SetString(name);
}

constexpr std::uint8_t kPure = kBuiltinPure;

constexpr BuiltinRecord kRecords[] = {
    Function(Token::IsArray, ResultKind::kBoolean, "?", "Var", kPure, 0, &Test<&IsArray>),
    Function(Token::IsDate, ResultKind::kBoolean, "?", "Var", kPure, 0, &Test<&IsDate>),
    Function(Token::IsEmpty, ResultKind::kBoolean, "?", "Var", kPure, 0, &Test<&IsEmpty>),
    Function(Token::IsError, ResultKind::kBoolean, "?", "Var", kPure, 0, &Test<&IsError>),
    Function(Token::IsMissing, ResultKind::kBoolean, "?", "Var", kPure, 0, &Test<&IsMissing>),
    Function(Token::IsNull, ResultKind::kBoolean, "?", "Var", kPure, 0, &Test<&IsNull>),
    Function(Token::IsNumeric, ResultKind::kBoolean, "?", "Var", kPure, 0, &Test<&IsNumeric>),
    Function(Token::IsObject, ResultKind::kBoolean, "?", "Var", kPure, 0, &Test<&IsObject>),
    Function(Token::VarType, ResultKind::kInteger, "?", "Var", kPure, 0, &VarType),
    Function(Token::TypeName, ResultKind::kString, "?", "Var", kPure, 0, &TypeName),
};

} // namespace

BuiltinGroup ValueTestFunctions() { return kRecords; }

} // namespace brannoc
