#include "exec/ErrObject.h"

#include "exec/HaltFlags.h"
#include "exec/Interpreter.h"
#include "values/Conversion.h"
#include "values/ValueError.h"
#include "values/Variant.h"

#include <cctype>

namespace brannoc {

namespace {

struct MemberName {
    const char* name;
    ErrMember member;
};

constexpr MemberName kMembers[] = {
    {"Number", ErrMember::Number},           {"Description", ErrMember::Description},
    {"Source", ErrMember::Source},           {"HelpFile", ErrMember::HelpFile},
    {"HelpContext", ErrMember::HelpContext}, {"LastDllError", ErrMember::LastDllError},
    {"Raise", ErrMember::Raise},             {"Clear", ErrMember::Clear},
};

bool SameText(std::string_view a, const char* b)
{
    std::size_t i = 0;
    for (; i < a.size() && b[i] != '\0'; ++i) {
        if (std::toupper(static_cast<unsigned char>(a[i])) != std::toupper(static_cast<unsigned char>(b[i])))
            return false;
    }
    return i == a.size() && b[i] == '\0';
}

// The value converted to tag (by-reference values followed); false after raising.
bool Converted(const Variant& value, VARTYPE tag, Variant& out)
{
    if (!out.CopyIndirectFrom(value.Raw()))
        return RaiseValueError(kErrorOutOfMemory);
    return out.Tag() == tag || ChangeType(out, tag);
}

// The text of a converted argument; a left-out one is empty.
std::wstring_view TextOf(const Variant& value)
{
    return value.Tag() == VT_BSTR ? value.StringView() : std::wstring_view();
}

} // namespace

bool FindErrMember(std::string_view name, ErrMember& member)
{
    for (const MemberName& entry : kMembers) {
        if (SameText(name, entry.name)) {
            member = entry.member;
            return true;
        }
    }
    return false;
}

bool ReadErrProperty(const ErrorRecord& error, ErrMember member, Variant& value)
{
    switch (member) {
    case ErrMember::Number: value.SetLong(error.number); return true;
    case ErrMember::HelpContext: value.SetLong(error.helpContext); return true;
    case ErrMember::LastDllError: value.SetLong(error.lastDllError); return true;
    case ErrMember::Description: return value.SetString(error.description) || RaiseValueError(kErrorOutOfMemory);
    case ErrMember::Source: return value.SetString(error.source) || RaiseValueError(kErrorOutOfMemory);
    case ErrMember::HelpFile: return value.SetString(error.helpFile) || RaiseValueError(kErrorOutOfMemory);
    default: return false;
    }
}

bool WriteErrProperty(Interpreter& interpreter, ErrMember member, const Variant& value)
{
    const bool isNumber = member == ErrMember::Number || member == ErrMember::HelpContext;
    Variant converted;
    if (!Converted(value, isNumber ? VT_I4 : VT_BSTR, converted))
        return false;
    switch (member) {
    case ErrMember::Number: {
        const ErrorRecord& error = interpreter.Error();
        // The other fields stay; the description becomes the new number's own.
        const std::wstring source = error.source;
        const std::wstring helpFile = error.helpFile;
        interpreter.SetErr(converted.Long(), {}, source, helpFile, error.helpContext);
        return true;
    }
    case ErrMember::HelpContext: interpreter.SetHelpContext(converted.Long()); return true;
    case ErrMember::Description: interpreter.SetDescription(converted.StringView()); return true;
    case ErrMember::Source: interpreter.SetSource(converted.StringView()); return true;
    case ErrMember::HelpFile: interpreter.SetHelpFile(converted.StringView()); return true;
    default: return false;
    }
}

bool RaiseFromErr(Interpreter& interpreter, Variant* arguments)
{
    Variant number;
    if (!Converted(arguments[0], VT_I4, number))
        return false;
    // Source, Description and HelpFile, in the order of the arguments.
    Variant texts[3];
    for (int i = 0; i < 3; ++i) {
        const Variant& argument = arguments[1 + i];
        if (!IsMissing(argument) && !Converted(argument, VT_BSTR, texts[i]))
            return false;
    }
    Variant context;
    context.SetLong(0);
    if (!IsMissing(arguments[4]) && !Converted(arguments[4], VT_I4, context))
        return false;
    if (number.Long() == 0)
        return true;
    return interpreter.RaiseRuntimeError(number.Long(), TextOf(texts[1]), TextOf(texts[0]), TextOf(texts[2]),
                                         context.Long());
}

} // namespace brannoc
