// The content of the engine's type library: the engine object's dual interface, the callback, handler
// collection, Err object and language object interfaces, and the language's constant enumerations.
#include "EngineTypes.h"
#include "BuiltinMembers.h"
#include "../../include/brannoc.h"
#include "frontend/LanguageConstants.h"

#include <string_view>

namespace mktypelib {
namespace {

using T = Type;
using K = Kind;

// The engine object's members in interface order; a get/put property takes two consecutive slots.
std::vector<Member> CodeUnitMembers()
{
    const Param depth{L"Depth", T::Short};
    const Param index{L"Index", T::Short};
    const Param macroName{L"MacroName", T::Bstr};
    return {
        {L"CallBack", K::Get, 9, {}, T::Dispatch, L"Get the CallBack object"},
        {L"CallersLine", K::Get, 10, {depth}, T::Bstr, L"Get the caller's line text"},
        {L"Caption", K::Get, 0, {}, T::Bstr, L"Get/set the CodeUnit's caption"},
        {L"Caption", K::Put, 0, {{L"Caption", T::Bstr}}, T::Void, L"Get/set the CodeUnit's caption"},
        {L"CurrentLine", K::Get, 12, {}, T::Bstr, L"Get the current line text"},
        {L"DefaultCallBack", K::Get, 13, {}, T::Dispatch, L"Get the default CallBack object"},
        {L"DoEvents", K::Get, 14, {}, T::Bool, L"Get/set the enabling of DoEvents polling"},
        {L"DoEvents", K::Put, 14, {{L"DoEvents", T::Bool}}, T::Void, L"Get/set the enabling of DoEvents polling"},
        {L"ErrorDesc", K::Get, 15, {}, T::Bstr, L"Get/set the error description"},
        {L"ErrorDesc", K::Put, 15, {{L"ErrorDesc", T::Bstr}}, T::Void, L"Get/set the error description"},
        {L"ErrorLimit", K::Get, 16, {}, T::Short, L"Get/set the syntax error count limit"},
        {L"ErrorLimit", K::Put, 16, {{L"ErrorLimit", T::Short}}, T::Void, L"Get/set the syntax error count limit"},
        {L"ErrorLine", K::Get, 17, {}, T::Bstr, L"Get the error line text"},
        {L"ErrorLineNum", K::Get, 18, {}, T::Short, L"Get the error line number"},
        {L"ErrorMacroName", K::Get, 19, {}, T::Bstr, L"Get the error macro name"},
        {L"ErrorOffset", K::Get, 20, {}, T::Short, L"Get the error line offset"},
        {L"Evaluate", K::Get, 21, {{L"Expr", T::Bstr}, depth}, T::Bstr, L"Get/set the evaluated string"},
        {L"Evaluate", K::Put, 21, {{L"Expr", T::Bstr}, depth, {L"Value", T::Bstr}}, T::Void,
         L"Get/set the evaluated string"},
        {L"EvaluateObject", K::Get, 22, {{L"Expr", T::Bstr}, depth}, T::Dispatch, L"Get the evaluated string's object"},
        {L"Evaluating", K::Get, 23, {}, T::Bool, L"Get the evaluation mode"},
        {L"ExtensionType", K::Get, 24, {index}, T::Unknown, L"Get an extension type"},
        {L"ExtensionTypeName", K::Get, 25, {index}, T::Bstr, L"Get an extension type's name"},
        {L"Fire", K::Get, 26, {{L"Debugging", T::Bool}}, T::Dispatch, L"Get a fire control object"},
        {L"HelpFile", K::Get, 29, {}, T::Bstr, L"Get the language help file path"},
        {L"IsActive", K::Get, 30, {}, T::Bool, L"The CodeUnit becomes active when a macro is started"},
        {L"IsIdle", K::Get, 31, {}, T::Bool, L"The CodeUnit is idle when there are no macros loaded"},
        {L"IsPaused", K::Get, 32, {}, T::Bool, L"The macro is already executing, so the execution methods do nothing"},
        {L"IsStopped", K::Get, 33, {}, T::Bool,
         L"When the CodeUnit is stopped Continue makes the CodeUnit is active again"},
        {L"Keywords", K::Get, 34, {}, T::Bstr, L"Get the keywords (reserved...extended...builtin)"},
        {L"LineNum", K::Get, 35, {}, T::Short, L"Get/set the current line number"},
        {L"LineNum", K::Put, 35, {{L"LineNum", T::Short}}, T::Void, L"Get/set the current line number"},
        {L"MacroName", K::Get, 37, {}, T::Bstr, L"Get the current macro name"},
        {L"StackDepth", K::Get, 40, {}, T::Short, L"Get/set the current stack depth"},
        {L"StackDepth", K::Put, 40, {{L"StackDepth", T::Short}}, T::Void, L"Get/set the current stack depth"},
        {L"Version", K::Get, 46, {}, T::Bstr, L"Get the CodeUnit's version"},
        {L"AddExtension", K::Method, 1, {{L"Prefix", T::Bstr}, {L"ExtObj", T::Dispatch}}, T::Void,
         L"Add language extensions"},
        {L"Call0", K::Method, 3, {{L"SubName", T::Bstr}}, T::Bool, L"Call a sub"},
        {L"Call1", K::Method, 4, {{L"SubName", T::Bstr}, {L"Arg1", T::VariantPtr}}, T::Bool,
         L"Call a sub with one arg"},
        {L"Call2", K::Method, 5, {{L"SubName", T::Bstr}, {L"Arg1", T::VariantPtr}, {L"Arg2", T::VariantPtr}},
         T::Bool, L"Call a sub with two args"},
        {L"Call3", K::Method, 6,
         {{L"SubName", T::Bstr}, {L"Arg1", T::VariantPtr}, {L"Arg2", T::VariantPtr}, {L"Arg3", T::VariantPtr}},
         T::Bool, L"Call a sub with three args"},
        {L"Call4", K::Method, 7,
         {{L"SubName", T::Bstr}, {L"Arg1", T::VariantPtr}, {L"Arg2", T::VariantPtr}, {L"Arg3", T::VariantPtr},
          {L"Arg4", T::VariantPtr}},
         T::Bool, L"Call a sub with four args"},
        {L"Call5", K::Method, 8,
         {{L"SubName", T::Bstr}, {L"Arg1", T::VariantPtr}, {L"Arg2", T::VariantPtr}, {L"Arg3", T::VariantPtr},
          {L"Arg4", T::VariantPtr}, {L"Arg5", T::VariantPtr}},
         T::Bool, L"Call a sub with five args"},
        {L"Continue", K::Method, 11, {}, T::Bool, L"Continue execution"},
        {L"Halt", K::Method, 27, {}, T::Bool, L"Halt the current macro"},
        {L"HaltAll", K::Method, 28, {}, T::Bool, L"Halt all macros"},
        {L"Load", K::Method, 36, {macroName}, T::Bool, L"Load a macro for other macros to use"},
        {L"Run", K::Method, 38, {depth}, T::Bool, L"Run until stack depth is less than Depth"},
        {L"SetCallBack", K::Method, 39, {{L"CallBack", T::Dispatch}}, T::Void, L"Set the CallBack object"},
        {L"Start", K::Method, 41, {macroName}, T::Bool, L"Start a macro"},
        {L"Step", K::Method, 42, {}, T::Bool, L"Step one line in the current macro"},
        {L"Stop", K::Method, 43, {}, T::Bool, L"Stop the current macro"},
        {L"ToggleBreak", K::Method, 44, {macroName, {L"LineNum", T::Short}}, T::Bool, L"Toggle a break point"},
        {L"Unload", K::Method, 45, {macroName}, T::Bool, L"Unload a previously loaded macro"},
        {L"BlockedKeywords", K::Get, 47, {}, T::Bstr, L"Get/set the CodeUnit's blocked keywords"},
        {L"BlockedKeywords", K::Put, 47, {{L"BlockedKeywords", T::Bstr}}, T::Void,
         L"Get/set the CodeUnit's blocked keywords"},
        {L"LoadedMacroName", K::Get, 48, {index}, T::Bstr, L"Get a loaded/started macro name"},
        {L"CreateHandler", K::Method, 49, {{L"Prototype", T::Bstr}}, T::Dispatch, L"Create a handler control object"},
        {L"IsMacro", K::Get, 50, {macroName}, T::Bool, L"The macro has been started or loaded"},
        {L"Shutdown", K::Method, 51, {}, T::Bool, L"Shutdown the CodeUnit"},
        {L"RemoveExtensions", K::Method, 52, {{L"Prefix", T::Bstr}}, T::Bool,
         L"Remove macro specific language extensions"},
        {L"Prototypes", K::Get, 53, {{L"Prefix", T::Bstr}}, T::Bstr, L"Get the prototypes for a macro"},
        {L"Rename", K::Method, 54, {{L"OldMacroName", T::Bstr}, {L"NewMacroName", T::Bstr}}, T::Bool,
         L"Rename a macro"},
        {L"MacroKeywords", K::Get, 55, {macroName}, T::Bstr, L"Get the macro specific keywords"},
        {L"CreateHandlers", K::Method, 56, {{L"Prefix", T::Bstr}, {L"EventObj", T::Dispatch}}, T::Dispatch,
         L"Create a collection of handlers"},
        {L"IsMacroActive", K::Get, 57, {macroName}, T::Bool, L"The macro is currently executing"},
        {L"Macro", K::Method, 58, {macroName, {L"New", T::Bool}}, T::Dispatch, L"Get or create a macro object"},
        {L"BreakLineNum", K::Get, 59, {macroName, index}, T::Short, L"Get a break point linenum"},
        {L"AddExtensionEx", K::Method, 60, {{L"Prefix", T::Bstr}, {L"ExtObj", T::Dispatch}}, T::Bool,
         L"Add language extensions"},
        {L"ExtensionTypeEx", K::Get, 61, {{L"Macro", T::Bstr}, index}, T::Unknown, L"Get an extension type"},
        {L"ExtensionTypeNameEx", K::Get, 62, {{L"Macro", T::Bstr}, index}, T::Bstr, L"Get an extension type's name"},
        {L"ExtensionTypes", K::Get, 63, {{L"Macro", T::Bstr}, {L"Types", T::VariantPtr}}, T::Bstr,
         L"Get all extension types"},
        {L"ErrorNumber", K::Get, 64, {}, T::Long, L"Get the error number"},
        {L"ErrorSource", K::Get, 65, {}, T::Bstr, L"Get the error source"},
        {L"ErrorHelpFile", K::Get, 66, {}, T::Bstr, L"Get the error help file"},
        {L"ErrorHelpContext", K::Get, 67, {}, T::Long, L"Get the error help context"},
        {L"ProjectCreate", K::Method, 100, {{L"ProjectName", T::Bstr}}, T::Bool, L"Create a project"},
        {L"ProjectDestroy", K::Method, 101, {{L"ProjectName", T::Bstr}}, T::Bool, L"Destroy a project"},
        {L"IsProject", K::Get, 102, {{L"ProjectName", T::Bstr}}, T::Bool, L"The project has been created"},
    };
}

// The five members every host callback has.
std::vector<Member> CallBackMembers()
{
    const Param codeUnit{L"CodeUnit", T::Dispatch};
    return {
        {L"DebugPrint", K::Method, 0x60000000, {codeUnit, {L"Text", T::Bstr}}, T::Void, L"Debug.Print request"},
        {L"DoEvents", K::Method, 0x60000001, {codeUnit}, T::Void, L"DoEvents request"},
        {L"Notify", K::Method, 0x60000002, {codeUnit, {L"NotifyCode", T::Short}}, T::Void,
         L"Notification of CodeUnit status change"},
        {L"ReadMacro", K::Method, 0x60000003, {codeUnit, {L"MacroName", T::Bstr}}, T::Bstr, L"Read a macro request"},
        {L"Window", K::Get, 0x60000004, {}, T::Long, L"Get the active top-level window handle request"},
    };
}

std::vector<Member> HandlersMembers()
{
    return {
        {L"Count", K::Get, 1, {}, T::Short, L"Get the number of handlers"},
        {L"Item", K::Get, 0, {{L"Name", T::Bstr}}, T::Dispatch, L"Get a handler in the collection"},
        {L"_NewEnum", K::Get, -4, {}, T::Unknown, nullptr, true},
    };
}

std::vector<Member> ErrObjectMembers()
{
    const Param optionalValue{L"Source", T::Variant, true};
    return {
        {L"Number", K::Get, 0, {}, T::Long, L"Get/set the error number"},
        {L"Number", K::Put, 0, {{L"Number", T::Long}}, T::Void, L"Get/set the error number"},
        {L"Description", K::Get, 1, {}, T::Bstr, L"Get/set the error description"},
        {L"Description", K::Put, 1, {{L"Description", T::Bstr}}, T::Void, L"Get/set the error description"},
        {L"Source", K::Get, 2, {}, T::Bstr, L"Get/set the error source"},
        {L"Source", K::Put, 2, {{L"Source", T::Bstr}}, T::Void, L"Get/set the error source"},
        {L"HelpFile", K::Get, 3, {}, T::Bstr, L"Get/set the error help file"},
        {L"HelpFile", K::Put, 3, {{L"HelpFile", T::Bstr}}, T::Void, L"Get/set the error help file"},
        {L"HelpContext", K::Get, 4, {}, T::Long, L"Get/set the error help context"},
        {L"HelpContext", K::Put, 4, {{L"HelpContext", T::Long}}, T::Void, L"Get/set the error help context"},
        {L"LastDllError", K::Get, 5, {}, T::Long, L"Get the last DLL error"},
        {L"Raise", K::Method, 6,
         {{L"Number", T::Long}, optionalValue, {L"Description", T::Variant, true}, {L"HelpFile", T::Variant, true},
          {L"HelpContext", T::Variant, true}},
         T::Void, L"Raise an error"},
        {L"Clear", K::Method, 7, {}, T::Void, L"Clear the error"},
    };
}

// The language object's members: the about box and the built-in functions and instructions. The about
// box is also a built-in instruction; its description here (member 1, Timeout defaulting to 5 seconds)
// takes the place of the one the built-in table would give, as one interface cannot hold a name twice.
std::vector<Member> BasicObjectMembers()
{
    static constexpr wchar_t kAboutBox[] = L"AboutBrannocBasic";
    std::vector<Member> members = {
        {kAboutBox, K::Method, 1, {{L"Timeout", T::Variant, true, true, 5}}, T::Void, L"Show the about box"},
    };
    for (Member& member : BuiltinMembers()) {
        if (std::wstring_view(member.name) != kAboutBox)
            members.push_back(std::move(member));
    }
    return members;
}

// The language's constants, from the table the compiler resolves them with.
bool WriteEnums(TypeLibraryWriter& writer)
{
    for (const brannoc::LanguageConstantGroup& group : brannoc::LanguageConstantGroups()) {
        std::vector<Constant> values;
        for (const brannoc::LanguageConstant& constant : group.constants)
            values.push_back(Constant{constant.name, constant.value, constant.text});
        const bool written = group.isModule ? writer.AddModule(group.name, L"brannoc.dll", values)
                                            : writer.AddEnum(group.name, nullptr, values);
        if (!written)
            return false;
    }
    return true;
}

} // namespace

bool WriteEngineTypes(TypeLibraryWriter& writer)
{
    ITypeInfo* codeUnit =
        writer.AddDualInterface(L"_CodeUnit", IID__CodeUnit, L"CodeUnit Interface (dual)", CodeUnitMembers());
    if (!codeUnit || !writer.AddCoClass(L"CodeUnit", CLSID_CodeUnit, L"CodeUnit Class", codeUnit, true))
        return false;
    ITypeInfo* callBack = writer.AddDualInterface(L"_CallBack", IID__CallBack, L"CallBack Interface", CallBackMembers());
    if (!callBack ||
        !writer.AddDispInterface(L"CallBack", DIID_CallBack, L"CallBack Dispatch Interface", CallBackMembers()))
        return false;
    ITypeInfo* handlers =
        writer.AddDualInterface(L"_Handlers", IID__Handlers, L"Handlers Object Interface", HandlersMembers());
    if (!handlers || !writer.AddCoClass(L"Handlers", CLSID_Handlers, L"Handlers Object", handlers, false))
        return false;
    if (!writer.AddDualInterface(L"ErrObject", IID_ErrObject, L"Err Object Interface", ErrObjectMembers()))
        return false;
    ITypeInfo* basic =
        writer.AddDualInterface(L"_BasicObject", IID__BasicObject, L"Basic Interface", BasicObjectMembers());
    if (!basic || !writer.AddCoClass(L"KZB", CLSID_KZB, L"Brannoc Basic Language", basic, false))
        return false;
    return WriteEnums(writer);
}

} // namespace mktypelib
