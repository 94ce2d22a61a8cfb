#include "host/DefaultCallBack.h"

#include "brannoc.h"
#include "automation/AnsiBstr.h"
#include "exec/ErrorMessages.h"
#include "host/EngineContext.h"
#include "values/Variant.h"

#include <string>

namespace brannoc {
namespace {

std::wstring TakeText(BSTR text)
{
    Bstr held;
    held.Attach(text);
    return text ? std::wstring(text, SysStringLen(text)) : std::wstring();
}

// The engine object's error record, read through its interface.
bool ReadErrorRecord(IDispatch* engine, ErrorLocation& error)
{
    _CodeUnit* unit = nullptr;
    if (!engine || FAILED(engine->QueryInterface(IID__CodeUnit, reinterpret_cast<void**>(&unit))))
        return false;
    BSTR text = nullptr;
    if (SUCCEEDED(unit->get_ErrorDesc(&text)))
        error.description = TakeText(text);
    if (SUCCEEDED(unit->get_ErrorMacroName(&text)))
        error.macroName = TakeText(text);
    if (SUCCEEDED(unit->get_ErrorLine(&text)))
        error.lineText = TakeText(text);
    short number = 0;
    if (SUCCEEDED(unit->get_ErrorLineNum(&number)))
        error.lineNumber = number;
    short offset = -1;
    if (SUCCEEDED(unit->get_ErrorOffset(&offset)))
        error.offset = offset;
    unit->Release();
    return true;
}

bool EngineIsActive(IDispatch* engine)
{
    _CodeUnit* unit = nullptr;
    if (!engine || FAILED(engine->QueryInterface(IID__CodeUnit, reinterpret_cast<void**>(&unit))))
        return false;
    VARIANT_BOOL active = VARIANT_FALSE;
    unit->get_IsActive(&active);
    unit->Release();
    return active != VARIANT_FALSE;
}

} // namespace

void ShowErrorBox(const ErrorLocation& error)
{
    std::wstring line = error.lineText;
    if (error.offset >= 0 && static_cast<size_t>(error.offset) <= line.size())
        line.insert(static_cast<size_t>(error.offset), FixedText(ErrorId::HereMarker, L"<here>"));
    const std::wstring text = L"[" + error.macroName + L"#" + std::to_wstring(error.lineNumber) + L"] " + line + L"\n" +
                              error.description;
    const std::wstring caption = FixedText(ErrorId::ErrorCaption, L"Error");
    MessageBoxW(nullptr, text.c_str(), caption.c_str(), MB_TASKMODAL | MB_OK);
}

IDispatch* CreateDefaultCallBack()
{
    CB_FUNCTIONS handlers{KZ_CallBackDebugPrint, KZ_CallBackDoEvents, KZ_CallBackNotify, KZ_CallBackReadMacro,
                          KZ_CallBackWindow};
    return CB_CreateCallBack(nullptr, &handlers, nullptr);
}

} // namespace brannoc

using namespace brannoc;

extern "C" {

void __stdcall KZ_CallBackDebugPrint(IDispatch*, LPCSTR text, void*)
{
    MessageBoxA(nullptr, text ? text : "", "Debug.Print", MB_TASKMODAL | MB_OK);
}

// Up to 100 waiting messages while the engine is active; a quit message is posted again and ends the
// engine's macros.
void __stdcall KZ_CallBackDoEvents(IDispatch* engine, void*)
{
    MSG message;
    for (int i = 0; i < 100 && EngineIsActive(engine) && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            _CodeUnit* unit = nullptr;
            if (SUCCEEDED(engine->QueryInterface(IID__CodeUnit, reinterpret_cast<void**>(&unit)))) {
                VARIANT_BOOL idle = VARIANT_FALSE;
                unit->HaltAll(&idle);
                unit->Release();
            }
            return;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void __stdcall KZ_CallBackNotify(IDispatch* engine, LONG code, void*)
{
    ErrorLocation error;
    if (code == 0 && ReadErrorRecord(engine, error))
        ShowErrorBox(error);
}

// The macro name is a file name: the whole file and one more byte, the end-of-file character 26.
BSTR __stdcall KZ_CallBackReadMacro(IDispatch*, LPCSTR macroName, void*)
{
    if (!macroName || !*macroName)
        return nullptr;
    HANDLE file = CreateFileA(macroName, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return nullptr;
    const DWORD size = GetFileSize(file, nullptr);
    BSTR text = size == INVALID_FILE_SIZE ? nullptr : OA_SysAllocStringLenA(nullptr, size + 1);
    DWORD read = 0;
    if (text && (size == 0 || (ReadFile(file, text, size, &read, nullptr) && read == size))) {
        reinterpret_cast<char*>(text)[size] = '\x1A';
    } else {
        OA_SysFreeStringA(text);
        text = nullptr;
    }
    CloseHandle(file);
    return text;
}

LONG __stdcall KZ_CallBackWindow(void*) { return 0; }

} // extern "C"
