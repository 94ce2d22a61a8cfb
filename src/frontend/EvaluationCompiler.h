#pragma once
// Compiles the text of an evaluation (the host's Evaluate, the language's Eval) as a hidden Function in
// the scope of a module: one line, between a header and an End line that only this compiler writes.
// When the evaluation belongs to a frame of a procedure, that procedure's variables become by-reference
// parameters of the Function, so that the code reads and assigns them in the frame itself.
#include "code/ProcedureBody.h"
#include "frontend/CompileError.h"
#include "frontend/Symbols.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace brannoc {

class Lexer;
class Module;

// The name of the hidden Function's result inside its one line.
inline constexpr std::string_view kEvaluationResultName = "Evaluation_Result_";

struct CompiledEvaluation {
    // The whole source the Function was compiled from (header, line, End line).
    std::string text;
    std::unique_ptr<Procedure> procedure;
    // The first compile error, when the compile failed.
    CompileError error;
};

// Compiles `line` as the body of the hidden Function in the scope of module (whose compiled items are
// lent to a parse state for the time of the compile). frameNames are the variables of the frame's
// procedure (none without a frame). False after a compile error (in out.error); true with
// out.procedure compiled.
[[nodiscard]] bool CompileEvaluation(Module& module, const std::vector<LocalName>& frameNames, std::string_view line,
                                     std::string_view blockedKeywords, CompiledEvaluation& out);

} // namespace brannoc
