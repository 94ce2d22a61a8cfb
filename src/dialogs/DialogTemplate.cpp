#include "dialogs/DialogTemplate.h"

namespace brannoc {

namespace {

// Identifies the engine's own dialog templates among IUnknown pointers held by constants.
constexpr GUID kDialogTemplateId = {0x6b2a7c41, 0x55d3, 0x4e0b, {0x9a, 0x1f, 0x3c, 0x7e, 0x20, 0x81, 0xd4, 0x12}};

} // namespace

const wchar_t* DialogItemKeyword(DialogItemKind kind)
{
    switch (kind) {
    case DialogItemKind::kText: return L"Text";
    case DialogItemKind::kTextBox: return L"TextBox";
    case DialogItemKind::kGroupBox: return L"GroupBox";
    case DialogItemKind::kCheckBox: return L"CheckBox";
    case DialogItemKind::kOptionGroup: return L"OptionGroup";
    case DialogItemKind::kOptionButton: return L"OptionButton";
    case DialogItemKind::kComboBox: return L"ComboBox";
    case DialogItemKind::kDropListBox: return L"DropListBox";
    case DialogItemKind::kListBox: return L"ListBox";
    case DialogItemKind::kPushButton: return L"PushButton";
    case DialogItemKind::kOKButton: return L"OKButton";
    case DialogItemKind::kCancelButton: return L"CancelButton";
    case DialogItemKind::kPicture: return L"Picture";
    }
    return L"";
}

DialogTemplate* DialogTemplate::From(IUnknown* object)
{
    void* found = nullptr;
    if (!object || FAILED(object->QueryInterface(kDialogTemplateId, &found)))
        return nullptr;
    auto* dialog = static_cast<DialogTemplate*>(found);
    dialog->Release();
    return dialog;
}

HRESULT __stdcall DialogTemplate::QueryInterface(REFIID id, void** object)
{
    if (!object)
        return E_POINTER;
    if (id == IID_IUnknown || id == kDialogTemplateId) {
        *object = static_cast<IUnknown*>(this);
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

ULONG __stdcall DialogTemplate::AddRef() { return static_cast<ULONG>(++m_references); }

ULONG __stdcall DialogTemplate::Release()
{
    const LONG left = --m_references;
    if (left == 0)
        delete this;
    return static_cast<ULONG>(left);
}

} // namespace brannoc
