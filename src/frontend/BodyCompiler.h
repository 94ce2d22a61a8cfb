#pragma once
// The statement and expression compiler: turns each procedure body into a CompiledProcedure (statement
// vector aligned with the source lines, postfix expression code, frame layout) and attaches it to the
// procedure.
#include "frontend/Compiler.h"

namespace brannoc {

class BodyCompiler final : public ProcedureBodyCompiler {
public:
    [[nodiscard]] bool CompileBody(Module& module, Procedure& procedure, Lexer& lexer) override;
};

// The listing form of source text: keywords in the keyword table's case, continuations joined, blanks
// and everything else as written.
std::string ListingOf(std::string_view source);

} // namespace brannoc
