#include "code/TypeOfTest.h"

#include "exec/ErrorMessages.h"
#include "exec/Interpreter.h"
#include "exec/InterpreterHost.h"
#include "exec/ModuleInstance.h"
#include "frontend/Module.h"
#include "values/TextForm.h"
#include "values/ValueCell.h"

#include <windows.h>

#include <string>
#include <string_view>

namespace brannoc {

namespace {

bool SameText(std::wstring_view a, std::wstring_view b)
{
    return a.size() == b.size() &&
           CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, a.data(), static_cast<int>(a.size()), b.data(),
                          static_cast<int>(b.size())) == CSTR_EQUAL;
}

bool SameName(std::string_view narrow, std::wstring_view wide)
{
    return SameText(std::wstring(narrow.begin(), narrow.end()), wide);
}

// A module's class name: its VB_Name, else its file name without folder and extension.
std::string_view ClassNameOf(const Module& module)
{
    std::string_view name = module.RecordName();
    if (!name.empty())
        return name;
    name = module.Name();
    const std::size_t slash = name.find_last_of("/\\");
    if (slash != std::string_view::npos)
        name.remove_prefix(slash + 1);
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? name : name.substr(0, dot);
}

bool InstanceIsOfType(const ModuleInstance& instance, const Module* classModule, std::wstring_view type)
{
    const Module& module = instance.OwnModule();
    if (&module == classModule || SameName(ClassNameOf(module), type))
        return true;
    if (const CompiledModule* compiled = module.Compiled()) {
        for (const std::string& implemented : compiled->implements) {
            if (SameName(implemented, type))
                return true;
        }
    }
    return false;
}

// An automation object names its type through its type information; its interface name may carry the
// usual "_" or "I" before the class's name.
bool AutomationObjectIsOfType(IUnknown* object, std::wstring_view type)
{
    const std::wstring name = ObjectTypeName(object);
    if (SameText(name, type))
        return true;
    return name.size() == type.size() + 1 && (name[0] == L'_' || name[0] == L'I') &&
           SameText(std::wstring_view(name).substr(1), type);
}

} // namespace

bool ReplaceByTypeTest(const RunContext& context, const Module* classModule)
{
    ValueStack& values = context.interpreter->Values();
    const VARIANT& typeName = values.Top().Raw();
    std::wstring_view type(typeName.bstrVal ? typeName.bstrVal : L"", typeName.bstrVal ? SysStringLen(typeName.bstrVal) : 0);
    // "Lib.Type": the type's own name decides.
    if (const std::size_t dot = type.rfind(L'.'); dot != std::wstring_view::npos)
        type.remove_prefix(dot + 1);
    const VARIANT& tested = *FollowByRefChain(&values.At(values.Size() - 2).Raw());
    const VARTYPE tag = tested.vt & ~VT_BYREF;
    if (tag != VT_DISPATCH && tag != VT_UNKNOWN)
        return context.interpreter->SignalError(ToNumber(ErrorId::TypeMismatch));
    IUnknown* object = (tested.vt & VT_BYREF) ? (tested.ppunkVal ? *tested.ppunkVal : nullptr) : tested.punkVal;
    bool result = false;
    if (object) {
        if (SameText(type, L"Object"))
            result = true;
        else if (const ModuleInstance* instance = context.interpreter->Host().InstanceOf(object))
            result = InstanceIsOfType(*instance, classModule, type);
        else
            result = AutomationObjectIsOfType(object, type);
    }
    values.Pop();
    values.Top().SetBoolean(result);
    return true;
}

} // namespace brannoc
