#include "ide/ModuleProperties.h"

#include "host/ThisModule.h"
#include "ide/EditorFrameState.h"
#include "ide/ModuleAttributes.h"

namespace brannoc::ide {

namespace {

constexpr int kPropertiesDialog = 140;
constexpr int kNameField = 180;
constexpr int kInstancingList = 181;
constexpr int kInstancingLabel = 182;
constexpr int kInstancingChoices = 6;

struct PropertiesBox {
    EditorFrame* frame = nullptr;
    Sheet* sheet = nullptr;
    std::string name;   // the values the box opened with
    int instancing = 0; // 0 for code modules
    bool applied = false;
    bool closed = false;
};

bool HasInstancing(const Sheet& sheet)
{
    return sheet.kind == SheetKind::Object || sheet.kind == SheetKind::Class;
}

void FillBox(HWND dialog, PropertiesBox& box)
{
    std::string title = box.frame->Text(IDS_PROPERTIES_TITLE);
    ReplaceAll(title, "<NAME>", box.frame->KindWord(*box.sheet));
    SetWindowTextA(dialog, title.c_str());
    box.name = ReadVbName(box.sheet->header);
    SetDlgItemTextA(dialog, kNameField, box.name.c_str());
    HWND list = GetDlgItem(dialog, kInstancingList);
    if (!HasInstancing(*box.sheet)) {
        ShowWindow(list, SW_HIDE);
        ShowWindow(GetDlgItem(dialog, kInstancingLabel), SW_HIDE);
        return;
    }
    for (int choice = 1; choice <= kInstancingChoices; ++choice) {
        std::string text = std::to_string(choice) + " - " + box.frame->Text(IDS_INSTANCING_FIRST + choice - 1);
        SendMessageA(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    box.instancing = ReadInstancing(box.sheet->header);
    SendMessageA(list, CB_SETCURSEL, static_cast<WPARAM>(box.instancing - 1), 0);
}

// As the user types: characters that cannot stand in an identifier are removed at once, the caret
// staying at its place in the text.
void CleanNameField(HWND dialog)
{
    HWND field = GetDlgItem(dialog, kNameField);
    char text[256] = {};
    GetWindowTextA(field, text, sizeof(text));
    DWORD start = 0;
    SendMessageA(field, EM_GETSEL, reinterpret_cast<WPARAM>(&start), 0);
    int caret = static_cast<int>(start);
    std::string cleaned = CleanIdentifier(text, caret);
    if (cleaned == text)
        return;
    SetWindowTextA(field, cleaned.c_str());
    SendMessageA(field, EM_SETSEL, static_cast<WPARAM>(caret), caret);
}

void ApplyBox(HWND dialog, PropertiesBox& box)
{
    if (box.applied)
        return;
    box.applied = true;
    char name[256] = {};
    GetDlgItemTextA(dialog, kNameField, name, sizeof(name));
    Sheet& sheet = *box.sheet;
    if (name[0] && box.name != name && WriteVbName(sheet.header, name))
        box.frame->ApplyHeader(sheet);
    if (HasInstancing(sheet)) {
        int chosen = static_cast<int>(SendDlgItemMessageA(dialog, kInstancingList, CB_GETCURSEL, 0, 0)) + 1;
        if (chosen >= 1 && chosen != box.instancing)
            box.frame->SetInstancing(sheet, chosen);
    }
}

void CloseBox(HWND dialog, PropertiesBox& box)
{
    ApplyBox(dialog, box);
    DestroyWindow(dialog);
}

INT_PTR CALLBACK PropertiesDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* box = reinterpret_cast<PropertiesBox*>(GetWindowLongPtrA(dialog, DWLP_USER));
    switch (message) {
    case WM_INITDIALOG:
        SetWindowLongPtrA(dialog, DWLP_USER, lParam);
        FillBox(dialog, *reinterpret_cast<PropertiesBox*>(lParam));
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == kNameField && HIWORD(wParam) == EN_CHANGE)
            CleanNameField(dialog);
        else if (LOWORD(wParam) == IDCANCEL || LOWORD(wParam) == IDOK) {
            // Close brings the frame to the front; the box applies its values as it loses activation.
            SetActiveWindow(GetAncestor(box->frame->m_window, GA_ROOT));
            if (IsWindow(dialog))
                CloseBox(dialog, *box);
        }
        return TRUE;
    case WM_ACTIVATE:
        if (LOWORD(wParam) == WA_INACTIVE && box && !box->applied) {
            HWND next = reinterpret_cast<HWND>(lParam);
            // A box of its own (a message box, a drop-down) does not end the dialog.
            if (!next || GetWindow(next, GW_OWNER) != dialog)
                PostMessageA(dialog, WM_CLOSE, 0, 0);
        }
        return FALSE;
    case WM_CLOSE:
        CloseBox(dialog, *box);
        return TRUE;
    case WM_DESTROY:
        if (box)
            box->closed = true;
        return FALSE;
    default:
        return FALSE;
    }
}

} // namespace

void ShowModuleProperties(EditorFrame& frame, Sheet& sheet)
{
    frame.StoreShownText();
    PropertiesBox box;
    box.frame = &frame;
    box.sheet = &sheet;
    HWND dialog = CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(kPropertiesDialog), frame.m_window,
                                     PropertiesDlgProc, reinterpret_cast<LPARAM>(&box));
    if (!dialog)
        return;
    ShowWindow(dialog, SW_SHOW);
    ++frame.m_busy;
    MSG message;
    while (!box.closed) {
        BOOL got = GetMessageA(&message, nullptr, 0, 0);
        if (got <= 0) {
            if (got == 0)
                PostQuitMessage(static_cast<int>(message.wParam));
            DestroyWindow(dialog);
            break;
        }
        if (!IsWindow(dialog) || !IsDialogMessageA(dialog, &message)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
    --frame.m_busy;
}

} // namespace brannoc::ide
