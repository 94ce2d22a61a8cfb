#pragma once
// Evaluation of expression text in a frame of the execution stack: the host's Evaluate, EvaluatePut and
// EvaluateObject, and the language's Eval. The text is compiled as a hidden Function in the scope of the
// frame's module, with the frame's variables as by-reference parameters, and run as a nested call. The
// hidden Functions are never stepped into.
#include "exec/ErrorRecord.h"
#include "values/Variant.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace brannoc {

class Activation;
class EngineContext;
class Module;
class ModuleInstance;
class ProcedureCode;
struct Procedure;

class Evaluator final {
public:
    enum class Kind {
        kValue,     // the expression's value
        kObject,    // the object the expression yields (assigned with Set)
        kAssign,    // assigns a value expression to the target expression
        kStatement, // runs a statement ("Call ..."); no value
    };

    // How many evaluations may run nested inside each other (Eval inside Eval ...).
    static constexpr std::size_t kMaxNesting = 32;

    explicit Evaluator(EngineContext& context);
    ~Evaluator();
    Evaluator(const Evaluator&) = delete;
    Evaluator& operator=(const Evaluator&) = delete;

    // A host evaluation in the frame at depth (0 the innermost; past the outermost frame, or with no
    // frame, in the hidden module's scope alone). Errors inside it neither stop nor end the run: they
    // fail the evaluation, which answers false with the error in `error`. While one runs, another
    // answers 10509.
    [[nodiscard]] bool EvaluateForHost(Kind kind, const std::string& text, const std::string& value, int depth,
                                       Variant& result, ErrorRecord& error);
    // The language's Eval: the expression in the current frame. False after raising the error where the
    // calling code can trap it.
    [[nodiscard]] bool EvaluateForCode(const std::string& text, Variant& result);
    // The language's Execute: the text as the statements of one line in the current frame. False after
    // raising the error where the calling code can trap it.
    [[nodiscard]] bool ExecuteForCode(const std::string& text);

    // True for the hidden Function of an evaluation in progress.
    bool IsEvaluationCode(const ProcedureCode& code) const;

private:
    struct Running;

    // The body line of the hidden Function for kind.
    static std::string BodyLine(Kind kind, const std::string& text, const std::string& value);
    // Compiles line in the frame's scope (null: the hidden module's) and runs it; result gets the
    // Function's value. False with the error in `error`.
    [[nodiscard]] bool RunLine(const std::string& line, Activation* frame, Variant& result, ErrorRecord& error);
    // Eval and Execute: runs the text in the current frame; an error is raised for the calling code.
    [[nodiscard]] bool RunForCode(Kind kind, const std::string& text, Variant& result);
    Module& HiddenModule();
    Activation* FrameAt(int depth) const;

    EngineContext& m_context;
    std::unique_ptr<Module> m_hidden;
    std::unique_ptr<ModuleInstance> m_hiddenInstance;
    // The evaluations in progress, innermost last.
    std::vector<Running*> m_running;
};

} // namespace brannoc
