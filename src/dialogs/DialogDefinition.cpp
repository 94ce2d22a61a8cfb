// The definition objects and the built-in that makes one each time a Begin Dialog block runs.
#include "dialogs/DialogDefinition.h"

#include "dialogs/DialogBuiltins.h"
#include "exec/Interpreter.h"
#include "library/BuiltinArguments.h"

#include "values/ValueError.h"

namespace brannoc {

namespace {

constexpr GUID kDialogDefinitionId = {0x2f9d1e63, 0x0c7a, 0x4b58, {0x8e, 0x44, 0x61, 0x0a, 0x9b, 0x3d, 0x27, 0xc5}};

// Argument positions of the definition built-in.
constexpr int kSlotArgument = 0;
constexpr int kTemplateArgument = 1;
constexpr int kHeaderArgument = 2;
constexpr int kTitleArgument = 6;
constexpr int kFirstItemArgument = 7;
constexpr int kArgumentsPerItem = 6;

bool ReadNumber(BuiltinArguments& arguments, int index, int& number)
{
    SHORT value = 0;
    if (!arguments.Integer(index, value))
        return false;
    number = value;
    return true;
}

bool ReadBox(BuiltinArguments& arguments, int first, DialogBox& box)
{
    return ReadNumber(arguments, first, box.x) && ReadNumber(arguments, first + 1, box.y) &&
           ReadNumber(arguments, first + 2, box.dx) && ReadNumber(arguments, first + 3, box.dy);
}

bool IsEmptyArgument(BuiltinArguments& arguments, int index, bool& empty)
{
    empty = true;
    if (!arguments.IsGiven(index))
        return true;
    const Variant* value = nullptr;
    if (!arguments.Value(index, value))
        return false;
    empty = FollowByRefChain(&value->Raw())->vt == VT_EMPTY;
    return true;
}

bool DefineDialog(BuiltinArguments& arguments, BuiltinResult&)
{
    const Variant* slot = nullptr;
    const Variant* held = nullptr;
    if (!arguments.Value(kSlotArgument, slot) || !arguments.Value(kTemplateArgument, held))
        return false;
    const VARIANT* heldTemplate = FollowByRefChain(&held->Raw());
    DialogTemplate* dialogTemplate =
        heldTemplate->vt == VT_UNKNOWN ? DialogTemplate::From(heldTemplate->punkVal) : nullptr;
    if (!dialogTemplate || slot->Tag() != (VT_BYREF | VT_VARIANT))
        return RaiseValueError(kErrorInvalidArgument);
    const int itemCount = static_cast<int>(dialogTemplate->items.size());
    if (arguments.Count() != kFirstItemArgument + itemCount * kArgumentsPerItem + dialogTemplate->listCount)
        return RaiseValueError(kErrorInvalidArgument);
    auto* definition = new (std::nothrow) DialogDefinition(*dialogTemplate);
    if (!definition)
        return Interpreter::Current() && Interpreter::Current()->RaiseOutOfMemory();
    Variant made;
    made.SetUnknown(definition, false);
    if (!ReadBox(arguments, kHeaderArgument, definition->box))
        return false;
    bool noTitle = true;
    if (!IsEmptyArgument(arguments, kTitleArgument, noTitle))
        return false;
    if (!noTitle) {
        std::wstring_view title;
        if (!arguments.String(kTitleArgument, title))
            return false;
        definition->title = std::wstring(title);
    }
    definition->items.resize(static_cast<std::size_t>(itemCount));
    for (int i = 0; i < itemCount; ++i) {
        const int first = kFirstItemArgument + i * kArgumentsPerItem;
        DialogItemValues& item = definition->items[static_cast<std::size_t>(i)];
        const DialogItemKind kind = dialogTemplate->items[static_cast<std::size_t>(i)].kind;
        if (kind != DialogItemKind::kOptionGroup && !ReadBox(arguments, first, item.box))
            return false;
        bool empty = true;
        if (!IsEmptyArgument(arguments, first + 4, empty))
            return false;
        if (!empty) {
            std::wstring_view text;
            if (!arguments.String(first + 4, text))
                return false;
            item.text = std::wstring(text);
        }
        if (kind == DialogItemKind::kPicture) {
            if (!ReadNumber(arguments, first + 5, item.pictureType))
                return false;
            const int base = item.pictureType & ~16;
            if ((base != 0 && base != 3) || item.pictureType < 0)
                return RaiseValueError(kErrorInvalidArgument);
        }
    }
    for (int i = 0; i < dialogTemplate->listCount; ++i) {
        const Variant* list = nullptr;
        if (!arguments.Value(kFirstItemArgument + itemCount * kArgumentsPerItem + i, list))
            return false;
        Variant kept;
        // A reference to the variable is kept as it is: the definition lives in the same frame.
        if (list->IsByRef())
            kept.Raw() = list->Raw();
        else if (!kept.CopyFrom(list->Raw()))
            return Interpreter::Current() && Interpreter::Current()->RaiseOutOfMemory();
        definition->lists.push_back(std::move(kept));
    }
    VARIANT* target = slot->Raw().pvarVal;
    VariantClear(target);
    Variant stored(made);
    stored.Detach(*target);
    return true;
}

constexpr BuiltinRecord kDefinitionRecord =
    Instruction(Token::Begin, "?", "", 0, &DefineDialog);

} // namespace

const BuiltinRecord& DialogDefinitionRecord()
{
    static const BuiltinRecord record = [] {
        BuiltinRecord made = kDefinitionRecord;
        made.flags = kBuiltinAnyCount;
        return made;
    }();
    return record;
}

DialogDefinition::DialogDefinition(DialogTemplate& dialogTemplate) : m_template(&dialogTemplate)
{
    m_template->AddRef();
}

DialogDefinition::~DialogDefinition()
{
    // References to list variables are not owned.
    for (Variant& list : lists) {
        if (list.IsByRef())
            list.Raw().vt = VT_EMPTY;
    }
    m_template->Release();
}

DialogDefinition* DialogDefinition::From(IUnknown* object)
{
    void* found = nullptr;
    if (!object || FAILED(object->QueryInterface(kDialogDefinitionId, &found)))
        return nullptr;
    auto* definition = static_cast<DialogDefinition*>(found);
    definition->Release();
    return definition;
}

HRESULT __stdcall DialogDefinition::QueryInterface(REFIID id, void** object)
{
    if (!object)
        return E_POINTER;
    if (id == IID_IUnknown || id == kDialogDefinitionId) {
        *object = static_cast<IUnknown*>(this);
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

ULONG __stdcall DialogDefinition::AddRef() { return static_cast<ULONG>(++m_references); }

ULONG __stdcall DialogDefinition::Release()
{
    const LONG left = --m_references;
    if (left == 0)
        delete this;
    return static_cast<ULONG>(left);
}

} // namespace brannoc
