#include "code/ElementArguments.h"

#include "code/MemberCall.h"
#include "exec/Interpreter.h"
#include "values/ArrayStorage.h"

namespace brannoc {

namespace {

VARIANT& FrameSlot(const RunContext& context, int index)
{
    return static_cast<VARIANT*>(context.activation->Locals())[index];
}

// The slot that keeps where the element lives: VT_BYREF with the element's kind, or Empty when nothing
// goes back.
VARIANT& AddressSlot(const RunContext& context, const ExprOp& op) { return FrameSlot(context, op.variable + 1); }

} // namespace

bool PushElementArgument(const RunContext& context, const ExprOp& op)
{
    ValueStack& values = context.interpreter->Values();
    VARIANT& copy = FrameSlot(context, op.variable);
    VARIANT& address = AddressSlot(context, op);
    ClearSlot(address);
    VARIANT* storage = StorageOf(context, op.scope, op.index, op.module);
    if (!storage)
        return false;
    if (HoldsObject(*storage))
        return AccessDefaultMember(context, *storage, op.count, nullptr);
    VARTYPE tag = VT_EMPTY;
    void* element = ElementOf(context, storage, op.count, tag);
    if (!element)
        return false;
    Variant value;
    if (!LoadElement(element, tag, value) || !StoreTyped(copy, op.type, value))
        return false;
    SAFEARRAY* array = ArrayOf(storage);
    values.CutBack(values.Size() - static_cast<std::size_t>(op.count));
    Variant* slot = values.Push();
    if (!slot)
        return context.interpreter->RaiseOutOfMemory();
    MakeReference(*slot, &copy, op.type);
    address.vt = static_cast<VARTYPE>(VT_BYREF | tag);
    address.byref = element;
    // Until the argument leaves the stack the array keeps its storage, so the address stays valid.
    context.interpreter->References().Note(values, values.Size() - 1, slot->Raw().byref, &array, 1);
    return true;
}

bool WriteBackElementArgument(const RunContext& context, const ExprOp& op)
{
    VARIANT& copy = FrameSlot(context, op.variable);
    VARIANT& address = AddressSlot(context, op);
    if ((address.vt & VT_BYREF) == 0)
        return true;
    const auto tag = static_cast<VARTYPE>(address.vt & ~VT_BYREF);
    void* element = address.byref;
    address.vt = VT_EMPTY;
    Variant value;
    value.Attach(copy);
    const bool stored = StoreTypedElement(element, tag, op.type, value);
    value.Detach(copy);
    ClearSlot(copy);
    return stored;
}

} // namespace brannoc
