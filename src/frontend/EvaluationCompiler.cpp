#include "frontend/EvaluationCompiler.h"

#include "frontend/BodyParser.h"
#include "frontend/Lexer.h"
#include "frontend/Module.h"

namespace brannoc {
namespace {

// Keeps the first error that the compile reports.
class FirstError final : public CompileErrorSink {
public:
    explicit FirstError(CompileError& target) : m_target(target) {}
    void Report(const CompileError& error) override
    {
        if (!m_seen)
            m_target = error;
        m_seen = true;
    }
    bool Seen() const { return m_seen; }

private:
    CompileError& m_target;
    bool m_seen = false;
};

// The module's compiled items are lent to a parse state while the body compiles.
class LentState final {
public:
    explicit LentState(Module& module) : m_module(module), m_lent(module.LendState()) {}
    ~LentState()
    {
        if (m_lent)
            m_module.ReturnState();
    }
    LentState(const LentState&) = delete;
    LentState& operator=(const LentState&) = delete;

private:
    Module& m_module;
    bool m_lent;
};

std::unique_ptr<Procedure> HiddenFunction(const std::vector<LocalName>& frameNames)
{
    auto procedure = std::make_unique<Procedure>();
    procedure->name = std::string(kEvaluationResultName);
    procedure->kind = ProcedureKind::Function;
    procedure->visibility = Visibility::Private;
    procedure->result.code = TypeCode(TypeCode::kVariant);
    procedure->firstLine = 1;
    procedure->lineCount = 3;
    for (const LocalName& name : frameNames) {
        Parameter parameter;
        parameter.name = name.upperName;
        parameter.type.code = name.ref.type;
        parameter.type.userType = name.userType;
        procedure->parameters.push_back(std::move(parameter));
    }
    return procedure;
}

} // namespace

bool CompileEvaluation(Module& module, const std::vector<LocalName>& frameNames, std::string_view line,
                       std::string_view blockedKeywords, CompiledEvaluation& out)
{
    // A line break inside the text would end the hidden Function's line early.
    if (line.find_first_of("\r\n") != std::string_view::npos) {
        out.error.number = MessageNumber(CompileMessage::UnexpectedText);
        return false;
    }
    out.text = "Function " + std::string(kEvaluationResultName) + "()\r\n" + std::string(line) + "\r\nEnd Function\r\n";
    out.procedure = HiddenFunction(frameNames);
    out.procedure->text = out.text;

    Lexer lexer;
    FirstError errors(out.error);
    lexer.SetErrorSink(&errors);
    lexer.SetErrorLimit(1);
    lexer.SetBlockedKeywords(blockedKeywords);
    LentState lent(module);
    if (!module.State())
        return false;
    lexer.SetText(out.text.c_str(), module.Name());
    lexer.SeekLine(1);
    body::BodyParser parser(module, *out.procedure, lexer);
    parser.SetOuterLocals(&frameNames);
    const bool compiled = parser.Compile() && !errors.Seen() && out.procedure->code;
    lexer.SetText(nullptr);
    return compiled;
}

} // namespace brannoc
