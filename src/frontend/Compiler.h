#pragma once
// The compile driver: loads a named module and every module it names in '#Uses, reads headers and
// declarations of all of them before any procedure body, decides the entry procedures and counts and
// reports compile errors.
#include "frontend/CompileError.h"
#include "frontend/Lexer.h"
#include "frontend/Module.h"
#include "frontend/ModuleSource.h"

#include <memory>
#include <string>
#include <vector>

namespace brannoc {

enum class ParseResult : int { Okay = 1, SyntaxErrors = 0, NotFound = -1, AllocFailed = -2 };

// Compiles procedure bodies; the statement compiler plugs in here. Without one, bodies are only recorded.
class ProcedureBodyCompiler {
public:
    virtual ~ProcedureBodyCompiler() = default;
    [[nodiscard]] virtual bool CompileBody(Module& module, Procedure& procedure, Lexer& lexer) = 0;
};

class Compiler final : private CompileErrorSink {
public:
    explicit Compiler(ModuleSource& source);
    ~Compiler() override;

    // Compiles the named module (and what it uses) with load mode 0 (macro), 2 or 3 (code module).
    ParseResult Parse(std::string_view name, int mode);

    Lexer& GetLexer() { return m_lexer; }
    void SetErrorLimit(int limit) { m_lexer.SetErrorLimit(limit); }
    void SetBodyCompiler(ProcedureBodyCompiler* compiler) { m_bodyCompiler = compiler; }
    // Also passes every reported error on (the engine's error record and notification).
    void SetErrorSink(CompileErrorSink* sink) { m_forward = sink; }

    const std::vector<CompileError>& Errors() const { return m_errors; }
    void ClearErrors() { m_errors.clear(); }
    // A loaded (or being compiled) module by its resolved name, compared without regard to case.
    Module* FindModule(std::string_view name) const;
    // The module the last successful Parse made (the top of what it compiled), or null.
    Module* ParsedModule() const { return m_parsed; }
    // Every loaded module, oldest first.
    const std::vector<std::unique_ptr<Module>>& Modules() const { return m_modules; }
    // Destroys a loaded module; no other module names it in '#Uses any more.
    void Release(Module* module) { DestroyModule(module); }
    bool IsCompiling() const { return m_compiling; }

    // The phases, public so that the engine and tests can drive them one by one.
    void ParseDeclarations1(Module& module, ParseResult& result);
    void Uses(Module& module, ParseResult& result);
    void ParseDeclarations2(Module& module, ParseResult& result);
    void ParseDefinitions(Module& module, ParseResult& result);
    // Resolves the module's type names and lays out its records, once.
    void PrepareTypes(Module& module);

    // Whether a loaded class or object module goes by the name (its own or its record name).
    bool HasClassModule(std::string_view name) const;

private:
    void Report(const CompileError& error) override;
    Module* CreateModule(std::string_view name, int mode, ParseResult& result);
    void DeclarationPhases(Module& module, ParseResult& result);
    void Definitions(Module& module, ParseResult& result);
    void ReadHeader(Module& module);
    void ReadReferences(Module& module);
    void FindProjectModules(Module& module);
    [[nodiscard]] bool ScanUses(Module& module, std::string_view keyword, ParseResult& result);
    void DecideEntries(Module& module);
    void CheckEntry(Module& module, Procedure* procedure, bool mustBePrivate);
    void DestroyModule(Module* module);
    // Trace lines of the phases: "*Phase(\"module\")" at their entry, "Result=..." at their end.
    void TraceEntry(std::string_view phase, std::string_view module);
    void TraceResult(ParseResult result);
    static bool IsClassName(void* context, std::string_view name);

    ModuleSource& m_source;
    Lexer m_lexer;
    std::vector<std::unique_ptr<Module>> m_modules;
    std::vector<CompileError> m_errors;
    CompileErrorSink* m_forward = nullptr;
    ProcedureBodyCompiler* m_bodyCompiler = nullptr;
    bool m_compiling = false;
    // Modules being read through '#Uses lines, one inside the other.
    int m_usesDepth = 0;
    Module* m_parsed = nullptr;
};

} // namespace brannoc
