#include "dialogs/UserDialog.h"

#include "automation/OutsideCall.h"
#include "dialogs/ItemName.h"
#include "dialogs/PictureWindow.h"
#include "exec/HaltFlags.h"
#include "exec/Interpreter.h"
#include "frontend/Symbols.h"
#include "host/ThisModule.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <commctrl.h>

namespace brannoc {

namespace {

constexpr wchar_t kDialogWindowClass[] = L"__BrannocBasicDynDlgWindow";
constexpr int kFirstItemId = 100;
constexpr int kActionPress = -2; // a button press travels as a negative action 2
constexpr int kNotifyDialogIdle = 18;
constexpr DWORD kWaitSliceMs = 50;

thread_local UserDialog* t_current = nullptr;

bool RegisterDialogClass()
{
    WNDCLASSW existing;
    if (GetClassInfoW(ThisModule(), kDialogWindowClass, &existing))
        return true;
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &DefDlgProcW;
    windowClass.cbWndExtra = DLGWINDOWEXTRA;
    windowClass.hInstance = ThisModule();
    windowClass.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    windowClass.lpszClassName = kDialogWindowClass;
    return RegisterClassW(&windowClass) != 0;
}

void AppendWord(std::vector<WORD>& words, WORD value) { words.push_back(value); }

void AppendText(std::vector<WORD>& words, const wchar_t* text)
{
    for (; *text; ++text)
        words.push_back(static_cast<WORD>(*text));
    words.push_back(0);
}

// An empty pop-up dialog in the engine's dialog class with the 8-point "Helv" font; items are added
// as windows afterwards.
std::vector<WORD> EmptyDialogTemplate()
{
    std::vector<WORD> words(sizeof(DLGTEMPLATE) / sizeof(WORD), 0);
    auto* header = reinterpret_cast<DLGTEMPLATE*>(words.data());
    header->style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPSIBLINGS | DS_SETFONT | DS_MODALFRAME;
    AppendWord(words, 0); // no menu
    AppendText(words, kDialogWindowClass);
    AppendText(words, L"");
    AppendWord(words, 8);
    AppendText(words, L"Helv");
    return words;
}

std::wstring WindowText(HWND window)
{
    const int length = GetWindowTextLengthW(window);
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    const int copied = GetWindowTextW(window, text.data(), length + 1);
    text.resize(static_cast<std::size_t>(copied < 0 ? 0 : copied));
    return text;
}

// The number of bytes of the text's ANSI form.
long AnsiLength(const std::wstring& text)
{
    if (text.empty())
        return 0;
    return WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
}

bool IsList(DialogItemKind kind)
{
    return kind == DialogItemKind::kListBox || kind == DialogItemKind::kComboBox || kind == DialogItemKind::kDropListBox;
}

bool IsButton(DialogItemKind kind)
{
    return kind == DialogItemKind::kPushButton || kind == DialogItemKind::kOKButton ||
           kind == DialogItemKind::kCancelButton;
}

// A list argument's entries: a one-index array of Strings (or Variants), possibly behind a reference.
bool ListEntries(const Variant& list, std::vector<std::wstring>& entries)
{
    const VARIANT* value = FollowByRefChain(&list.Raw());
    VARTYPE tag = value->vt;
    SAFEARRAY* array = nullptr;
    if (tag == (VT_BYREF | VT_ARRAY | VT_BSTR) || tag == (VT_BYREF | VT_ARRAY | VT_VARIANT))
        array = value->pparray ? *value->pparray : nullptr;
    else if (tag & VT_ARRAY)
        array = value->parray;
    else
        return tag == VT_EMPTY;
    tag = static_cast<VARTYPE>(tag & VT_TYPEMASK);
    if (!array)
        return true;
    if (SafeArrayGetDim(array) != 1)
        return false;
    LONG lower = 0;
    LONG upper = -1;
    SafeArrayGetLBound(array, 1, &lower);
    SafeArrayGetUBound(array, 1, &upper);
    for (LONG index = lower; index <= upper; ++index) {
        if (tag == VT_BSTR) {
            BSTR text = nullptr;
            if (FAILED(SafeArrayGetElement(array, &index, &text)))
                return false;
            entries.emplace_back(text ? text : L"", text ? SysStringLen(text) : 0u);
            SysFreeString(text);
            continue;
        }
        VARIANT element;
        VariantInit(&element);
        if (FAILED(SafeArrayGetElement(array, &index, &element)))
            return false;
        VARIANT text;
        VariantInit(&text);
        if (SUCCEEDED(VariantChangeType(&text, &element, VARIANT_ALPHABOOL, VT_BSTR)) && text.bstrVal)
            entries.emplace_back(text.bstrVal, SysStringLen(text.bstrVal));
        else
            entries.emplace_back();
        VariantClear(&text);
        VariantClear(&element);
    }
    return true;
}

} // namespace

UserDialog::UserDialog(const DialogDefinition& definition, Interpreter& machine, ModuleInstance* instance)
    : m_definition(definition), m_machine(machine), m_instance(instance)
{
}

UserDialog::~UserDialog() { Close(); }

UserDialog* UserDialog::Current() { return t_current; }

UserDialog::Outcome UserDialog::Run(void* record, int defaultButton, HWND owner, int& exitCode)
{
    m_previous = t_current;
    t_current = this;
    m_owner = owner;
    if (!Build()) {
        Close();
        if (!m_failed)
            (void)m_machine.RaiseOutOfMemory();
        return Outcome::kFailed;
    }
    FillFromRecord(record);
    ChooseDefaultButton(defaultButton);
    // Action 1 while the dialog is still hidden: True ends it at once, as a cancel.
    bool cancel = false;
    if (!CallFunction(1, -1, static_cast<long>(reinterpret_cast<LONG_PTR>(m_dialog)), cancel)) {
        Close();
        return m_abandoned ? Outcome::kAbandoned : Outcome::kFailed;
    }
    if (m_endRequested) {
        Finish(m_requestedCode);
    } else if (cancel) {
        Finish(0);
    } else {
        if (m_owner && (GetWindowLongW(m_owner, GWL_EXSTYLE) & WS_EX_TOPMOST))
            SetWindowPos(m_dialog, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
        ShowWindow(m_dialog, SW_SHOW);
        BringWindowToTop(m_dialog);
        SetForegroundWindow(m_dialog);
        if (m_owner) {
            m_ownerWasEnabled = !EnableWindow(m_owner, FALSE);
        }
        if (HWND first = GetNextDlgTabItem(m_dialog, nullptr, FALSE))
            SetFocus(first);
        m_lastFocus = ItemOfWindow(GetFocus());
    }
    const bool hasFunction = m_definition.Template().function != nullptr;
    while (!m_ended && !m_failed) {
        if (StopRequested()) {
            m_abandoned = true;
            break;
        }
        if (!m_queue.empty()) {
            (void)Deliver();
            continue;
        }
        MSG message;
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) {
                PostQuitMessage(static_cast<int>(message.wParam));
                m_abandoned = true;
                break;
            }
            if (HandleFunctionKey(message))
                continue;
            if (!HasWindow() || !IsDialogMessageW(m_dialog, &message)) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
            if (HasWindow())
                NoteFocus();
            continue;
        }
        m_machine.Host().Notify(static_cast<InterpreterHost::Notification>(kNotifyDialogIdle));
        if (m_idle && hasFunction) {
            Enqueue(5, -1, 0);
            continue;
        }
        // Nothing to do until input arrives: other threads may use the engine meanwhile.
        automation::OutsideCall outside;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kWaitSliceMs, QS_ALLINPUT);
    }
    if (m_failed || m_abandoned) {
        Close();
        return m_failed ? Outcome::kFailed : Outcome::kAbandoned;
    }
    exitCode = m_exitCode;
    const bool copied = exitCode == 0 || !HasWindow() || CopyToRecord(record);
    Close();
    return copied ? Outcome::kEnded : Outcome::kFailed;
}

bool UserDialog::Build()
{
    if (!RegisterDialogClass() || !RegisterPictureWindowClass())
        return false;
    const std::vector<WORD> words = EmptyDialogTemplate();
    m_dialog = CreateDialogIndirectParamW(ThisModule(), reinterpret_cast<const DLGTEMPLATE*>(words.data()), m_owner,
                                          &DialogProc, reinterpret_cast<LPARAM>(this));
    if (!m_dialog)
        return false;
    m_units = DialogUnits::Of(m_dialog);
    SetCaption(m_definition.title ? *m_definition.title : m_machine.Host().EngineCaption());
    const auto& items = m_definition.Template().items;
    m_items.resize(items.size());
    int pushButtons = 0;
    int group = -1;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const int index = static_cast<int>(i);
        Item& item = m_items[i];
        switch (items[i].kind) {
        case DialogItemKind::kOKButton: item.id = IDOK; m_okItem = index; break;
        case DialogItemKind::kCancelButton: item.id = IDCANCEL; m_cancelItem = index; break;
        default: item.id = kFirstItemId + index; break;
        }
        if (items[i].kind == DialogItemKind::kPushButton)
            item.pushNumber = ++pushButtons;
        if (items[i].kind == DialogItemKind::kOptionGroup) {
            group = index;
        } else if (items[i].kind == DialogItemKind::kOptionButton && group >= 0) {
            item.group = group;
            m_items[static_cast<std::size_t>(group)].buttons.push_back(index);
        }
        if (!CreateItem(index))
            return false;
    }
    PlaceWindow();
    return true;
}

bool UserDialog::CreateItem(int index)
{
    const DialogItemTemplate& item = m_definition.Template().items[static_cast<std::size_t>(index)];
    const DialogItemValues& values = m_definition.items[static_cast<std::size_t>(index)];
    if (item.kind == DialogItemKind::kOptionGroup)
        return true;
    const wchar_t* windowClass = L"BUTTON";
    DWORD style = WS_CHILD | WS_VISIBLE;
    DWORD extended = 0;
    std::wstring text = values.text;
    const bool bordered = item.kind == DialogItemKind::kTextBox || IsList(item.kind);
    switch (item.kind) {
    case DialogItemKind::kText: windowClass = L"STATIC"; style |= SS_LEFT; break;
    case DialogItemKind::kTextBox:
        windowClass = L"EDIT";
        style |= WS_BORDER | WS_TABSTOP | WS_GROUP;
        if (item.options > 0)
            style |= WS_VSCROLL | ES_MULTILINE | ES_AUTOVSCROLL | ES_WANTRETURN;
        else
            style |= ES_AUTOHSCROLL | (item.options < 0 ? ES_PASSWORD : 0);
        text.clear();
        break;
    case DialogItemKind::kGroupBox: style |= BS_GROUPBOX | WS_GROUP; break;
    case DialogItemKind::kCheckBox:
        style |= WS_TABSTOP | WS_GROUP |
                 (item.options == 1 ? BS_3STATE : item.options == 2 ? BS_AUTO3STATE : BS_AUTOCHECKBOX);
        break;
    case DialogItemKind::kOptionButton: style |= BS_AUTORADIOBUTTON; break;
    case DialogItemKind::kPushButton:
    case DialogItemKind::kOKButton:
    case DialogItemKind::kCancelButton:
        style |= BS_PUSHBUTTON | WS_TABSTOP | WS_GROUP;
        if (item.kind == DialogItemKind::kOKButton)
            text = LoadResourceString(538);
        else if (item.kind == DialogItemKind::kCancelButton)
            text = LoadResourceString(537);
        break;
    case DialogItemKind::kListBox:
        windowClass = L"LISTBOX";
        style |= WS_BORDER | WS_VSCROLL | WS_TABSTOP | WS_GROUP | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT |
                 ((item.options & 2) ? LBS_SORT : 0);
        text.clear();
        break;
    case DialogItemKind::kComboBox:
        windowClass = L"COMBOBOX";
        style |= CBS_SIMPLE | CBS_AUTOHSCROLL | WS_BORDER | WS_VSCROLL | WS_TABSTOP | WS_GROUP |
                 ((item.options & 2) ? CBS_SORT : 0);
        text.clear();
        break;
    case DialogItemKind::kDropListBox:
        windowClass = L"COMBOBOX";
        style |= ((item.options & 1) ? (CBS_DROPDOWN | CBS_AUTOHSCROLL) : CBS_DROPDOWNLIST) | WS_BORDER | WS_VSCROLL |
                 WS_TABSTOP | WS_GROUP | ((item.options & 2) ? CBS_SORT : 0);
        text.clear();
        break;
    case DialogItemKind::kPicture:
        windowClass = kPictureWindowClass;
        style |= WS_DISABLED | (static_cast<DWORD>(values.pictureType) & 0x1F);
        break;
    case DialogItemKind::kOptionGroup: break;
    }
    if (bordered && GetSystemMetrics(SM_CXEDGE) > 1) {
        extended |= WS_EX_CLIENTEDGE;
        style &= ~WS_BORDER;
    }
    const DialogBox& box = values.box;
    int height = m_units.PixelsY(box.dy);
    // A drop-down list's height includes its list.
    if (item.kind == DialogItemKind::kDropListBox)
        height += m_units.PixelsY(96);
    HWND window = CreateWindowExW(extended, windowClass, text.c_str(), style, m_units.PixelsX(box.x),
                                  m_units.PixelsY(box.y), m_units.PixelsX(box.dx), height, m_dialog,
                                  reinterpret_cast<HMENU>(static_cast<INT_PTR>(m_items[static_cast<std::size_t>(index)].id)),
                                  ThisModule(), nullptr);
    if (!window)
        return false;
    SendMessageW(window, WM_SETFONT, SendMessageW(m_dialog, WM_GETFONT, 0, 0), FALSE);
    m_items[static_cast<std::size_t>(index)].window = window;
    // A picture that cannot be loaded shows the missing-picture text, unless its Type asks for an error.
    if (item.kind == DialogItemKind::kPicture && !ReloadPicture(window)) {
        m_failed = true;
        return m_machine.SignalError(kErrorInvalidArgument);
    }
    if (item.list >= 0 && static_cast<std::size_t>(item.list) < m_definition.lists.size())
        (void)FillList(index, m_definition.lists[static_cast<std::size_t>(item.list)]);
    return true;
}

bool UserDialog::FillList(int index, const Variant& list)
{
    std::vector<std::wstring> entries;
    if (!ListEntries(list, entries))
        return false;
    return SetList(index, entries) >= 0;
}

void UserDialog::PlaceWindow()
{
    const DialogBox& box = m_definition.box;
    RECT frame{0, 0, m_units.PixelsX(box.dx), m_units.PixelsY(box.dy)};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongW(m_dialog, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongW(m_dialog, GWL_EXSTYLE)));
    const int width = frame.right - frame.left;
    const int height = frame.bottom - frame.top;
    int x = m_units.PixelsX(box.x);
    int y = m_units.PixelsY(box.y);
    if (box.x == -1 && box.y == -1) {
        x = (GetSystemMetrics(SM_CXSCREEN) - width) / 2;
        y = (GetSystemMetrics(SM_CYSCREEN) - height) / 2;
    }
    SetWindowPos(m_dialog, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void UserDialog::ChooseDefaultButton(int defaultButton)
{
    const auto& items = m_definition.Template().items;
    m_defaultItem = -1;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const DialogItemKind kind = items[i].kind;
        const bool chosen = defaultButton == kNoDefaultButton ? IsButton(kind)
                            : defaultButton == -1             ? kind == DialogItemKind::kOKButton
                            : defaultButton == 0              ? kind == DialogItemKind::kCancelButton
                            : defaultButton > 0 ? kind == DialogItemKind::kPushButton && m_items[i].pushNumber == defaultButton
                                                : false;
        if (chosen) {
            m_defaultItem = static_cast<int>(i);
            break;
        }
    }
    if (m_defaultItem < 0) {
        SendMessageW(m_dialog, DM_SETDEFID, 0, 0);
        return;
    }
    const Item& item = m_items[static_cast<std::size_t>(m_defaultItem)];
    SendMessageW(m_dialog, DM_SETDEFID, static_cast<WPARAM>(item.id), 0);
    SendMessageW(item.window, BM_SETSTYLE, BS_DEFPUSHBUTTON, TRUE);
}

void UserDialog::FillFromRecord(const void* record)
{
    const DialogTemplate& dialog = m_definition.Template();
    m_inFunction = true; // changes made here are no events
    for (std::size_t i = 0; i < dialog.items.size(); ++i) {
        const DialogItemTemplate& item = dialog.items[i];
        if (item.recordField < 0 || !record)
            continue;
        Variant value;
        if (!RecordType::LoadField(dialog.record->FieldAt(static_cast<std::size_t>(item.recordField)), record, value))
            continue;
        const int index = static_cast<int>(i);
        if (item.HoldsText()) {
            SetItemText(index, value.StringView());
        } else {
            Variant number(value);
            if (ChangeType(number, VT_I4))
                (void)SetItemValue(index, static_cast<int>(number.Long()));
        }
    }
    m_inFunction = false;
    m_pendingText = -1;
}

bool UserDialog::CopyToRecord(void* record) const
{
    const DialogTemplate& dialog = m_definition.Template();
    for (std::size_t i = 0; i < dialog.items.size(); ++i) {
        const DialogItemTemplate& item = dialog.items[i];
        if (item.recordField < 0 || !record)
            continue;
        Variant value;
        const int index = static_cast<int>(i);
        if (item.HoldsText()) {
            if (!value.SetString(ItemText(index)))
                return m_machine.RaiseOutOfMemory();
        } else {
            int number = 0;
            (void)ItemValue(index, number);
            value.SetInteger(static_cast<SHORT>(number));
        }
        if (!RecordType::StoreField(dialog.record->FieldAt(static_cast<std::size_t>(item.recordField)), record, value))
            return false;
    }
    return true;
}

INT_PTR CALLBACK UserDialog::DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        return FALSE;
    }
    auto* self = reinterpret_cast<UserDialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (!self)
        return FALSE;
    switch (message) {
    case WM_COMMAND:
        self->OnCommand(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam));
        return TRUE;
    case WM_CLOSE:
        // The close box and Alt+F4 end the dialog as a cancel.
        self->Finish(0);
        return TRUE;
    default: return FALSE;
    }
}

int UserDialog::ItemOfId(int id) const
{
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        if (m_items[i].id == id && m_items[i].window)
            return static_cast<int>(i);
    }
    return -1;
}

int UserDialog::ItemOfWindow(HWND window) const
{
    while (window && GetParent(window) != m_dialog)
        window = GetParent(window);
    if (!window)
        return -1;
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        if (m_items[i].window == window)
            return static_cast<int>(i);
    }
    return -1;
}

void UserDialog::OnCommand(int id, int code, HWND control)
{
    if (m_inFunction || m_ended)
        return;
    // A click moves the focus first: that change comes before the press.
    NoteFocus();
    const int item = ItemOfId(id);
    if (item < 0 || (!control && id == IDCANCEL)) {
        // Esc without a CancelButton: the OKButton's press when there is one, else nothing.
        if (id == IDCANCEL && m_cancelItem < 0 && m_okItem >= 0)
            PressButton(m_okItem);
        else if (id == IDCANCEL && m_cancelItem >= 0)
            PressButton(m_cancelItem);
        return;
    }
    const DialogItemTemplate& syntax = m_definition.Template().items[static_cast<std::size_t>(item)];
    HWND window = m_items[static_cast<std::size_t>(item)].window;
    switch (syntax.kind) {
    case DialogItemKind::kPushButton:
    case DialogItemKind::kOKButton:
    case DialogItemKind::kCancelButton:
        if (code == BN_CLICKED)
            PressButton(item);
        break;
    case DialogItemKind::kCheckBox:
        if (code == BN_CLICKED) {
            const int state = static_cast<int>(SendMessageW(window, BM_GETCHECK, 0, 0));
            // A three-state box that is not automatic is changed by the dialog function: it is told the
            // state the click asks for.
            Enqueue(2, item, syntax.options == 1 ? (state + 1) % 3 : state);
        }
        break;
    case DialogItemKind::kOptionButton:
        if (code == BN_CLICKED) {
            const int group = m_items[static_cast<std::size_t>(item)].group;
            int value = 0;
            if (group >= 0 && ItemValue(group, value))
                Enqueue(2, group, value);
        }
        break;
    case DialogItemKind::kListBox:
        if (code == LBN_SELCHANGE)
            Enqueue(2, item, static_cast<long>(SendMessageW(window, LB_GETCURSEL, 0, 0)));
        else if (code == LBN_DBLCLK && m_defaultItem >= 0) {
            HWND button = m_items[static_cast<std::size_t>(m_defaultItem)].window;
            if (IsWindowEnabled(button) && IsWindowVisible(button))
                PressButton(m_defaultItem);
        }
        break;
    case DialogItemKind::kDropListBox:
    case DialogItemKind::kComboBox:
        if (code == CBN_DBLCLK && m_defaultItem >= 0) {
            HWND button = m_items[static_cast<std::size_t>(m_defaultItem)].window;
            if (IsWindowEnabled(button) && IsWindowVisible(button))
                PressButton(m_defaultItem);
        } else if (!syntax.HoldsText() && code == CBN_SELCHANGE) {
            Enqueue(2, item, static_cast<long>(SendMessageW(window, CB_GETCURSEL, 0, 0)));
        } else if (syntax.HoldsText() && (code == CBN_EDITCHANGE || code == CBN_SELCHANGE)) {
            if (m_pendingText != item)
                FlushPendingText();
            m_pendingText = item;
        }
        break;
    case DialogItemKind::kTextBox:
        if (code == EN_CHANGE) {
            if (m_pendingText != item)
                FlushPendingText();
            m_pendingText = item;
        }
        break;
    default: break;
    }
}

void UserDialog::PressButton(int item)
{
    FlushPendingText();
    Enqueue(kActionPress, item, m_items[static_cast<std::size_t>(item)].id);
}

void UserDialog::Enqueue(int action, int item, long value) { m_queue.push_back(Event{action, item, value}); }

void UserDialog::FlushPendingText()
{
    if (m_pendingText < 0)
        return;
    const int item = m_pendingText;
    m_pendingText = -1;
    Enqueue(3, item, AnsiLength(ItemText(item)));
}

void UserDialog::NoteFocus()
{
    const int item = ItemOfWindow(GetFocus());
    if (item < 0 || item == m_lastFocus)
        return;
    FlushPendingText();
    Enqueue(4, item, m_lastFocus);
    m_lastFocus = item;
}

bool UserDialog::HandleFunctionKey(const MSG& message)
{
    const bool down = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
    const bool up = message.message == WM_KEYUP || message.message == WM_SYSKEYUP;
    if ((!down && !up) || message.wParam < VK_F1 || message.wParam > VK_F24 || !HasWindow() ||
        (message.hwnd != m_dialog && !IsChild(m_dialog, message.hwnd)))
        return false;
    long code = static_cast<long>(message.wParam - VK_F1 + 1);
    if (GetKeyState(VK_SHIFT) < 0)
        code += 256;
    if (GetKeyState(VK_CONTROL) < 0)
        code += 512;
    // F10 alone arrives as a system key too: only the Alt state (bit 29 of a system key's data) adds Alt.
    const bool systemKey = message.message == WM_SYSKEYDOWN || message.message == WM_SYSKEYUP;
    if ((systemKey && (message.lParam & (1 << 29))) || GetKeyState(VK_MENU) < 0)
        code += 1024;
    // Alt+F4 closes the dialog as usual.
    if (code == 1028)
        return false;
    if (down) {
        FlushPendingText();
        Enqueue(6, ItemOfWindow(GetFocus()), code);
    }
    return true;
}

bool UserDialog::Deliver()
{
    const Event event = m_queue.front();
    m_queue.pop_front();
    bool result = false;
    const int action = event.action == kActionPress ? 2 : event.action;
    if (!CallFunction(action, event.item, event.value, result))
        return false;
    if (m_endRequested) {
        Finish(m_requestedCode);
        return false;
    }
    if (event.action == 5)
        m_idle = result;
    if (event.action != kActionPress || result)
        return true;
    // The pressed button ends the dialog.
    switch (Kind(event.item)) {
    case DialogItemKind::kOKButton: Finish(-1); break;
    case DialogItemKind::kCancelButton: Finish(0); break;
    default: Finish(m_items[static_cast<std::size_t>(event.item)].pushNumber); break;
    }
    return false;
}

bool UserDialog::CallFunction(int action, int item, long value, bool& result)
{
    result = false;
    const Procedure* function = m_definition.Template().function;
    if (!function)
        return true;
    if (!function->code) {
        m_failed = true;
        return m_machine.SignalError(kErrorInvalidArgument);
    }
    const std::wstring name = item >= 0 ? ItemName(item) : std::wstring();
    ValueStack own;
    ValueStack& values = m_machine.Values();
    values.Swap(own);
    struct Restore {
        ValueStack& values;
        ValueStack& own;
        bool& inFunction;
        ~Restore()
        {
            values.CutBack(0);
            values.Swap(own);
            inFunction = false;
        }
    } restore{values, own, m_inFunction};
    m_inFunction = true;
    Variant* slots[4] = {values.Push(), values.Push(), values.Push(), values.Push()};
    for (Variant* slot : slots) {
        if (!slot) {
            m_failed = true;
            return m_machine.RaiseOutOfMemory();
        }
    }
    slots[0]->SetError(kResultSlotStatus);
    if (!slots[1]->SetString(name)) {
        m_failed = true;
        return m_machine.RaiseOutOfMemory();
    }
    slots[2]->SetInteger(static_cast<SHORT>(action));
    if (function->parameters[2].type.code == TypeCode(TypeCode::kLong))
        slots[3]->SetLong(value);
    else
        slots[3]->SetInteger(static_cast<SHORT>(value));
    const int marker = m_machine.ExecutionMarker();
    const bool finished = m_machine.RunHostCall(*function->code, m_instance, Interpreter::ErrorExit::kToCaller);
    m_machine.SetExecutionMarker(marker);
    if (!finished) {
        // An error the function did not trap is raised again at the Dialog statement.
        const ErrorRecord error = m_machine.Error();
        if (!HaltFlags::MustStop() && error.number != 0) {
            m_failed = true;
            return m_machine.RaiseRuntimeError(error.number, error.description, error.source, error.helpFile,
                                               error.helpContext);
        }
        if (HaltFlags::MustStop())
            m_failed = true;
        else
            m_abandoned = true;
        return false;
    }
    if (values.Size() > 0) {
        Variant answer(values.At(0));
        const RaiseFn previous = SetRaiseHandler(nullptr);
        result = ChangeType(answer, VT_I4) && answer.Long() != 0;
        (void)SetRaiseHandler(previous);
    }
    return true;
}

bool UserDialog::StopRequested() const
{
    return HaltFlags::Has(HaltFlags::kAction | HaltFlags::kStopMask) || m_machine.RunLevel() <= 0;
}

void UserDialog::Finish(int code)
{
    if (m_ended)
        return;
    m_ended = true;
    m_exitCode = code;
}

void UserDialog::End(int code)
{
    m_endRequested = true;
    m_requestedCode = code;
    if (!m_inFunction)
        Finish(code);
}

void UserDialog::Close()
{
    if (t_current == this)
        t_current = m_previous;
    if (!m_dialog)
        return;
    const bool wasActive = GetActiveWindow() == m_dialog || !IsWindowVisible(m_dialog);
    // Only an owner that the dialog disabled is enabled again.
    if (m_ownerWasEnabled && IsWindow(m_owner))
        EnableWindow(m_owner, TRUE);
    HWND dialog = std::exchange(m_dialog, nullptr);
    DestroyWindow(dialog);
    if (m_owner && IsWindow(m_owner) && wasActive) {
        BringWindowToTop(m_owner);
        SetActiveWindow(m_owner);
        SetFocus(m_owner);
    }
}

// The Dlg functions.

int UserDialog::FindItem(std::wstring_view name) const
{
    for (int i = 0; i < ItemCount(); ++i) {
        const std::wstring own = ItemName(i);
        if (own.size() == name.size() &&
            CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, own.data(), static_cast<int>(own.size()), name.data(),
                           static_cast<int>(name.size())) == CSTR_EQUAL)
            return i;
    }
    return -1;
}

std::wstring UserDialog::ItemName(int item) const
{
    const DialogItemTemplate& syntax = m_definition.Template().items[static_cast<std::size_t>(item)];
    if (!syntax.field.empty())
        return std::wstring(syntax.field.begin(), syntax.field.end());
    HWND window = m_items[static_cast<std::size_t>(item)].window;
    return ItemNameFromText(window ? WindowText(window) : std::wstring());
}

std::wstring UserDialog::ItemText(int item) const
{
    const DialogItemTemplate& syntax = m_definition.Template().items[static_cast<std::size_t>(item)];
    HWND window = m_items[static_cast<std::size_t>(item)].window;
    if (!window)
        return {};
    if (syntax.kind == DialogItemKind::kListBox || (syntax.kind == DialogItemKind::kDropListBox && !syntax.HoldsText())) {
        const bool list = syntax.kind == DialogItemKind::kListBox;
        const LRESULT selected = SendMessageW(window, list ? LB_GETCURSEL : CB_GETCURSEL, 0, 0);
        if (selected < 0)
            return {};
        const LRESULT length = SendMessageW(window, list ? LB_GETTEXTLEN : CB_GETLBTEXTLEN, static_cast<WPARAM>(selected), 0);
        std::wstring text(static_cast<std::size_t>(length < 0 ? 0 : length) + 1, L'\0');
        SendMessageW(window, list ? LB_GETTEXT : CB_GETLBTEXT, static_cast<WPARAM>(selected),
                     reinterpret_cast<LPARAM>(text.data()));
        text.resize(static_cast<std::size_t>(length < 0 ? 0 : length));
        return text;
    }
    return WindowText(window);
}

std::wstring UserDialog::Caption() const { return WindowText(m_dialog); }

void UserDialog::SetItemText(int item, std::wstring_view text)
{
    const DialogItemTemplate& syntax = m_definition.Template().items[static_cast<std::size_t>(item)];
    HWND window = m_items[static_cast<std::size_t>(item)].window;
    if (!window)
        return;
    const std::wstring value(text);
    if (syntax.kind == DialogItemKind::kListBox || (syntax.kind == DialogItemKind::kDropListBox && !syntax.HoldsText())) {
        const bool list = syntax.kind == DialogItemKind::kListBox;
        const LRESULT found = SendMessageW(window, list ? LB_FINDSTRINGEXACT : CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                           reinterpret_cast<LPARAM>(value.c_str()));
        SendMessageW(window, list ? LB_SETCURSEL : CB_SETCURSEL, static_cast<WPARAM>(found), 0);
        return;
    }
    SetWindowTextW(window, value.c_str());
    if (syntax.kind == DialogItemKind::kPicture)
        (void)ReloadPicture(window);
}

void UserDialog::SetCaption(std::wstring_view text) { SetWindowTextW(m_dialog, std::wstring(text).c_str()); }

bool UserDialog::ItemValue(int item, int& value) const
{
    const DialogItemTemplate& syntax = m_definition.Template().items[static_cast<std::size_t>(item)];
    const Item& own = m_items[static_cast<std::size_t>(item)];
    switch (syntax.kind) {
    case DialogItemKind::kCheckBox: value = static_cast<int>(SendMessageW(own.window, BM_GETCHECK, 0, 0)); return true;
    case DialogItemKind::kOptionGroup:
        value = -1;
        for (std::size_t i = 0; i < own.buttons.size(); ++i) {
            if (SendMessageW(m_items[static_cast<std::size_t>(own.buttons[i])].window, BM_GETCHECK, 0, 0) == BST_CHECKED)
                value = static_cast<int>(i);
        }
        return true;
    case DialogItemKind::kListBox: value = static_cast<int>(SendMessageW(own.window, LB_GETCURSEL, 0, 0)); return true;
    case DialogItemKind::kDropListBox:
        if (syntax.HoldsText())
            return false;
        value = static_cast<int>(SendMessageW(own.window, CB_GETCURSEL, 0, 0));
        return true;
    default: return false;
    }
}

bool UserDialog::SetItemValue(int item, int value)
{
    const DialogItemTemplate& syntax = m_definition.Template().items[static_cast<std::size_t>(item)];
    const Item& own = m_items[static_cast<std::size_t>(item)];
    switch (syntax.kind) {
    case DialogItemKind::kCheckBox: SendMessageW(own.window, BM_SETCHECK, static_cast<WPARAM>(value), 0); return true;
    case DialogItemKind::kOptionGroup:
        for (std::size_t i = 0; i < own.buttons.size(); ++i)
            SendMessageW(m_items[static_cast<std::size_t>(own.buttons[i])].window, BM_SETCHECK,
                         static_cast<int>(i) == value ? BST_CHECKED : BST_UNCHECKED, 0);
        return true;
    case DialogItemKind::kListBox: SendMessageW(own.window, LB_SETCURSEL, static_cast<WPARAM>(value), 0); return true;
    case DialogItemKind::kDropListBox:
        if (syntax.HoldsText())
            return false;
        SendMessageW(own.window, CB_SETCURSEL, static_cast<WPARAM>(value), 0);
        return true;
    default: return false;
    }
}

bool UserDialog::IsEnabled(int item) const
{
    const Item& own = m_items[static_cast<std::size_t>(item)];
    if (!own.window)
        return !own.buttons.empty() && IsWindowEnabled(m_items[static_cast<std::size_t>(own.buttons[0])].window);
    return IsWindowEnabled(own.window) != FALSE;
}

void UserDialog::Enable(int item, bool on)
{
    const Item& own = m_items[static_cast<std::size_t>(item)];
    if (!own.window) {
        for (int button : own.buttons)
            EnableWindow(m_items[static_cast<std::size_t>(button)].window, on);
        return;
    }
    EnableWindow(own.window, on);
}

bool UserDialog::IsVisible(int item) const
{
    const Item& own = m_items[static_cast<std::size_t>(item)];
    HWND window = own.window ? own.window
                  : own.buttons.empty() ? nullptr
                                        : m_items[static_cast<std::size_t>(own.buttons[0])].window;
    return window && (GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0;
}

void UserDialog::Show(int item, bool on)
{
    const Item& own = m_items[static_cast<std::size_t>(item)];
    if (!own.window) {
        for (int button : own.buttons)
            ShowWindow(m_items[static_cast<std::size_t>(button)].window, on ? SW_SHOWNA : SW_HIDE);
        return;
    }
    ShowWindow(own.window, on ? SW_SHOWNA : SW_HIDE);
}

std::wstring UserDialog::FocusName() const
{
    const int item = ItemOfWindow(GetFocus());
    return item >= 0 ? ItemName(item) : std::wstring();
}

void UserDialog::Focus(int item)
{
    const Item& own = m_items[static_cast<std::size_t>(item)];
    HWND window = own.window ? own.window
                  : own.buttons.empty() ? nullptr
                                        : m_items[static_cast<std::size_t>(own.buttons[0])].window;
    if (window)
        SetFocus(window);
}

int UserDialog::SetList(int item, const std::vector<std::wstring>& entries)
{
    const DialogItemKind kind = Kind(item);
    HWND window = m_items[static_cast<std::size_t>(item)].window;
    if (!IsList(kind) || !window)
        return -1;
    const bool list = kind == DialogItemKind::kListBox;
    const bool inFunction = std::exchange(m_inFunction, true);
    SendMessageW(window, list ? LB_RESETCONTENT : CB_RESETCONTENT, 0, 0);
    for (const std::wstring& entry : entries)
        SendMessageW(window, list ? LB_ADDSTRING : CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entry.c_str()));
    m_inFunction = inFunction;
    return static_cast<int>(entries.size());
}

int UserDialog::ListCount(int item) const
{
    const DialogItemKind kind = Kind(item);
    HWND window = m_items[static_cast<std::size_t>(item)].window;
    if (!IsList(kind) || !window)
        return -1;
    const bool list = kind == DialogItemKind::kListBox;
    return static_cast<int>(SendMessageW(window, list ? LB_GETCOUNT : CB_GETCOUNT, 0, 0));
}

bool UserDialog::SetPicture(int item, std::wstring_view fileName, int type)
{
    if (Kind(item) != DialogItemKind::kPicture)
        return false;
    HWND window = m_items[static_cast<std::size_t>(item)].window;
    SetWindowTextW(window, std::wstring(fileName).c_str());
    const LONG style = GetWindowLongW(window, GWL_STYLE);
    SetWindowLongW(window, GWL_STYLE, (style & ~0x1F) | (type & 0x1F));
    return ReloadPicture(window);
}

} // namespace brannoc
