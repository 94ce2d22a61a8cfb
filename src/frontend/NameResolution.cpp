#include "frontend/BodyParser.h"

#include "frontend/CharClasses.h"
#include "exec/InterpreterHost.h"
#include "values/Conversion.h"
#include "values/ValueCell.h"
#include "values/ValueError.h"

#include <windows.h>

#include <cmath>
#include <cstdlib>
#include <optional>

namespace brannoc::body {

// name: the current word, its position kept for messages (callers check it is a name; ReadSuffix reads a suffix)
std::string BodyParser::ReadName()
{
    m_namePosition = m_lexer.TokenStart();
    std::string name(m_lexer.Text());
    m_lexer.NextToken();
    return name;
}

// [suffix]: one of % & ! # @ $
// A type suffix written right after the name just read; it is consumed.
TypeCode BodyParser::ReadSuffix()
{
    const char suffix = m_lexer.PreviousFollowingChar();
    const TypeCode type = TypeOfSuffix(suffix);
    if (type != TypeCode() && m_lexer.Text().size() == 1 && m_lexer.Text()[0] == suffix)
        m_lexer.NextToken();
    return type;
}

const LocalSymbol* BodyParser::FindLocal(const std::string& upperName) const
{
    auto found = m_locals.find(upperName);
    return found == m_locals.end() ? nullptr : &found->second;
}

Procedure* BodyParser::FindProcedure(const std::string& upperName) const
{
    auto found = m_state.names.find(upperName);
    if (found != m_state.names.end()) {
        if (found->second.kind != SymbolKind::Procedure)
            return nullptr;
        return m_state.procedures[found->second.index].get();
    }
    // Public procedures of the plain modules reached through '#Uses (class members are reached through
    // objects).
    for (const Module* used : m_reached) {
        if (used->Kind() != ModuleKind::Plain)
            continue;
        const auto& procedures = used->Procedures();
        for (const auto& procedure : procedures) {
            if (procedure->visibility != Visibility::Private && UpperName(procedure->name) == upperName)
                return procedure.get();
        }
    }
    return nullptr;
}

// Class modules are found among the modules this one reaches through '#Uses.
const Module* BodyParser::FindClassModule(std::string_view name) const
{
    return FindReachedClass(m_module, m_reached, name);
}

bool BodyParser::IsKnownObjectType(std::string_view name) const
{
    // Library.Type was checked against the references where it was read.
    if (name.find('.') != std::string_view::npos || FindClassModule(name))
        return true;
    ModuleSource* source = m_module.Source();
    return source && (source->IsExternalTypeName(m_module.Name(), name) || source->IsLoadedClassName(name));
}

const Module* BodyParser::ClassOfType(const TypeSpec& type) const
{
    if (type.className.empty() || type.code.IsArray())
        return nullptr;
    return FindClassModule(type.className);
}

ObjectVariable BodyParser::ClassOfVariable(const std::string& upperName) const
{
    ObjectVariable object;
    if (const LocalSymbol* local = FindLocal(upperName)) {
        if (local->kind == LocalKind::Variable) {
            object.classModule = local->classModule;
            object.autoNew = local->autoNew && local->classModule;
        }
        return object;
    }
    const Variable* variable = nullptr;
    auto global = m_state.names.find(upperName);
    if (global != m_state.names.end()) {
        if (global->second.kind == SymbolKind::Variable)
            variable = m_state.variables[global->second.index].get();
    } else if (std::size_t index = 0; const Module* used = FindReachedVariable(m_reached, upperName, index)) {
        variable = used->Variables()[index].get();
    }
    if (variable && variable->bounds.empty()) {
        object.classModule = ClassOfType(variable->type);
        object.autoNew = variable->createsNew && object.classModule;
    }
    return object;
}

void BodyParser::AppendLoad(Expression& out, const VariableRef& ref, const ObjectVariable& object)
{
    ExprOp op{object.autoNew ? ExprOpCode::kLoadNew : ExprOpCode::kLoad};
    op.scope = ref.scope;
    op.index = ref.index;
    op.type = ref.type;
    op.module = ref.module;
    op.classModule = object.autoNew ? object.classModule : nullptr;
    out.ops.push_back(op);
    out.type = ref.type;
}

Procedure* BodyParser::FindProperty(const std::string& upperName, ProcedureKind kind) const
{
    for (const auto& procedure : m_state.procedures) {
        if (procedure->kind == kind && UpperName(procedure->name) == upperName)
            return procedure.get();
    }
    for (const Module* used : m_reached) {
        if (used->Kind() != ModuleKind::Plain)
            continue;
        const auto& procedures = used->Procedures();
        for (const auto& procedure : procedures) {
            if (procedure->kind == kind && procedure->visibility != Visibility::Private &&
                UpperName(procedure->name) == upperName)
                return procedure.get();
        }
    }
    return nullptr;
}

const Module* BodyParser::ModuleOf(const Procedure& procedure) const
{
    for (const auto& own : m_state.procedures) {
        if (own.get() == &procedure)
            return nullptr;
    }
    for (const Module* used : m_reached) {
        const auto& procedures = used->Procedures();
        for (const auto& candidate : procedures) {
            if (candidate.get() == &procedure)
                return used;
        }
    }
    return nullptr;
}

bool BodyParser::FindUsedVariable(const std::string& upperName, VariableRef& ref) const
{
    std::size_t index = 0;
    Module* used = FindReachedVariable(m_reached, upperName, index);
    if (!used)
        return false;
    ref = VariableRef{StorageScope::Module, static_cast<int>(index), used->Variables()[index]->type.code, used};
    return true;
}

bool BodyParser::IsEnumName(const std::string& upperName) const
{
    auto found = m_state.names.find(upperName);
    if (found != m_state.names.end())
        return found->second.kind == SymbolKind::Enum;
    return IsReachedEnumName(m_reached, upperName);
}

// A type suffix on a name agrees with the variable's type, or with its element type for an array
// (`Dim words$(2)` is reached as `words$(0)` as well as `words(0)`).
static bool SuffixMatches(TypeCode suffix, TypeCode type)
{
    return suffix == TypeCode() || suffix == type.Scalar();
}

bool BodyParser::ResolveVariable(const std::string& name, TypeCode suffix, VariableRef& ref, bool& found)
{
    const std::string key = UpperName(name);
    found = true;
    if (const LocalSymbol* local = FindLocal(key); local && local->kind == LocalKind::Variable) {
        if (!SuffixMatches(suffix, local->ref.type)) {
            m_lexer.SignalErrorAt(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name, m_namePosition);
            return false;
        }
        ref = local->ref;
        return true;
    }
    auto global = m_state.names.find(key);
    if (global != m_state.names.end()) {
        if (global->second.kind != SymbolKind::Variable) {
            m_lexer.SignalErrorAt(CompileMessage::ExpectingAVarName, name, m_namePosition);
            return false;
        }
        const Variable& variable = *m_state.variables[global->second.index];
        if (!SuffixMatches(suffix, variable.type.code)) {
            m_lexer.SignalErrorAt(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name, m_namePosition);
            return false;
        }
        ref = VariableRef{StorageScope::Module, static_cast<int>(global->second.index), variable.type.code};
        return true;
    }
    if (FindUsedVariable(key, ref)) {
        if (!SuffixMatches(suffix, ref.type)) {
            m_lexer.SignalErrorAt(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name, m_namePosition);
            return false;
        }
        return true;
    }
    if (m_module.OptionExplicit()) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAnExistingScalarVar, name, m_namePosition);
        return false;
    }
    // Implicit declaration: a local of the suffix's type or the letter's default type.
    found = false;
    const TypeCode type = suffix != TypeCode() ? suffix : m_module.DefaultTypeFor(name);
    LocalSymbol symbol;
    symbol.ref = VariableRef{StorageScope::Local, m_code->AddSlot(type), type};
    m_locals[key] = symbol;
    ref = symbol.ref;
    return true;
}

bool BodyParser::IsDeclaredVariable(const std::string& upperName) const
{
    if (const LocalSymbol* local = FindLocal(upperName))
        return local->kind == LocalKind::Variable;
    auto global = m_state.names.find(upperName);
    if (global != m_state.names.end())
        return global->second.kind == SymbolKind::Variable;
    VariableRef ignored;
    return FindUsedVariable(upperName, ignored);
}

bool BodyParser::NextIsColonEqual() const
{
    const char* after = SkipBlanks(m_lexer.TokenEnd());
    return after[0] == ':' && after[1] == '=';
}

// At "(": true when the matching ")" ends the statement and the parentheses hold no argument or more
// than one (an argument list). One parenthesised argument is an expression, passed by value.
bool BodyParser::ParenthesisedToEnd() const
{
    const char* p = m_lexer.TokenStart();
    int depth = 0;
    bool inString = false;
    bool list = *SkipBlanks(p + 1) == ')';
    for (; *p != '\0' && *p != '\r' && *p != '\n'; ++p) {
        if (inString) {
            if (*p == '"')
                inString = false;
            continue;
        }
        if (*p == '"') {
            inString = true;
        } else if (*p == '(') {
            ++depth;
        } else if (*p == ',' && depth == 1) {
            list = true;
        } else if (*p == ')' && --depth == 0) {
            p = SkipBlanks(p + 1);
            return list && (*p == '\0' || *p == '\r' || *p == '\n' || *p == '\'' || *p == ':');
        }
    }
    return false;
}

} // namespace brannoc::body
