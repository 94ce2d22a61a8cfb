#pragma once
// The console host shared by the command-line tools: a host callback that writes Debug.Print output to
// stdout, reads macros from disk (names in '#Uses relative to the using file) and records the first
// error the engine reports, and the loader of the engine library next to the program.
#include "brannoc.h"

#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

namespace console {

inline std::string Ansi(const std::wstring& text)
{
    if (text.empty())
        return {};
    int size = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), result.data(), size, nullptr, nullptr);
    return result;
}

inline std::wstring Wide(const std::string& text)
{
    if (text.empty())
        return {};
    int size = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring result(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), result.data(), size);
    return result;
}

inline std::wstring TakeText(BSTR text)
{
    std::wstring result = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
    SysFreeString(text);
    return result;
}

inline void WriteOut(FILE* stream, const std::string& text)
{
    fwrite(text.data(), 1, text.size(), stream);
    fflush(stream);
}

// Writes a text with each CR LF turned into LF.
inline void WriteLines(FILE* stream, const std::wstring& text)
{
    std::string out = Ansi(text);
    std::string converted;
    converted.reserve(out.size());
    for (std::size_t i = 0; i < out.size(); ++i) {
        if (out[i] == '\r' && i + 1 < out.size() && out[i + 1] == '\n')
            continue;
        converted.push_back(out[i]);
    }
    WriteOut(stream, converted);
}

// The engine reads lines ended by CR or CR LF; files written with bare LF line ends get a CR before each.
inline std::string WithCarriageReturns(const std::string& text)
{
    std::string result;
    result.reserve(text.size() + text.size() / 16);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r'))
            result.push_back('\r');
        result.push_back(text[i]);
    }
    return result;
}

inline bool ReadFileBytes(const std::wstring& path, std::string& text)
{
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD size = GetFileSize(file, nullptr);
    DWORD read = 0;
    bool ok = size != INVALID_FILE_SIZE;
    if (ok) {
        text.resize(size);
        ok = size == 0 || (ReadFile(file, text.data(), size, &read, nullptr) && read == size);
    }
    CloseHandle(file);
    return ok;
}

inline bool IsAbsolute(const std::wstring& path)
{
    return (!path.empty() && (path[0] == L'/' || path[0] == L'\\')) || (path.size() > 1 && path[1] == L':');
}

// The first error the engine reports (compile error or untrapped run-time error).
struct FirstError {
    bool seen = false;
    long number = 0;
    std::wstring description;
    std::wstring macroName;
    std::wstring lineText;
    long line = 0; // the true line number (the engine's 16-bit member wraps past 32767)
    short offset = 0;
};

// The lines of a text ended by CR LF, CR or LF.
inline std::vector<std::wstring> SplitLines(const std::wstring& text)
{
    std::vector<std::wstring> lines;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != L'\r' && text[i] != L'\n')
            continue;
        lines.push_back(text.substr(start, i - start));
        if (text[i] == L'\r' && i + 1 < text.size() && text[i + 1] == L'\n')
            ++i;
        start = i + 1;
    }
    if (start < text.size())
        lines.push_back(text.substr(start));
    return lines;
}

// The true line number of an error whose 16-bit line number wrapped: the first line of the module's text
// with the same low 16 bits and the reported line text (the reported number when none matches).
inline long TrueLineNumber(const std::wstring& moduleText, short reported, const std::wstring& lineText)
{
    const long low = static_cast<unsigned short>(reported);
    if (moduleText.empty())
        return reported;
    const std::vector<std::wstring> lines = SplitLines(moduleText);
    if (lines.size() <= 32767)
        return reported;
    for (long line = low; line >= 1 && line <= static_cast<long>(lines.size()); line += 65536)
        if (lines[static_cast<std::size_t>(line - 1)] == lineText)
            return line;
    return low;
}

// The host callback: Debug.Print to stdout, macros from disk, '#Uses names relative to the using file,
// errors recorded for the final report.
class ConsoleCallBack final : public IDispatch {
public:
    enum Member : DISPID { kDebugPrint = 1, kNotify, kReadMacro, kMapMacroName, kDoEvents };

    FirstError error;

    HRESULT __stdcall QueryInterface(REFIID id, void** object) override
    {
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch)) {
            *object = static_cast<IDispatch*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    // Lives on main's stack; the engine's references do not own it.
    ULONG __stdcall AddRef() override { return 2; }
    ULONG __stdcall Release() override { return 1; }
    HRESULT __stdcall GetTypeInfoCount(UINT* count) override
    {
        *count = 0;
        return S_OK;
    }
    HRESULT __stdcall GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }

    HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override
    {
        static const struct {
            const wchar_t* name;
            DISPID id;
        } s_members[] = {{L"DebugPrint", kDebugPrint}, {L"Notify", kNotify}, {L"ReadMacro", kReadMacro},
                         {L"MapMacroName", kMapMacroName}, {L"DoEvents", kDoEvents}};
        HRESULT hr = S_OK;
        for (UINT i = 0; i < count; ++i) {
            ids[i] = DISPID_UNKNOWN;
            for (const auto& member : s_members)
                if (i == 0 && lstrcmpiW(names[i], member.name) == 0)
                    ids[i] = member.id;
            if (ids[i] == DISPID_UNKNOWN)
                hr = DISP_E_UNKNOWNNAME;
        }
        return hr;
    }

    HRESULT __stdcall Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result,
                             EXCEPINFO*, UINT*) override
    {
        // Arguments arrive last first; the engine object is always the first one.
        auto argument = [&](UINT index) -> VARIANT* {
            return index < parameters->cArgs ? &parameters->rgvarg[parameters->cArgs - 1 - index] : nullptr;
        };
        auto text = [&](UINT index) -> std::wstring {
            VARIANT* value = argument(index);
            if (!value || value->vt != VT_BSTR || !value->bstrVal)
                return {};
            return std::wstring(value->bstrVal, SysStringLen(value->bstrVal));
        };
        switch (member) {
        case kDebugPrint:
            WriteLines(stdout, text(1));
            return S_OK;
        case kNotify: {
            VARIANT* code = argument(1);
            if (code && code->vt == VT_I2 && code->iVal == 0)
                RecordError(argument(0));
            return S_OK;
        }
        case kReadMacro: {
            std::string bytes;
            if (!ReadFileBytes(text(1), bytes))
                return Answer(result, std::wstring()); // no text: the engine reports a missing macro
            // An empty file is a macro of one empty line, so that the engine says what it lacks (its
            // Main) instead of reporting a missing macro.
            std::wstring source = bytes.empty() ? std::wstring(L"\r\n") : Wide(WithCarriageReturns(bytes));
            m_texts.push_back({text(1), source});
            return Answer(result, source);
        }
        case kMapMacroName: {
            std::wstring name = text(1);
            std::wstring base = text(2);
            std::size_t slash = base.find_last_of(L"/\\");
            if (!IsAbsolute(name) && slash != std::wstring::npos)
                name = base.substr(0, slash + 1) + name;
            return Answer(result, name);
        }
        case kDoEvents:
            return S_OK;
        default:
            return DISP_E_MEMBERNOTFOUND;
        }
    }

private:
    struct MacroText {
        std::wstring name;
        std::wstring text;
    };
    // The texts served through ReadMacro, to recover line numbers past 32767.
    std::vector<MacroText> m_texts;

    const std::wstring* TextOf(const std::wstring& name) const
    {
        for (const MacroText& macro : m_texts)
            if (lstrcmpiW(macro.name.c_str(), name.c_str()) == 0)
                return &macro.text;
        return m_texts.size() == 1 ? &m_texts.front().text : nullptr;
    }

    static HRESULT Answer(VARIANT* result, const std::wstring& text)
    {
        if (!result)
            return S_OK;
        VariantInit(result);
        result->vt = VT_BSTR;
        result->bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        return S_OK;
    }

    void RecordError(VARIANT* engineArgument)
    {
        if (error.seen || !engineArgument || engineArgument->vt != VT_DISPATCH || !engineArgument->pdispVal)
            return;
        _CodeUnit* engine = nullptr;
        if (FAILED(engineArgument->pdispVal->QueryInterface(IID__CodeUnit, reinterpret_cast<void**>(&engine))))
            return;
        error.seen = true;
        BSTR value = nullptr;
        engine->get_ErrorNumber(&error.number);
        if (SUCCEEDED(engine->get_ErrorDesc(&value)))
            error.description = TakeText(value);
        if (SUCCEEDED(engine->get_ErrorMacroName(&value)))
            error.macroName = TakeText(value);
        if (SUCCEEDED(engine->get_ErrorLine(&value)))
            error.lineText = TakeText(value);
        short line = 0;
        engine->get_ErrorLineNum(&line);
        const std::wstring* moduleText = TextOf(error.macroName);
        error.line = TrueLineNumber(moduleText ? *moduleText : std::wstring(), line, error.lineText);
        engine->get_ErrorOffset(&error.offset);
        engine->Release();
    }
};

// An engine object from the engine library next to this program, or null when the library or its
// creation export is missing. The caller owns the returned reference.
inline _CodeUnit* CreateEngine()
{
    using CreateFunction = void*(__stdcall*)();
    wchar_t path[MAX_PATH];
    DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder(path, length);
    std::size_t slash = folder.find_last_of(L"\\/");
    folder = slash == std::wstring::npos ? std::wstring() : folder.substr(0, slash + 1);
    HMODULE library = LoadLibraryW((folder + L"brannoc.dll").c_str());
    auto create = library ? reinterpret_cast<CreateFunction>(
                                reinterpret_cast<void*>(GetProcAddress(library, "CU_CreateCodeUnit")))
                          : nullptr;
    return create ? static_cast<_CodeUnit*>(create()) : nullptr;
}

// The request text that starts the macro file with an optional command text.
inline std::wstring StartRequest(const std::wstring& file, const std::wstring& command)
{
    return L"\"" + file + L"\"" + (command.empty() ? L"" : L" " + command);
}

// Ends a session on the engine: stops what still runs, unloads the macro file while the callback is
// still set (so that the terminators of class instances that its module-level variables hold still
// print), detaches the callback and releases the engine.
inline void EndSession(_CodeUnit* engine, const std::wstring& file)
{
    VARIANT_BOOL idle = VARIANT_FALSE;
    engine->HaltAll(&idle);
    BSTR unloadName = SysAllocString(file.c_str());
    VARIANT_BOOL unloaded = VARIANT_FALSE;
    engine->Unload(unloadName, &unloaded);
    SysFreeString(unloadName);
    engine->SetCallBack(nullptr);
    engine->Release();
}

// Writes an error as "FILE:LINE:COL: error NUMBER: DESCRIPTION" and the line text to stderr.
inline void WriteErrorReport(const FirstError& error, const std::wstring& file)
{
    const std::wstring where = error.macroName.empty() ? file : error.macroName;
    const int column = error.line > 0 && error.offset >= 0 ? error.offset + 1 : 0;
    WriteOut(stderr, Ansi(where) + ":" + std::to_string(error.line) + ":" + std::to_string(column) + ": error " +
                         std::to_string(error.number) + ": " + Ansi(error.description) + "\n");
    WriteOut(stderr, Ansi(error.lineText) + "\n");
}

} // namespace console
