// The references dialog (resource 125): the registered type libraries with check boxes, the checked
// ones first in their priority order; OK writes the "'#Reference " lines of the current sheet.
#include "ide/ReferencesDialog.h"

#include "host/ThisModule.h"
#include "ide/EditorFrameState.h"
#include "ide/EngineLink.h"
#include "ide/ModuleText.h"
#include "ide/ReferenceList.h"

#include "brannoc.h"

#include <optional>
#include <set>

namespace brannoc::ide {

namespace {

constexpr int kReferencesDialog = 125;
constexpr int kList = 130, kUp = 131, kDown = 132, kLocation = 135, kLanguage = 136;
enum ReferenceStrings : unsigned { IDS_EXTENSIONS = 592, IDS_REFERENCES = 614, IDS_BAD_REFERENCE = 623, IDS_STANDARD = 624 };
constexpr int kCheckBoxWidth = 16;
const char* const kListProcProp = "BrannocReferenceListProc";

struct ReferencesBox {
    EditorFrame* frame = nullptr;
    std::string macro;       // the name shown in the title
    std::string references;  // the reference lines the dialog opens with
    std::vector<ReferenceEntry> entries;
};

ReferencesBox* BoxOf(HWND dialog) { return reinterpret_cast<ReferencesBox*>(GetWindowLongPtrA(dialog, DWLP_USER)); }

// The libraries of the engine's extensions: always referenced, so shown checked and fixed.
std::vector<ReferenceEntry> ExtensionLibraries(const EditorFrame& frame)
{
    std::vector<ReferenceEntry> libraries;
    if (!frame.m_engine)
        return libraries;
    std::set<std::string> seen;
    for (LONG index = 0;; ++index) {
        IUnknown* type = CU_ExtensionType(frame.m_engine, index);
        if (!type)
            break;
        ITypeInfo* info = nullptr;
        ITypeLib* library = nullptr;
        UINT at = 0;
        if (SUCCEEDED(type->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(&info))) &&
            SUCCEEDED(info->GetContainingTypeLib(&library, &at))) {
            TLIBATTR* attributes = nullptr;
            if (SUCCEEDED(library->GetLibAttr(&attributes))) {
                wchar_t guid[64] = {};
                StringFromGUID2(attributes->guid, guid, 64);
                ReferenceEntry entry;
                entry.guid = NarrowText(guid);
                entry.version = std::to_string(attributes->wMajorVerNum) + "." + std::to_string(attributes->wMinorVerNum);
                char locale[16];
                wsprintfA(locale, "%x", attributes->lcid);
                entry.locale = locale;
                BSTR name = nullptr, doc = nullptr;
                if (SUCCEEDED(library->GetDocumentation(-1, &name, &doc, nullptr, nullptr))) {
                    entry.description = NarrowText(doc && *doc ? std::wstring_view(doc) : std::wstring_view(name ? name : L""));
                    SysFreeString(name);
                    SysFreeString(doc);
                }
                entry.path = frame.Text(IDS_EXTENSIONS);
                library->ReleaseTLibAttr(attributes);
                if (seen.insert(entry.guid).second)
                    libraries.push_back(std::move(entry));
            }
        }
        if (library)
            library->Release();
        if (info)
            info->Release();
        type->Release();
    }
    return libraries;
}

void FillList(HWND dialog, const ReferencesBox& box, int select)
{
    HWND list = GetDlgItem(dialog, kList);
    SendMessageA(list, LB_RESETCONTENT, 0, 0);
    const std::string bad = box.frame->Text(IDS_BAD_REFERENCE);
    for (const ReferenceEntry& entry : box.entries)
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(EntryText(entry, bad).c_str()));
    SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(select), 0);
}

void ShowSelected(HWND dialog, const ReferencesBox& box)
{
    const LRESULT index = SendDlgItemMessageA(dialog, kList, LB_GETCURSEL, 0, 0);
    if (index < 0 || index >= static_cast<LRESULT>(box.entries.size())) {
        SetDlgItemTextA(dialog, kLocation, "");
        SetDlgItemTextA(dialog, kLanguage, "");
        return;
    }
    const ReferenceEntry& entry = box.entries[static_cast<size_t>(index)];
    SetDlgItemTextA(dialog, kLocation, entry.path.c_str());
    SetDlgItemTextA(dialog, kLanguage, LanguageText(entry.locale, box.frame->Text(IDS_STANDARD)).c_str());
}

void ToggleChecked(HWND dialog, ReferencesBox& box, int index)
{
    if (index < 0 || index >= static_cast<int>(box.entries.size()) || box.entries[static_cast<size_t>(index)].fixed)
        return;
    box.entries[static_cast<size_t>(index)].checked = !box.entries[static_cast<size_t>(index)].checked;
    InvalidateRect(GetDlgItem(dialog, kList), nullptr, FALSE);
}

// Up and Dn: the selected entry changes places with its neighbour (fixed entries keep theirs).
void MoveSelected(HWND dialog, ReferencesBox& box, int step)
{
    const int index = static_cast<int>(SendDlgItemMessageA(dialog, kList, LB_GETCURSEL, 0, 0));
    const int other = index + step;
    if (index < 0 || other < 0 || other >= static_cast<int>(box.entries.size()) ||
        box.entries[static_cast<size_t>(index)].fixed || box.entries[static_cast<size_t>(other)].fixed)
        return;
    std::swap(box.entries[static_cast<size_t>(index)], box.entries[static_cast<size_t>(other)]);
    FillList(dialog, box, other);
    ShowSelected(dialog, box);
}

void DrawEntry(const ReferencesBox& box, const DRAWITEMSTRUCT& item)
{
    if (item.itemID == static_cast<UINT>(-1) || item.itemID >= box.entries.size())
        return;
    const ReferenceEntry& entry = box.entries[item.itemID];
    const bool selected = (item.itemState & ODS_SELECTED) != 0;
    RECT box_ = item.rcItem;
    box_.right = box_.left + kCheckBoxWidth;
    FillRect(item.hDC, &box_, GetSysColorBrush(entry.fixed ? COLOR_BTNFACE : COLOR_WINDOW));
    RECT check{box_.left + 2, box_.top + 1, box_.left + 13, box_.bottom - 1};
    HPEN pen = CreatePen(PS_SOLID, 1, RGB(128, 128, 128));
    HGDIOBJ oldPen = SelectObject(item.hDC, pen);
    HGDIOBJ oldBrush = SelectObject(item.hDC, GetStockObject(NULL_BRUSH));
    Rectangle(item.hDC, check.left, check.top, check.right, check.bottom);
    if (entry.checked) {
        // Three short strokes form the check mark.
        const int x = check.left + 2, y = check.top + (check.bottom - check.top) / 2 - 1;
        for (int stroke = 0; stroke < 3; ++stroke) {
            MoveToEx(item.hDC, x, y + stroke, nullptr);
            LineTo(item.hDC, x + 2, y + 2 + stroke);
            LineTo(item.hDC, x + 7, y - 3 + stroke);
        }
    }
    SelectObject(item.hDC, oldBrush);
    SelectObject(item.hDC, oldPen);
    DeleteObject(pen);
    RECT text = item.rcItem;
    text.left += kCheckBoxWidth;
    FillRect(item.hDC, &text, GetSysColorBrush(selected ? COLOR_HIGHLIGHT : entry.fixed ? COLOR_BTNFACE : COLOR_WINDOW));
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    char label[512] = {};
    SendMessageA(item.hwndItem, LB_GETTEXT, item.itemID, reinterpret_cast<LPARAM>(label));
    text.left += 2;
    DrawTextA(item.hDC, label, -1, &text, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    if (item.itemState & ODS_FOCUS)
        DrawFocusRect(item.hDC, &item.rcItem);
}

// The list's own procedure: a click on the check box or the space bar checks or unchecks an entry.
LRESULT CALLBACK ListWindowProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto previous = reinterpret_cast<WNDPROC>(GetPropA(list, kListProcProp));
    HWND dialog = GetParent(list);
    ReferencesBox* box = BoxOf(dialog);
    if (box && message == WM_LBUTTONDOWN && static_cast<short>(LOWORD(lParam)) < kCheckBoxWidth) {
        LRESULT result = CallWindowProcA(previous, list, message, wParam, lParam);
        const LRESULT hit = SendMessageA(list, LB_ITEMFROMPOINT, 0, lParam);
        if (HIWORD(hit) == 0)
            ToggleChecked(dialog, *box, LOWORD(hit));
        return result;
    }
    if (box && message == WM_CHAR && wParam == ' ') {
        ToggleChecked(dialog, *box, static_cast<int>(SendMessageA(list, LB_GETCURSEL, 0, 0)));
        return 0;
    }
    if (message == WM_NCDESTROY)
        RemovePropA(list, kListProcProp);
    return CallWindowProcA(previous, list, message, wParam, lParam);
}

void Open(HWND dialog, ReferencesBox& box)
{
    SetWindowLongPtrA(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&box));
    SetWindowTextA(dialog, (box.frame->Text(IDS_REFERENCES) + " - " + box.frame->DisplayName(box.macro)).c_str());
    box.entries = MergeReferences(ReadRegisteredLibraries(), box.references, ExtensionLibraries(*box.frame));
    HWND list = GetDlgItem(dialog, kList);
    SetPropA(list, kListProcProp,
             reinterpret_cast<HANDLE>(SetWindowLongPtrA(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ListWindowProc))));
    FillList(dialog, box, 0);
    ShowSelected(dialog, box);
}

INT_PTR CALLBACK ReferencesDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    ReferencesBox* box = BoxOf(dialog);
    switch (message) {
    case WM_INITDIALOG:
        Open(dialog, *reinterpret_cast<ReferencesBox*>(lParam));
        return TRUE;
    case WM_DRAWITEM:
        if (box && wParam == kList)
            DrawEntry(*box, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        return TRUE;
    case WM_COMMAND:
        if (!box)
            return FALSE;
        switch (LOWORD(wParam)) {
        case IDOK: EndDialog(dialog, IDOK); return TRUE;
        case IDCANCEL: EndDialog(dialog, IDCANCEL); return TRUE;
        case kUp: MoveSelected(dialog, *box, -1); return TRUE;
        case kDown: MoveSelected(dialog, *box, 1); return TRUE;
        case kList:
            if (HIWORD(wParam) == LBN_SELCHANGE)
                ShowSelected(dialog, *box);
            else if (HIWORD(wParam) == LBN_DBLCLK)
                ToggleChecked(dialog, *box, static_cast<int>(SendDlgItemMessageA(dialog, kList, LB_GETCURSEL, 0, 0)));
            return TRUE;
        default: return FALSE;
        }
    default: return FALSE;
    }
}

// Runs the dialog; the checked references as text when OK was pressed.
std::optional<std::string> ChooseReferences(EditorFrame& frame, const std::string& macro, const std::string& references)
{
    ReferencesBox box{&frame, macro, references, {}};
    const INT_PTR answer = DialogBoxParamA(ThisModule(), MAKEINTRESOURCEA(kReferencesDialog), frame.m_window,
                                           ReferencesDlgProc, reinterpret_cast<LPARAM>(&box));
    if (answer != IDOK)
        return std::nullopt;
    return ReferencesText(box.entries);
}

} // namespace

bool ShowReferencesDialog(EditorFrame& frame)
{
    Sheet* sheet = frame.Current();
    if (!sheet)
        return false;
    const std::optional<std::string> text = ChooseReferences(frame, sheet->name, sheet->references);
    if (!text)
        return false;
    if (*text == sheet->references)
        return true;
    sheet->references = *text;
    sheet->referenceLines = 0;
    for (char c : *text)
        sheet->referenceLines += c == '\n' ? 1 : 0;
    frame.ApplyHeader(*sheet);
    return true;
}

bool ShowMacroReferencesDialog(EditorFrame& frame, const std::string& macro)
{
    const std::string name = Unquoted(macro);
    const int index = name.empty() ? frame.m_current : frame.FindSheet(name);
    if (index >= 0)
        return frame.ShowSheet(index) && ShowReferencesDialog(frame);
    // A macro that is not open: its lines are read as the engine would read them, and the host
    // stores the new ones.
    std::string references;
    if (BSTR text = frame.ReadMacro(nullptr, WideText(name))) {
        references = SplitModuleText(NarrowText(std::wstring_view(text, SysStringLen(text)))).references;
        SysFreeString(text);
    }
    const std::optional<std::string> chosen = ChooseReferences(frame, name, references);
    if (!chosen)
        return false;
    return *chosen == references ||
           (frame.m_callbacks.setReferences && frame.m_callbacks.setReferences(frame.m_window, name.c_str(), chosen->c_str()));
}

} // namespace brannoc::ide
