#pragma once
// What the interpreter needs of a compiled procedure. The front end's procedure class derives from this
// and supplies the statement vector and the frame layout; executing a procedure object calls it.
#include "code/Node.h"
#include "values/Variant.h"

#include <cstddef>
#include <cstdint>

namespace brannoc {

// A procedure's statement vector laid out for the interpreter's statement loop: entry i and whether it
// is empty, read without a virtual call per statement.
struct StatementTable {
    Node* const* statements = nullptr;
    const std::uint8_t* empty = nullptr;
};

class ProcedureCode : public Node {
public:
    // The statement vector as a table, or an empty table when the procedure answers only through
    // StatementAt and IsEmptyStatement. A table stays valid while the procedure exists and is not
    // being built; replacing a statement (breakpoints) changes its entry in place.
    const StatementTable& Table() const noexcept { return m_table; }

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

protected:
    void SetTable(const StatementTable& table) noexcept { m_table = table; }

private:
    StatementTable m_table;
};

} // namespace brannoc
