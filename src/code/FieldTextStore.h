#pragma once
// rec.Name = s, people(k).City = names(i), a(i).Label = other.Label: a string read in place (TextOperand)
// stored into a string field of a record read in place (FieldText), with no copy on the value stack and,
// when the field's block has room, no allocation.
#include "code/TextOperand.h"

namespace brannoc {

class FieldTextStore final {
public:
    // Compiles the code of an assignment to record path `path`: the path's index, then the value.
    bool Compile(const Expression& code, int path, const CompiledProcedure& procedure);
    // Where the value's code begins in such code whose path has an index (0: not such code).
    static std::size_t ValueStart(const Expression& code, int path, const CompiledProcedure& procedure);
    // Compiles the same code for the register form, which computed the index with its own operations
    // into the Long at byte offset `positionOffset` of the running frame; the value begins at valueStart.
    bool CompileAt(const Expression& code, std::size_t valueStart, int path, int positionOffset,
                   const CompiledProcedure& procedure);
    bool IsReady() const noexcept { return m_target.IsReady(); }
    // Runs the store; false when it gave up, with nothing changed. True as well after raising (out of
    // memory): the statement then answers with the halt bit set.
    [[nodiscard]] bool Run(const RunContext& context) const;

private:
    FieldText m_target;
    TextOperand m_value;
};

} // namespace brannoc
