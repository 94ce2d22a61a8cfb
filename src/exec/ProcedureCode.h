#pragma once
// What the interpreter needs of a compiled procedure. The front end's procedure class derives from this
// and supplies the statement vector and the frame layout; executing a procedure object calls it.
#include "code/Node.h"
#include "values/Variant.h"

#include <cstddef>
#include <cstdint>

namespace brannoc {

// Status of the placeholder a Function's caller pushes for the result.
constexpr SCODE kResultSlotStatus = static_cast<SCODE>(0x8004FFFE);

class Activation;

// A statement loop of a procedure's own (a register form): runs the activation as its Step does from
// state 1 on, with data the procedure gave.
using StatementRunner = bool (*)(Activation& activation, ExecEntry& entry, const void* data);

// A procedure's statement vector laid out for the interpreter's statement loop: entry i and whether it
// is empty, read without a virtual call per statement.
struct StatementTable {
    Node* const* statements = nullptr;
    const std::uint8_t* empty = nullptr;
    // Index of the last entry.
    int last = -1;
    // The loop that runs the statements, when the procedure has one; else the activation's own.
    StatementRunner runner = nullptr;
    const void* runnerData = nullptr;
};

// How one parameter binds in the common case: a value of the parameter's own storage kind by value
// (when that kind owns nothing), or a reference to a variable of that kind.
struct ParameterBinding {
    VARTYPE tag = VT_EMPTY;
    bool byVal = false;
};

// Copies slots [first, end) of a fresh frame from its image.
inline void CopyFrameImage(VARIANT* slots, const VARIANT* image, int first, int end)
{
    // Most frames of small Functions set up one slot, their result: copied without the loop's set-up.
    if (end - first == 1) {
        slots[first] = image[first];
        return;
    }
    for (int i = first; i < end; ++i)
        slots[i] = image[i];
}

// Binds a parameter slot in the common case: a number, date or Boolean of the parameter's own kind given
// by value (the copy is the value), or a variable of the parameter's own kind (not a record) by reference
// (the slot refers to that variable's cell). False, and nothing done, otherwise.
inline bool BindDirectly(const ParameterBinding& binding, VARIANT& slot, const VARIANT& given)
{
    // Offset of the payload inside a VARIANT (where typed references point).
    constexpr std::size_t kPayloadOffset = 8;
    const VARTYPE tag = binding.tag;
    if (binding.byVal) {
        if (given.vt != tag || !OwnsNothing(tag))
            return false;
        slot = given;
        return true;
    }
    if (given.vt != (VT_BYREF | tag) || tag == VT_RECORD)
        return false;
    slot.vt = VT_BYREF | VT_VARIANT;
    slot.pvarVal = tag == VT_VARIANT ? given.pvarVal
                                     : reinterpret_cast<VARIANT*>(static_cast<char*>(given.byref) - kPayloadOffset);
    return true;
}

// The frame of a procedure laid out for the interpreter's quick call path, published by procedures
// whose fresh frame is a fixed image: the interpreter copies the image, binds the parameters and ends
// the call without the virtual operations below. `image` is null while a procedure has no such layout
// (its calls then take the virtual operations).
struct FrameLayout {
    const VARIANT* image = nullptr;
    const ParameterBinding* bindings = nullptr;
    // Slots that may come to own something and are cleared when the call ends.
    const int* ownerSlots = nullptr;
    int ownerCount = 0;
    int slotCount = 0;
    // The slots a fresh frame sets up (from the image); the rest, up to slotCount, are scratch cells that
    // code writes before it reads them.
    int initializedCount = 0;
    int parameterCount = 0;
    // The slot of a Function's result, or -1.
    int resultSlot = -1;
    // Set by ProcedureCode::SetLayout: the frame's size in bytes when a call may set it up from the image
    // (an image and at least one slot), else the largest size, which no kept frame block reaches.
    std::size_t quickFrameBytes = SIZE_MAX;
};

class ProcedureCode : public Node {
public:
    // The statement vector as a table, or an empty table when the procedure answers only through
    // StatementAt and IsEmptyStatement. A table stays valid while the procedure exists and is not
    // being built; replacing a statement (breakpoints) changes its entry in place.
    const StatementTable& Table() const noexcept { return m_table; }
    // The quick call path's frame layout (image null: none).
    const FrameLayout& Layout() const noexcept { return m_layout; }

    // Calls the procedure through the current interpreter (an ordinary call, variant B) and yields.
    [[nodiscard]] bool Execute() override;

    // Index of the last entry of the statement vector (entry i belongs to source line FirstLine() + i).
    virtual int LastStatementIndex() const = 0;
    virtual Node* StatementAt(int index) const = 0;
    // True for blank, comment and label-only lines and for Dim and Const inside the procedure.
    virtual bool IsEmptyStatement(int index) const = 0;

    virtual int ParameterCount() const = 0;
    // Bytes of the frame of locals and parameters; 0 when the procedure has none.
    virtual std::size_t FrameSize() const = 0;
    // Sets up every slot of a frame whose previous contents mean nothing (a frame block is reused from
    // call to call): the locals as their types start, the parameters Empty. False after raising an error.
    [[nodiscard]] virtual bool InitializeLocals(void* frame) = 0;
    // Binds parameter index (declaration order) to its argument on the value stack: a reference to the
    // caller's value when the types allow it, else a converted local copy. False after raising an error.
    [[nodiscard]] virtual bool BindParameter(int index, void* frame, Variant& argument) = 0;
    // Binds every parameter in order to the ParameterCount() arguments from `arguments` on (BindParameter
    // for each); stops at the first that fails.
    [[nodiscard]] virtual bool BindArguments(void* frame, Variant* arguments);
    // Frees what the locals of a frame own; the frame memory itself belongs to the activation.
    virtual void ClearLocals(void* frame) = 0;
    // Called before a call sets up a frame while the procedure has published no frame layout: a
    // procedure that lays its frame out lazily does it now, so that FrameSize answers the final size.
    virtual void PrepareForCalls() {}

    // Puts node in place of entry index of the statement vector and answers the entry it replaced (a
    // break point stands in for its statement this way; putting the answer back undoes it). Null, and
    // nothing changed, for a procedure whose statements cannot be replaced.
    virtual Node* ReplaceStatement(int index, Node* node)
    {
        (void)index;
        (void)node;
        return nullptr;
    }
    // How entry index changes the With depth: 1 for With, -1 for End With, else 0.
    virtual int WithDepthChangeAt(int index) const
    {
        (void)index;
        return 0;
    }
    // Source line of entry 0 (the header line); 0 when the procedure has no source.
    virtual int FirstLine() const { return 0; }

protected:
    void SetTable(const StatementTable& table) noexcept { m_table = table; }
    void SetLayout(const FrameLayout& layout) noexcept
    {
        m_layout = layout;
        m_layout.quickFrameBytes = layout.image && layout.slotCount > 0
                                       ? static_cast<std::size_t>(layout.slotCount) * sizeof(VARIANT)
                                       : SIZE_MAX;
    }

private:
    StatementTable m_table;
    FrameLayout m_layout;
};

} // namespace brannoc
