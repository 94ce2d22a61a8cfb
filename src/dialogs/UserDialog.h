#pragma once
// A user dialog while it is up: its windows, built from a definition and the dialog variable's
// fields, the events that become calls of the dialog function (actions 1 to 6, queued and delivered in
// order), the exit, and what the Dlg functions ask of it. One dialog is current per thread (the
// innermost when a dialog function shows another).
#include "dialogs/DialogDefinition.h"
#include "dialogs/DialogUnits.h"

#include <windows.h>

#include <deque>
#include <string>
#include <vector>

namespace brannoc {

class Interpreter;
class ModuleInstance;

class UserDialog final {
public:
    // DefaultButton as the Dialog call gives it; kNoDefaultButton when it was omitted.
    static constexpr int kNoDefaultButton = -32769;

    UserDialog(const DialogDefinition& definition, Interpreter& machine, ModuleInstance* instance);
    ~UserDialog();
    UserDialog(const UserDialog&) = delete;
    UserDialog& operator=(const UserDialog&) = delete;

    enum class Outcome { kEnded, kFailed, kAbandoned };
    // Shows the dialog with the fields of record, runs it and copies the values back unless it ended
    // with 0; owner (null for none) owns the dialog and is disabled while it is up. kFailed: an error has
    // been raised; kAbandoned: the macro was stopped while it was up.
    Outcome Run(void* record, int defaultButton, HWND owner, int& exitCode);

    // The thread's current dialog, or null.
    static UserDialog* Current();
    bool HasWindow() const { return m_dialog != nullptr && IsWindow(m_dialog); }

    // The Dlg functions. Item numbers are checked by the caller (ItemCount, FindItem).
    int ItemCount() const { return static_cast<int>(m_items.size()); }
    // The number of the item named (without regard to case), or -1.
    int FindItem(std::wstring_view name) const;
    std::wstring ItemName(int item) const;
    DialogItemKind ItemKind(int item) const { return Kind(item); }
    int ControlId(int item) const { return m_items[static_cast<std::size_t>(item)].id; }
    std::wstring ItemText(int item) const;
    std::wstring Caption() const;
    void SetItemText(int item, std::wstring_view text);
    void SetCaption(std::wstring_view text);
    // False for items without a value.
    bool ItemValue(int item, int& value) const;
    bool SetItemValue(int item, int value);
    bool IsEnabled(int item) const;
    void Enable(int item, bool on);
    bool IsVisible(int item) const;
    void Show(int item, bool on);
    std::wstring FocusName() const;
    void Focus(int item);
    // Replaces a list's entries; -1 when the item has no list.
    int SetList(int item, const std::vector<std::wstring>& entries);
    // The number of entries in the list of a ComboBox, DropListBox or ListBox; -1 for other items.
    int ListCount(int item) const;
    // False for an item that is not a Picture, or a picture that must load and does not.
    bool SetPicture(int item, std::wstring_view fileName, int type);
    // Ends the dialog with code once the dialog function call in progress returns.
    void End(int code);
    HWND Window() const { return m_dialog; }

private:
    struct Item {
        HWND window = nullptr;
        int id = 0;
        int group = -1;              // OptionButton: its OptionGroup's item number
        std::vector<int> buttons;    // OptionGroup: its buttons' item numbers
        int pushNumber = 0;          // PushButton: 1-based among the push buttons
    };
    struct Event {
        int action;
        int item;
        long value;
    };

    static INT_PTR CALLBACK DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool Build();
    bool CreateItem(int index);
    void FillFromRecord(const void* record);
    bool CopyToRecord(void* record) const;
    bool FillList(int index, const Variant& list);
    void PlaceWindow();
    void ChooseDefaultButton(int defaultButton);
    DialogItemKind Kind(int item) const { return m_definition.Template().items[static_cast<std::size_t>(item)].kind; }
    int ItemOfWindow(HWND window) const;
    int ItemOfId(int id) const;
    // Events.
    void OnCommand(int id, int code, HWND control);
    void PressButton(int item);
    void Enqueue(int action, int item, long value);
    void FlushPendingText();
    void NoteFocus();
    bool HandleFunctionKey(const MSG& message);
    // Delivers the first queued event; false when the dialog must end (or failed).
    bool Deliver();
    // Calls the dialog function; false after an error (m_failed) or a stop.
    bool CallFunction(int action, int item, long value, bool& result);
    bool StopRequested() const;
    void Finish(int code);
    void Close();

    const DialogDefinition& m_definition;
    Interpreter& m_machine;
    ModuleInstance* m_instance;
    UserDialog* m_previous = nullptr;
    HWND m_dialog = nullptr;
    HWND m_owner = nullptr;
    bool m_ownerWasEnabled = false;
    std::vector<Item> m_items;
    DialogUnits m_units;
    int m_defaultItem = -1;
    int m_okItem = -1;
    int m_cancelItem = -1;
    std::deque<Event> m_queue;
    int m_pendingText = -1;
    int m_lastFocus = -1;
    bool m_idle = true;
    bool m_ended = false;
    bool m_failed = false;
    bool m_abandoned = false;
    int m_exitCode = 0;
    bool m_endRequested = false;
    int m_requestedCode = 0;
    bool m_inFunction = false;
};

} // namespace brannoc
