#include "code/ExternalCall.h"

#include "automation/OutsideCall.h"
#include "exec/Interpreter.h"
#include "frontend/Symbols.h"
#include "host/AnsiText.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

// Calls entry with `count` 32-bit words as its arguments (words[0] first) and gives back what the
// function left in edx:eax, or in the floating-point register for the second name. The stack pointer
// is restored from the frame, so both calling conventions (the callee or the caller removing the
// arguments) come back right.
extern "C" std::uint64_t brannoc_call_words(void* entry, const std::uint32_t* words, std::uint32_t count);
extern "C" double brannoc_call_words_real(void* entry, const std::uint32_t* words, std::uint32_t count);

asm(R"(
    .text
    .globl _brannoc_call_words
    .globl _brannoc_call_words_real
_brannoc_call_words:
_brannoc_call_words_real:
    pushl %ebp
    movl %esp, %ebp
    pushl %esi
    movl 12(%ebp), %esi
    movl 16(%ebp), %ecx
1:  testl %ecx, %ecx
    jz 2f
    pushl -4(%esi,%ecx,4)
    decl %ecx
    jmp 1b
2:  call *8(%ebp)
    leal -4(%ebp), %esp
    popl %esi
    popl %ebp
    ret
)");

namespace brannoc {
namespace {

// Loads the library by its name, then with ".DLL" added.
HMODULE LoadNamedLibrary(const std::string& name)
{
    HMODULE library = LoadLibraryA(name.c_str());
    if (!library)
        library = LoadLibraryA((name + ".DLL").c_str());
    return library;
}

// Binds procedure to its entry: an alias "#n" names an ordinal, "UNICODE:name" a wide-text entry;
// otherwise the name as written (ANSI text), then with "W" (wide text), then with "A" (ANSI).
bool Bind(Procedure& procedure)
{
    HMODULE library = LoadNamedLibrary(procedure.library);
    if (!library)
        return RaiseValueError(kErrorModuleNotLoaded);
    std::string entryName = procedure.alias.empty() ? procedure.name : procedure.alias;
    FARPROC entry = nullptr;
    bool wide = false;
    static constexpr char kUnicodePrefix[] = "UNICODE:";
    constexpr std::size_t kPrefixLength = sizeof kUnicodePrefix - 1;
    if (!procedure.alias.empty() && procedure.alias[0] == '#') {
        char* end = nullptr;
        const unsigned long ordinal = std::strtoul(procedure.alias.c_str() + 1, &end, 10);
        if (ordinal > 0 && ordinal <= 0xFFFF && end && *end == '\0')
            entry = GetProcAddress(library, MAKEINTRESOURCEA(ordinal));
    } else if (procedure.alias.size() >= kPrefixLength &&
               CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, procedure.alias.c_str(), static_cast<int>(kPrefixLength),
                              kUnicodePrefix, static_cast<int>(kPrefixLength)) == CSTR_EQUAL) {
        entryName = procedure.alias.size() > kPrefixLength ? procedure.alias.substr(kPrefixLength) : procedure.name;
        entry = GetProcAddress(library, entryName.c_str());
        wide = true;
    } else {
        entry = GetProcAddress(library, entryName.c_str());
        if (!entry) {
            entry = GetProcAddress(library, (entryName + "W").c_str());
            wide = entry != nullptr;
        }
        if (!entry)
            entry = GetProcAddress(library, (entryName + "A").c_str());
    }
    if (!entry) {
        FreeLibrary(library);
        return RaiseValueError(kErrorFunctionNotFound);
    }
    procedure.binding.Bind(library, reinterpret_cast<void*>(entry), wide);
    return true;
}

// A string handed to the function as text it may write into, and the variable it goes back to.
struct TextBuffer {
    std::string ansi;
    std::wstring wide;
    void* pointer = nullptr;  // the cell a by-reference string parameter points at
    BSTR* variable = nullptr; // the macro's string, given the buffer's text after the call
    UINT length = 0;
};

// The argument words of one call with the storage they point into.
class ExternalArguments final {
public:
    explicit ExternalArguments(bool wideStrings) : m_wide(wideStrings) {}

    const std::vector<std::uint32_t>& Words() const { return m_words; }

    // Adds the argument `value` for `parameter`. False after raising.
    bool Add(const Parameter& parameter, Variant& value)
    {
        const TypeCode type = parameter.type.code;
        VARIANT& given = value.Raw();
        VARIANT* target = FollowByRefChain(&given);
        const bool reference = (given.vt & VT_BYREF) != 0;
        if (type.IsArray())
            return (target->vt & VT_ARRAY) && (target->vt & VT_BYREF) ? Push(target->pparray)
                                                                      : RaiseValueError(kErrorTypeMismatch);
        if (type.IsUserType() || (target->vt & ~VT_BYREF) == VT_RECORD)
            return target->vt == (VT_BYREF | VT_RECORD) || target->vt == VT_RECORD ? Push(target->pvRecord)
                                                                                    : RaiseValueError(kErrorTypeMismatch);
        if (type.IsString() || type.IsFixedString() ||
            (type.Code() == TypeCode::kUnknown && (target->vt & ~VT_BYREF) == VT_BSTR))
            return AddText(*target, reference, !parameter.byVal && type.Code() != TypeCode::kUnknown);
        if (type.IsVariant())
            return parameter.byVal ? AddVariantValue(*target) : Push(OwnVariant(*target, reference));
        if (type.IsObject() || (type.Code() == TypeCode::kUnknown && IsObjectTag(target->vt)))
            return AddObject(*target, parameter.byVal);
        if (type.Code() == TypeCode::kUnknown)
            return parameter.byVal ? AddNumber(*target, NumberTagOf(*target)) : AddAnyReference(*target, reference);
        const VARTYPE tag = static_cast<VARTYPE>(type.ValueTag());
        if (parameter.byVal)
            return AddNumber(*target, tag);
        if (target->vt == (VT_BYREF | tag))
            return Push(target->byref);
        // Another kind, or an expression: a converted copy, put back into a Variant variable afterwards.
        Variant& copy = Temporary();
        if (!copy.CopyIndirectFrom(*target))
            return RaiseValueError(kErrorAutomation);
        if (!ChangeType(copy, tag))
            return false;
        if (reference && !(target->vt & VT_BYREF))
            m_variantWrites.push_back({target, &copy});
        return Push(&copy.Raw().lVal);
    }

    // Gives the macro's variables what the function wrote into the copies they were passed as.
    bool WriteBack()
    {
        for (TextBuffer& buffer : m_texts) {
            if (!buffer.variable)
                continue;
            std::wstring text = m_wide ? buffer.wide : WideFromAnsi(buffer.ansi);
            // The variable keeps its length: the function filled the buffer it was given.
            text.resize(buffer.length, L'\0');
            Bstr updated;
            if (!updated.Assign(text))
                return RaiseValueError(kErrorOutOfMemory);
            Bstr previous;
            previous.Attach(*buffer.variable);
            *buffer.variable = updated.Detach();
        }
        for (const VariantWrite& write : m_variantWrites) {
            Variant holder;
            holder.Attach(*write.target);
            const bool copied = holder.CopyFrom(write.value->Raw());
            holder.Detach(*write.target);
            if (!copied)
                return RaiseValueError(kErrorAutomation);
        }
        return true;
    }

private:
    struct VariantWrite {
        VARIANT* target;
        Variant* value;
    };

    static bool IsObjectTag(VARTYPE tag) { return (tag & ~VT_BYREF) == VT_DISPATCH || (tag & ~VT_BYREF) == VT_UNKNOWN; }

    // The kind an untyped (Any) value goes as: strings and objects aside, Double-sized values as they
    // are, everything else as a Long.
    static VARTYPE NumberTagOf(const VARIANT& value)
    {
        switch (value.vt & ~VT_BYREF) {
        case VT_R4:
        case VT_R8:
        case VT_DATE:
        case VT_CY: return static_cast<VARTYPE>(value.vt & ~VT_BYREF);
        default: return VT_I4;
        }
    }

    bool Push(const void* pointer)
    {
        m_words.push_back(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer)));
        return true;
    }

    void PushBytes(const void* data, std::size_t size)
    {
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        for (std::size_t at = 0; at < size; at += 4) {
            std::uint32_t word = 0;
            std::memcpy(&word, bytes + at, size - at < 4 ? size - at : 4);
            m_words.push_back(word);
        }
    }

    Variant& Temporary()
    {
        m_temporaries.emplace_back();
        return m_temporaries.back();
    }

    bool AddNumber(const VARIANT& value, VARTYPE tag)
    {
        Variant copy;
        if (!copy.CopyIndirectFrom(value))
            return RaiseValueError(kErrorAutomation);
        if (!ChangeType(copy, tag))
            return false;
        const VARIANT& raw = copy.Raw();
        switch (tag) {
        case VT_UI1: m_words.push_back(raw.bVal); return true;
        case VT_I2:
        case VT_BOOL: m_words.push_back(static_cast<std::uint32_t>(static_cast<std::int32_t>(raw.iVal))); return true;
        case VT_R4: PushBytes(&raw.fltVal, 4); return true;
        case VT_R8:
        case VT_DATE: PushBytes(&raw.dblVal, 8); return true;
        case VT_CY: PushBytes(&raw.cyVal, 8); return true;
        default: m_words.push_back(static_cast<std::uint32_t>(raw.lVal)); return true;
        }
    }

    // A Variant by value: its 16 bytes, a copy the function does not own.
    bool AddVariantValue(const VARIANT& value)
    {
        Variant& copy = Temporary();
        if (!copy.CopyIndirectFrom(value))
            return RaiseValueError(kErrorAutomation);
        PushBytes(&copy.Raw(), sizeof(VARIANT));
        return true;
    }

    // The VARIANT a by-reference Variant parameter points at: the variable's own, or a copy.
    VARIANT* OwnVariant(VARIANT& target, bool reference)
    {
        if (reference && !(target.vt & VT_BYREF))
            return &target;
        Variant& copy = Temporary();
        if (!copy.CopyIndirectFrom(target))
            copy.Clear();
        return &copy.Raw();
    }

    bool AddObject(const VARIANT& value, bool byVal)
    {
        if (value.vt == (VT_BYREF | VT_DISPATCH) || value.vt == (VT_BYREF | VT_UNKNOWN))
            return byVal ? Push(*value.ppunkVal) : Push(value.ppunkVal);
        if (value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN)
            return byVal ? Push(value.punkVal) : Push(&value.punkVal);
        if (value.vt == VT_EMPTY || (value.vt == VT_ERROR && value.scode == kMissingArgumentStatus))
            return Push(nullptr);
        return RaiseValueError(kErrorTypeMismatch);
    }

    // A by-reference Any: the address of the value the macro gave (a copy for an expression).
    bool AddAnyReference(VARIANT& target, bool reference)
    {
        if (target.vt & VT_BYREF)
            return Push(target.byref);
        if (reference)
            return Push(&target.lVal);
        Variant& copy = Temporary();
        if (!copy.CopyIndirectFrom(target))
            return RaiseValueError(kErrorAutomation);
        return Push(&copy.Raw().lVal);
    }

    // Text in the function's kind (ANSI or wide) in a buffer it may write into; a string variable gets
    // the buffer's text back after the call. `pointerCell`: the function receives the address of a
    // cell that holds the buffer's address (a by-reference String parameter).
    bool AddText(VARIANT& target, bool reference, bool pointerCell)
    {
        m_texts.emplace_back();
        TextBuffer& buffer = m_texts.back();
        std::wstring_view text;
        Variant converted;
        if (target.vt == (VT_BYREF | VT_BSTR)) {
            text = std::wstring_view(*target.pbstrVal ? *target.pbstrVal : L"", SysStringLen(*target.pbstrVal));
            buffer.variable = target.pbstrVal;
        } else if (target.vt == VT_BSTR) {
            text = std::wstring_view(target.bstrVal ? target.bstrVal : L"", SysStringLen(target.bstrVal));
            if (reference)
                buffer.variable = &target.bstrVal;
        } else {
            if (!converted.CopyIndirectFrom(target))
                return RaiseValueError(kErrorAutomation);
            if (!ChangeType(converted, VT_BSTR))
                return false;
            const BSTR value = converted.String();
            text = std::wstring_view(value ? value : L"", SysStringLen(value));
        }
        buffer.length = static_cast<UINT>(text.size());
        if (m_wide) {
            buffer.wide.assign(text);
            buffer.pointer = buffer.wide.data();
        } else {
            buffer.ansi = AnsiFromWide(text);
            buffer.pointer = buffer.ansi.data();
        }
        return pointerCell ? Push(&buffer.pointer) : Push(buffer.pointer);
    }

    bool m_wide;
    std::vector<std::uint32_t> m_words;
    // Deques: the function holds addresses of their elements, which must not move.
    std::deque<Variant> m_temporaries;
    std::deque<TextBuffer> m_texts;
    std::vector<VariantWrite> m_variantWrites;
};

// Turns what the function left in its registers into the call's value of the declared result type.
bool StoreResult(const Procedure& procedure, std::uint64_t registers, double real, bool wideStrings, Variant& result)
{
    const TypeCode type = procedure.result.code;
    const auto low = static_cast<std::uint32_t>(registers);
    switch (type.Code()) {
    case TypeCode::kByte: result.SetByte(static_cast<BYTE>(low)); return true;
    case TypeCode::kBoolean: result.SetBoolean(static_cast<std::uint16_t>(low) != 0); return true;
    case TypeCode::kInteger: result.SetInteger(static_cast<SHORT>(low)); return true;
    case TypeCode::kSingle: result.SetSingle(static_cast<FLOAT>(real)); return true;
    case TypeCode::kDouble: result.SetDouble(real); return true;
    case TypeCode::kDate: result.SetDate(real); return true;
    case TypeCode::kCurrency: {
        CY value;
        value.int64 = static_cast<LONGLONG>(registers);
        result.SetCurrency(value);
        return true;
    }
    default: break;
    }
    if (type.IsString()) {
        if (low == 0)
            return result.SetString(std::wstring_view());
        if (wideStrings)
            return result.SetString(std::wstring_view(reinterpret_cast<const wchar_t*>(low)));
        return result.SetString(WideFromAnsi(reinterpret_cast<const char*>(low)));
    }
    if (type.IsObject()) {
        // The function hands over one reference.
        result.SetObject(reinterpret_cast<IDispatch*>(low), false);
        return true;
    }
    result.SetLong(static_cast<LONG>(low));
    return true;
}

bool ReturnsReal(const Procedure& procedure)
{
    const std::uint16_t code = procedure.result.code.Code();
    return code == TypeCode::kSingle || code == TypeCode::kDouble || code == TypeCode::kDate;
}

} // namespace

bool CallExternal(const RunContext& context, Procedure& procedure, int count)
{
    if (!procedure.binding.IsBound() && !Bind(procedure))
        return false;
    ValueStack& values = context.interpreter->Values();
    const std::size_t first = values.Size() - static_cast<std::size_t>(count);
    ExternalArguments arguments(procedure.binding.WideStrings());
    const int parameters = static_cast<int>(procedure.parameters.size());
    for (int i = 0; i < count && i < parameters; ++i) {
        if (!arguments.Add(procedure.parameters[static_cast<std::size_t>(i)], values.At(first + static_cast<std::size_t>(i))))
            return false;
    }
    const std::vector<std::uint32_t>& words = arguments.Words();
    std::uint64_t registers = 0;
    double real = 0;
    {
        automation::OutsideCall outside;
        if (ReturnsReal(procedure))
            real = brannoc_call_words_real(procedure.binding.Entry(), words.data(), static_cast<std::uint32_t>(words.size()));
        else
            registers = brannoc_call_words(procedure.binding.Entry(), words.data(), static_cast<std::uint32_t>(words.size()));
    }
    if (!arguments.WriteBack())
        return false;
    if (!HasResult(procedure))
        return true;
    Variant result;
    if (!StoreResult(procedure, registers, real, procedure.binding.WideStrings(), result))
        return false;
    values.At(first - 1) = std::move(result);
    return true;
}

} // namespace brannoc
