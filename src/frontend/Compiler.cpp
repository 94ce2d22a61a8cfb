#include "frontend/Compiler.h"
#include "frontend/NestingLimits.h"
#include "frontend/ReachedNames.h"

#include "frontend/CharClasses.h"
#include "frontend/ConstantReader.h"
#include "frontend/DeclarationReader.h"

#include <algorithm>

namespace brannoc {
namespace {

bool StartsWithWord(std::string_view text, std::string_view word)
{
    return text.size() >= word.size() && SameName(text.substr(0, word.size()), word);
}

void SetResultFromErrors(const Lexer& lexer, ParseResult& result)
{
    if (lexer.ErrorCount() != 0 && result == ParseResult::Okay)
        result = ParseResult::SyntaxErrors;
}

// Where the last line that holds text ends (its CR, or the end of the text).
const char* EndOfLastLine(const std::string& text)
{
    std::size_t end = text.size();
    while (end > 0 && (text[end - 1] == '\r' || text[end - 1] == '\n'))
        --end;
    return text.c_str() + end;
}

// Names of the recognised header attributes; VB_Name takes a String, the others a Boolean.
constexpr std::string_view kHeaderAttributes[] = {"VB_Name", "VB_GlobalNameSpace", "VB_Creatable", "VB_PredeclaredId",
                                                  "VB_Exposed"};

} // namespace

Compiler::Compiler(ModuleSource& source) : m_source(source) { m_lexer.SetErrorSink(this); }

Compiler::~Compiler() = default;

void Compiler::Report(const CompileError& error)
{
    m_errors.push_back(error);
    if (m_forward != nullptr)
        m_forward->Report(error);
}

Module* Compiler::FindModule(std::string_view name) const
{
    for (const auto& module : m_modules)
        if (SameName(module->Name(), name))
            return module.get();
    return nullptr;
}

bool Compiler::HasClassModule(std::string_view name) const
{
    for (const auto& module : m_modules)
        if (module->Kind() != ModuleKind::Plain && (SameName(module->RecordName(), name) || SameName(module->Name(), name)))
            return true;
    return false;
}

bool Compiler::IsClassName(void* context, std::string_view name)
{
    return static_cast<const Compiler*>(context)->HasClassModule(name);
}

Module* Compiler::CreateModule(std::string_view name, int mode, ParseResult& result)
{
    if (m_lexer.MemoryExhausted()) {
        result = ParseResult::AllocFailed;
        return nullptr;
    }
    std::optional<ModuleText> text = m_source.Read(name);
    if (!text) {
        result = ParseResult::NotFound;
        return nullptr;
    }
    auto module = std::make_unique<Module>(std::string(name), std::move(text->text), mode);
    module->SetObjectModuleFile(text->objectModuleFile);
    module->SetSource(&m_source);
    m_modules.push_back(std::move(module));
    return m_modules.back().get();
}

void Compiler::DestroyModule(Module* module)
{
    for (auto& other : m_modules) {
        auto& used = other->UsedModules();
        used.erase(std::remove(used.begin(), used.end(), module), used.end());
        auto& projectModules = other->ProjectModules();
        projectModules.erase(std::remove(projectModules.begin(), projectModules.end(), module), projectModules.end());
    }
    m_modules.erase(std::remove_if(m_modules.begin(), m_modules.end(),
                                   [module](const std::unique_ptr<Module>& held) { return held.get() == module; }),
                    m_modules.end());
}

// The modules of the reachable projects that have finished compiling, in load order: class and object
// modules by their names, plain modules unless they are private (macros are).
void Compiler::FindProjectModules(Module& module)
{
    std::vector<Module*>& found = module.ProjectModules();
    found.clear();
    for (const std::string& project : m_source.ReachableProjects(module.Name())) {
        for (const auto& other : m_modules) {
            // An older compile of the same module (still held by modules compiled against it) is not
            // one of the others.
            if (other.get() == &module || SameName(other->Name(), module.Name()) || other->State() != nullptr ||
                !SameName(ProjectOfModuleName(other->Name()), project) ||
                (other->Kind() == ModuleKind::Plain && other->IsPrivateModule()) ||
                std::find(found.begin(), found.end(), other.get()) != found.end())
                continue;
            found.push_back(other.get());
        }
    }
}

void Compiler::TraceEntry(std::string_view phase, std::string_view module)
{
    std::string line = "*";
    line.append(phase);
    line += "(\"";
    line.append(module);
    line += "\")";
    m_source.TraceCompile(line);
}

void Compiler::TraceResult(ParseResult result)
{
    static constexpr std::string_view kNames[] = {"AllocFailed", "NotFound", "SyntaxErrors", "Okay"};
    std::string line = "Result=";
    line.append(kNames[static_cast<int>(result) + 2]);
    m_source.TraceCompile(line);
}

// module {module}: the named module, then those its '#Uses lines name, each read in the passes below.
// Modules that earlier compiles loaded stay shared: a '#Uses name of a loaded code module reaches it
// again. Initializing a mode 2 module (its storage and initializer) is the engine's, after a success.
ParseResult Compiler::Parse(std::string_view name, int mode)
{
    TraceEntry("Parse", name);
    m_lexer.ResetErrors();
    m_parsed = nullptr;
    ParseResult result = ParseResult::Okay;
    const std::size_t firstCreated = m_modules.size();
    Module* module = CreateModule(name, mode, result);
    if (module == nullptr) {
        TraceResult(result);
        return result;
    }
    DeclarationPhases(*module, result);
    if (result == ParseResult::Okay)
        Definitions(*module, result);
    if (result != ParseResult::Okay) {
        // Modules of this compile that did not finish are discarded; used modules that compiled stay.
        std::vector<Module*> discard;
        for (std::size_t i = firstCreated; i < m_modules.size(); ++i)
            if (m_modules[i].get() == module || m_modules[i]->State() != nullptr)
                discard.push_back(m_modules[i].get());
        for (Module* failed : discard)
            DestroyModule(failed);
        TraceResult(result);
        return result;
    }
    m_parsed = module;
    TraceResult(result);
    return result;
}

// Steps 1 to 5 of the phase order for one module.
void Compiler::DeclarationPhases(Module& module, ParseResult& result)
{
    m_compiling = true;
    TraceEntry("ParseDeclarations1", module.Name());
    ParseDeclarations1(module, result);
    TraceResult(result);
    // After the reference lines: they may name projects whose modules the module then reaches.
    if (result == ParseResult::Okay)
        FindProjectModules(module);
    if (result == ParseResult::Okay)
        Uses(module, result);
    if (result == ParseResult::Okay) {
        TraceEntry("ParseDeclarations2", module.Name());
        ParseDeclarations2(module, result);
        TraceResult(result);
    }
    m_compiling = false;
}

// Definitions of the module, then of each used module in order, while all succeed.
void Compiler::Definitions(Module& module, ParseResult& result)
{
    if (module.State() != nullptr) {
        // The records of the modules it reaches are laid out first, so that its variables and bodies
        // can use their public types; the most distant modules first.
        const std::vector<Module*> reached = ReachedModules(module);
        for (auto other = reached.rbegin(); other != reached.rend(); ++other)
            PrepareTypes(**other);
        m_compiling = true;
        TraceEntry("ParseDefinitions", module.Name());
        ParseDefinitions(module, result);
        TraceResult(result);
        m_compiling = false;
        if (result != ParseResult::Okay)
            return;
        module.FreeState();
    }
    const std::vector<Module*> used = module.UsedModules();
    for (Module* other : used) {
        if (other->State() == nullptr)
            continue;
        Definitions(*other, result);
        if (result != ParseResult::Okay)
            return;
    }
}

// module: header {"'#Reference" line} {declaration} {procedure}: the first pass reads the header and the
// references, before the modules that '#Uses names are read
void Compiler::ParseDeclarations1(Module& module, ParseResult& result)
{
    m_lexer.SetText(module.Text().c_str(), module.Name());
    ReadHeader(module);
    ReadReferences(module);
    SetResultFromErrors(m_lexer, result);
}

// header: {comment line} VERSION [number] CLASS|word {Object line} [Begin ... End] {Attribute name = constant}
//     in an object module's file; [Attribute VB_Name = "name"] in any other module
void Compiler::ReadHeader(Module& module)
{
    ParseState& state = *module.State();
    state.resumeLine = 1;
    if (module.IsObjectModuleFile()) {
        while (m_lexer.Kind() == Token::Apostrophe && m_lexer.SkipStatement()) {
        }
        if (m_lexer.Kind() == Token::Id && SameName(m_lexer.Text(), "VERSION")) {
            m_lexer.NextToken();
            if (m_lexer.Kind() == Token::LiteralNumber)
                m_lexer.NextToken();
            if (IsNameToken(m_lexer.Kind())) {
                module.SetHeaderWord(std::string(m_lexer.Text()));
                module.SetKind(SameName(m_lexer.Text(), "CLASS") ? ModuleKind::Class : ModuleKind::Form);
            } else {
                module.SetHeaderWord("Form");
                module.SetKind(ModuleKind::Form);
            }
            m_lexer.SkipStatement();
            while (SameName(m_lexer.Text(), "Object") && m_lexer.SkipStatement()) {
            }
            if (m_lexer.Kind() == Token::Begin) {
                int depth = 1;
                while (depth > 0 && m_lexer.SkipStatement()) {
                    if (m_lexer.Kind() == Token::Begin)
                        ++depth;
                    else if (m_lexer.Kind() == Token::End)
                        --depth;
                }
                m_lexer.SkipStatement();
            }
            bool hasName = false;
            while (m_lexer.Kind() == Token::Attribute) {
                m_lexer.NextToken();
                const std::string name(m_lexer.Text());
                m_lexer.NextToken();
                const auto known = std::find_if(std::begin(kHeaderAttributes), std::end(kHeaderAttributes),
                                                [&](std::string_view attribute) { return SameName(attribute, name); });
                if (known != std::end(kHeaderAttributes) && m_lexer.ExpectToken(Token::Equal)) {
                    ConstantReader reader(m_lexer, &state);
                    ConstantValue value;
                    if (reader.Read(value)) {
                        const bool isName = known == std::begin(kHeaderAttributes);
                        if (isName ? !value.IsString() : value.type.Code() != TypeCode::kBoolean) {
                            m_lexer.SignalError(CompileMessage::InvalidInstruction);
                        } else if (isName) {
                            hasName = true;
                            const std::string recordName(value.text.begin(), value.text.end());
                            bool inUse = m_source.IsGlobalNameInUse(recordName);
                            for (const auto& other : m_modules)
                                if (other.get() != &module && (SameName(other->Name(), recordName) ||
                                                               SameName(other->RecordName(), recordName)))
                                    inUse = true;
                            if (recordName.empty())
                                m_lexer.SignalError(CompileMessage::TypeIdentifierIsInvalid);
                            else if (inUse)
                                m_lexer.SignalError(CompileMessage::IdentifierIsAlreadyInUse, recordName);
                            module.SetRecordName(recordName);
                        } else if (*known == "VB_PredeclaredId" && value.integer != 0 &&
                                   module.Kind() == ModuleKind::Class) {
                            module.SetKind(ModuleKind::Object);
                        }
                    }
                }
                if (!m_lexer.SkipStatement())
                    break;
            }
            if (!hasName)
                m_lexer.SignalError(CompileMessage::ErrorSInObjectHeader);
            state.resumeLine = m_lexer.Line();
            if (module.Kind() == ModuleKind::Form && m_lexer.ErrorCount() == 0) {
                const std::string_view header(module.Text().c_str(),
                                              static_cast<std::size_t>(m_lexer.TokenStart() - m_lexer.Offset() -
                                                                       module.Text().c_str()));
                if (m_source.BuildForm(module.Name(), header))
                    module.SetHostForm(true);
                else
                    m_lexer.SignalError(CompileMessage::ErrorSInObjectHeader);
                module.SetKind(ModuleKind::Object);
            }
            return;
        }
        m_lexer.SetText(module.Text().c_str(), module.Name());
    }
    if (m_lexer.Kind() == Token::Attribute) {
        m_lexer.NextToken();
        if (SameName(m_lexer.Text(), "VB_Name"))
            state.resumeLine = 2;
    }
}

// {"'#Reference" text line}: the run of reference lines after the header goes to the reference manager
// as one block.
void Compiler::ReadReferences(Module& module)
{
    m_lexer.SeekLine(module.State()->resumeLine);
    const char* first = m_lexer.TokenStart() - m_lexer.Offset();
    const char* end = first;
    while (StartsWithWord(m_lexer.RestOfLine(), "'#Reference")) {
        end = m_lexer.TokenStart() + m_lexer.RestOfLine().size();
        if (!m_lexer.SkipStatement())
            break;
    }
    std::size_t failed = 0;
    if (end == first || m_source.AddReferences(module.Name(), std::string_view(first, static_cast<std::size_t>(end - first)), failed))
        return;
    // The failing line is named without its "'#Reference " and without its line break.
    const char* line = first + failed;
    const char* lineEnd = line;
    while (lineEnd < end && *lineEnd != '\r' && *lineEnd != '\n')
        ++lineEnd;
    std::string_view text(line, static_cast<std::size_t>(lineEnd - line));
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    if (text.size() >= 11)
        text.remove_prefix(11);
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    m_lexer.SignalErrorAt(CompileMessage::TheReferenceCouldNotBeAdded, text, line);
}

void Compiler::Uses(Module& module, ParseResult& result)
{
    if (ScanUses(module, "'#Uses", result))
        (void)ScanUses(module, "'$Include:", result);
}

// One scan of the text for lines that begin (after blanks) with the keyword and a quoted module name.
bool Compiler::ScanUses(Module& module, std::string_view keyword, ParseResult& result)
{
    const std::string& text = module.Text();
    std::size_t lineStart = 0;
    while (lineStart < text.size()) {
        std::size_t lineEnd = text.find('\r', lineStart);
        if (lineEnd == std::string::npos)
            lineEnd = text.size();
        std::size_t p = lineStart;
        while (p < lineEnd && (text[p] == ' ' || text[p] == '\t'))
            ++p;
        const std::size_t keywordAt = p;
        const std::string_view line(text.data() + p, lineEnd - p);
        std::size_t next = lineEnd + 1;
        if (next < text.size() && text[next] == '\n')
            ++next;
        if (!StartsWithWord(line, keyword)) {
            lineStart = next;
            continue;
        }
        p += keyword.size();
        while (p < lineEnd && (text[p] == ' ' || text[p] == '\t'))
            ++p;
        std::size_t nameEnd = p + 1;
        while (nameEnd < lineEnd && text[nameEnd] != '"' && text[nameEnd] != '\n')
            ++nameEnd;
        std::string name = p < lineEnd && text[p] == '"' ? text.substr(p + 1, nameEnd - p - 1) : std::string();
        while (!name.empty() && name.back() == ' ')
            name.pop_back();
        name.erase(0, name.find_first_not_of(' ') == std::string::npos ? name.size() : name.find_first_not_of(' '));
        if (name.empty()) {
            m_lexer.SetText(text.c_str(), module.Name());
            m_lexer.SignalErrorAt(CompileMessage::InvalidUsesComment, {}, text.c_str() + keywordAt);
            result = ParseResult::SyntaxErrors;
            return false;
        }
        // "Only:" limits the line to a platform; only Win32 lines count here.
        std::size_t after = nameEnd + 1;
        while (after < lineEnd && (text[after] == ' ' || text[after] == '\t'))
            ++after;
        lineStart = next;
        if (StartsWithWord(std::string_view(text).substr(std::min(after, lineEnd), lineEnd - std::min(after, lineEnd)), "Only:")) {
            after += 5;
            while (after < lineEnd && (text[after] == ' ' || text[after] == '\t'))
                ++after;
            const std::string_view platform = std::string_view(text).substr(after, lineEnd - after);
            if (!StartsWithWord(platform, "Win32") ||
                (platform.size() > 5 && CharClasses::Get().IsIdentifierChar(platform[5])))
                continue;
        }
        const std::string resolved = m_source.ResolveName(module.Name(), name);
        TraceEntry("Uses=" + resolved, module.Name());
        Module* used = FindModule(resolved);
        if (used != nullptr) {
            if (used->IsMacro()) {
                m_lexer.SetText(text.c_str(), module.Name());
                m_lexer.SignalErrorAt(CompileMessage::InvalidUsesDependency, {}, text.c_str() + keywordAt);
                result = ParseResult::SyntaxErrors;
                return false;
            }
            used->AddUse();
        } else {
            const NestingLevel level(m_usesDepth, kMaxUsesDepth);
            if (!level.Entered()) {
                m_lexer.SetText(text.c_str(), module.Name());
                m_lexer.SignalErrorAt(CompileMessage::InvalidUsesDependency, {}, text.c_str() + keywordAt);
                result = ParseResult::SyntaxErrors;
                return false;
            }
            ParseResult created = ParseResult::Okay;
            TraceEntry("Create", resolved);
            used = CreateModule(resolved, 1, created);
            TraceResult(created);
            if (used == nullptr) {
                m_lexer.SetText(text.c_str(), module.Name());
                m_lexer.SignalErrorAt(created == ParseResult::NotFound ? CompileMessage::ModuleDoesNotExist
                                                                       : CompileMessage::OutOfMemory,
                                      {}, text.c_str() + keywordAt);
                result = created;
                return false;
            }
            DeclarationPhases(*used, result);
            m_compiling = true;
            if (result != ParseResult::Okay)
                return false;
        }
        module.UsedModules().push_back(used);
    }
    return true;
}

// {[Private | Public | Global | Friend] declaration}: the second pass, after the header and the references;
// the procedures' bodies are skipped and the module's entry procedures are decided
void Compiler::ParseDeclarations2(Module& module, ParseResult& result)
{
    m_lexer.SetText(module.Text().c_str(), module.Name());
    m_lexer.SeekLine(module.State()->resumeLine);
    DeclarationReader reader(m_lexer, module, &m_source, &Compiler::IsClassName, this);
    while (!m_lexer.AtEnd() && !m_lexer.ErrorLimitReached()) {
        Visibility visibility = Visibility::None;
        bool hasVisibilityWord = true;
        if (m_lexer.Accept(Token::Private))
            visibility = Visibility::Private;
        else if (m_lexer.Accept(Token::Public) || m_lexer.Accept(Token::Global))
            visibility = Visibility::Public;
        else if (m_lexer.Accept(Token::Friend))
            visibility = Visibility::Friend;
        else
            hasVisibilityWord = false;
        const ReadResult read = reader.ReadTopLevel(visibility, hasVisibilityWord);
        if (read == ReadResult::NotMine)
            m_lexer.SignalError(CompileMessage::UnexpectedText);
        if (read != ReadResult::DoneAtNextLine)
            m_lexer.SkipStatement();
    }
    if (!m_lexer.ErrorLimitReached())
        reader.ReadDeferredConstants();
    if (!m_lexer.ErrorLimitReached())
        DecideEntries(module);
    SetResultFromErrors(m_lexer, result);
    if (result == ParseResult::Okay) {
        for (const auto& variable : module.Variables())
            if (variable->withEvents)
                m_source.DeclaredWithEvents(module.Name(), variable->name, variable->type.className);
    }
}

void Compiler::DecideEntries(Module& module)
{
    ParseState& state = *module.State();
    const auto find = [&](const std::string& name) -> Procedure* {
        for (const auto& procedure : state.procedures)
            if (procedure->kind != ProcedureKind::External && SameName(procedure->name, name))
                return procedure.get();
        return nullptr;
    };
    if (module.Kind() == ModuleKind::Plain) {
        Procedure* main = find("Main");
        if (module.IsMacro()) {
            if (main == nullptr) {
                // Found at the end of the text: reported at the end of the module's last line.
                m_lexer.SignalErrorAt(CompileMessage::SubMainHasNotBeenDefined, {}, EndOfLastLine(module.Text()));
                return;
            }
            CheckEntry(module, main, false);
            state.entry = main;
        } else if (main != nullptr && main->visibility == Visibility::Private) {
            CheckEntry(module, main, true);
            state.entry = main;
        }
        return;
    }
    state.entry = find(module.HeaderWord() + "_Initialize");
    state.terminate = find(module.HeaderWord() + "_Terminate");
    if (state.entry != nullptr)
        CheckEntry(module, state.entry, true);
    if (state.terminate != nullptr)
        CheckEntry(module, state.terminate, true);
}

void Compiler::CheckEntry(Module& module, Procedure* procedure, bool mustBePrivate)
{
    m_lexer.SeekLine(procedure->firstLine);
    const bool isPrivate = procedure->visibility == Visibility::Private;
    if (procedure->kind != ProcedureKind::Sub || isPrivate != mustBePrivate)
        m_lexer.SignalError(mustBePrivate ? CompileMessage::ExpectingAPrivateSub : CompileMessage::ExpectingAPublicSub,
                            procedure->name);
    else if (!procedure->parameters.empty())
        m_lexer.SignalError(CompileMessage::NotExpectingAnyParameters, procedure->name);
    (void)module;
}

void Compiler::PrepareTypes(Module& module)
{
    ParseState* state = module.State();
    if (state == nullptr || state->typesPrepared)
        return;
    state->typesPrepared = true;
    m_lexer.SetText(module.Text().c_str(), module.Name());
    DeclarationReader reader(m_lexer, module, &m_source, &Compiler::IsClassName, this);
    reader.ResolveTypes();
    reader.LayoutTypes();
}

// {procedure body}: the third pass compiles each procedure's body, from its first line to its End line
void Compiler::ParseDefinitions(Module& module, ParseResult& result)
{
    PrepareTypes(module);
    m_lexer.SetText(module.Text().c_str(), module.Name());
    ParseState& state = *module.State();
    SetResultFromErrors(m_lexer, result);
    // With the declarations in order, every body is compiled while the errors stay below the limit: an
    // error in one body does not hide those of the bodies after it.
    const bool declarationsRead = result == ParseResult::Okay;
    for (auto& procedure : state.procedures) {
        if (!declarationsRead || m_lexer.ErrorLimitReached() || m_lexer.MemoryExhausted())
            break;
        if (procedure->kind == ProcedureKind::External || m_bodyCompiler == nullptr)
            continue;
        m_lexer.SeekLine(procedure->firstLine);
        (void)m_bodyCompiler->CompileBody(module, *procedure, m_lexer);
    }
    SetResultFromErrors(m_lexer, result);
    auto compiled = std::make_unique<CompiledModule>();
    compiled->entry = state.entry;
    compiled->terminate = state.terminate;
    if (result == ParseResult::Okay && !LayoutVariables(state.variables, 0, compiled->storageSize, m_lexer))
        result = ParseResult::SyntaxErrors;
    compiled->variables = std::move(state.variables);
    compiled->constants = std::move(state.constants);
    compiled->userTypes = std::move(state.userTypes);
    compiled->enums = std::move(state.enums);
    compiled->procedures = std::move(state.procedures);
    compiled->events = std::move(state.events);
    compiled->implements = std::move(state.implements);
    compiled->names = std::move(state.names);
    module.SetCompiled(std::move(compiled));
}

} // namespace brannoc
