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

std::string BodyParser::ReadName()
{
    std::string name(m_lexer.Text());
    m_lexer.NextToken();
    return name;
}

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
        Procedure* procedure = m_state.procedures[found->second.index].get();
        return procedure->kind == ProcedureKind::External ? nullptr : procedure;
    }
    // Public procedures of the plain modules named in '#Uses (class members are reached through objects).
    for (Module* used : m_module.UsedModules()) {
        if (used->Kind() != ModuleKind::Plain)
            continue;
        const auto& procedures = used->State() ? used->State()->procedures : used->Compiled()->procedures;
        for (const auto& procedure : procedures) {
            if (procedure->visibility != Visibility::Private && procedure->kind != ProcedureKind::External &&
                UpperName(procedure->name) == upperName)
                return procedure.get();
        }
    }
    return nullptr;
}

const Module* BodyParser::FindClassModule(std::string_view name) const
{
    for (const Module* used : m_module.UsedModules()) {
        if (used->Kind() == ModuleKind::Plain)
            continue;
        std::string_view own = used->Name();
        const std::size_t slash = own.find_last_of("/\\");
        if (slash != std::string_view::npos)
            own.remove_prefix(slash + 1);
        const std::size_t dot = own.rfind('.');
        if (dot != std::string_view::npos)
            own = own.substr(0, dot);
        if (UpperName(std::string(name)) == UpperName(used->RecordName()) || UpperName(std::string(name)) == UpperName(std::string(own)))
            return used;
    }
    return nullptr;
}

bool BodyParser::FindClassVariable(const std::string& upperName, LocalSymbol& out) const
{
    if (const LocalSymbol* local = FindLocal(upperName)) {
        if (local->kind != LocalKind::Variable || !local->classModule)
            return false;
        out = *local;
        return true;
    }
    auto global = m_state.names.find(upperName);
    if (global == m_state.names.end() || global->second.kind != SymbolKind::Variable)
        return false;
    const Variable& variable = *m_state.variables[global->second.index];
    if (variable.type.className.empty() || variable.type.code.IsArray() || !variable.bounds.empty())
        return false;
    out.ref = VariableRef{StorageScope::Module, static_cast<int>(global->second.index), variable.type.code};
    out.classModule = FindClassModule(variable.type.className);
    out.autoNew = variable.createsNew;
    return out.classModule != nullptr;
}

Procedure* BodyParser::FindMember(const Module& classModule, const std::string& upperName, bool assignment) const
{
    auto& module = const_cast<Module&>(classModule);
    const auto& procedures = module.State() ? module.State()->procedures : module.Compiled()->procedures;
    for (const auto& procedure : procedures) {
        if (procedure->visibility == Visibility::Private || procedure->kind == ProcedureKind::External ||
            UpperName(procedure->name) != upperName)
            continue;
        if ((procedure->kind == ProcedureKind::PropertyLet) == assignment)
            return procedure.get();
    }
    return nullptr;
}

bool BodyParser::ParseMemberCall(const LocalSymbol& object, Expression& out, bool statement)
{
    const std::string member(m_lexer.Text());
    if (member.empty() || !CharClasses::Get().IsIdentifierChar(member[0]) || (member[0] >= '0' && member[0] <= '9')) {
        m_lexer.SignalError(CompileMessage::MethodOrPropertyNotFound);
        return false;
    }
    m_lexer.NextToken();
    const std::string key = UpperName(member);
    const std::size_t start = out.ops.size();
    const bool assignment = statement && m_lexer.Kind() == Token::Equal;
    Procedure* callee = FindMember(*object.classModule, key, assignment);
    if (!callee) {
        m_lexer.SignalError(CompileMessage::MethodOrPropertyNotFound);
        return false;
    }
    const bool returnsValue = callee->kind == ProcedureKind::Function || callee->kind == ProcedureKind::PropertyGet;
    if (assignment) {
        // object.property = value: the value is the Property Let's only argument.
        m_lexer.NextToken();
        if (callee->parameters.size() != 1) {
            m_lexer.SignalError(CompileMessage::MethodOrPropertyNotFound);
            return false;
        }
        Expression value;
        if (!ParseExpression(value))
            return false;
        if (value.IsEmpty()) {
            m_lexer.SignalError(CompileMessage::ExpectingAnExpression);
            return false;
        }
        out.Append(value);
        ExprOp call{ExprOpCode::kCall};
        call.index = m_code->AddCallee(callee, object.classModule);
        call.count = 1;
        out.ops.push_back(call);
        ExprOp pop{ExprOpCode::kPop};
        pop.count = 1;
        out.ops.push_back(pop);
    } else if (!statement && !returnsValue) {
        m_lexer.SignalError(CompileMessage::SubsCantBeUsedInExpressions, member);
        return false;
    } else {
        bool parenthesised = false;
        if (m_lexer.Kind() == Token::LeftParen && (!statement || ParenthesisedToEnd())) {
            parenthesised = true;
            m_lexer.NextToken();
        }
        if (!statement && !parenthesised) {
            // No argument list in an expression: every parameter is left out.
            for (const Parameter& parameter : callee->parameters) {
                if (!parameter.optional && !parameter.paramArray) {
                    m_lexer.SignalError(CompileMessage::MissingParameter, parameter.name);
                    return false;
                }
            }
            out.ops.push_back(ExprOp{ExprOpCode::kEmpty});
            for (const Parameter& parameter : callee->parameters)
                out.ops.push_back(ExprOp{parameter.paramArray ? ExprOpCode::kPack : ExprOpCode::kMissing});
            ExprOp call{ExprOpCode::kCall};
            call.index = m_code->AddCallee(callee, object.classModule);
            call.count = static_cast<int>(callee->parameters.size());
            call.type = callee->result.code;
            out.ops.push_back(call);
            if (call.count > 0) {
                ExprOp pop{ExprOpCode::kPop};
                pop.count = call.count;
                out.ops.push_back(pop);
            }
            out.type = callee->result.code;
        } else if (!ParseCallArguments(*callee, out, parenthesised)) {
            return false;
        }
    }
    // The call just added (the last one: calls inside the arguments come before it) goes to the object.
    for (std::size_t i = out.ops.size(); i-- > start;) {
        ExprOp& op = out.ops[i];
        if (op.code != ExprOpCode::kCall)
            continue;
        op.code = ExprOpCode::kMemberCall;
        op.scope = object.ref.scope;
        op.variable = object.ref.index;
        op.module = object.ref.module;
        op.autoNew = object.autoNew;
        break;
    }
    return true;
}

const Module* BodyParser::ModuleOf(const Procedure& procedure) const
{
    for (const auto& own : m_state.procedures) {
        if (own.get() == &procedure)
            return nullptr;
    }
    for (Module* used : m_module.UsedModules()) {
        const auto& procedures = used->State() ? used->State()->procedures : used->Compiled()->procedures;
        for (const auto& candidate : procedures) {
            if (candidate.get() == &procedure)
                return used;
        }
    }
    return nullptr;
}

bool BodyParser::FindUsedVariable(const std::string& upperName, VariableRef& ref) const
{
    // Variables of class modules belong to their instances and are not reached by name.
    for (Module* used : m_module.UsedModules()) {
        if (used->Kind() != ModuleKind::Plain)
            continue;
        const auto& variables = used->State() ? used->State()->variables : used->Compiled()->variables;
        for (std::size_t i = 0; i < variables.size(); ++i) {
            const Variable& variable = *variables[i];
            if (variable.visibility != Visibility::Public && variable.visibility != Visibility::Friend)
                continue;
            if (UpperName(variable.name) == upperName) {
                ref = VariableRef{StorageScope::Module, static_cast<int>(i), variable.type.code, used};
                return true;
            }
        }
    }
    return false;
}

bool BodyParser::ResolveVariable(const std::string& name, TypeCode suffix, VariableRef& ref, bool& found)
{
    const std::string key = UpperName(name);
    found = true;
    if (const LocalSymbol* local = FindLocal(key); local && local->kind == LocalKind::Variable) {
        if (suffix != TypeCode() && suffix != local->ref.type) {
            m_lexer.SignalError(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name);
            return false;
        }
        ref = local->ref;
        return true;
    }
    auto global = m_state.names.find(key);
    if (global != m_state.names.end()) {
        if (global->second.kind != SymbolKind::Variable) {
            m_lexer.SignalError(CompileMessage::ExpectingAVarName, name);
            return false;
        }
        const Variable& variable = *m_state.variables[global->second.index];
        if (suffix != TypeCode() && suffix != variable.type.code) {
            m_lexer.SignalError(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name);
            return false;
        }
        ref = VariableRef{StorageScope::Module, static_cast<int>(global->second.index), variable.type.code};
        return true;
    }
    if (FindUsedVariable(key, ref)) {
        if (suffix != TypeCode() && suffix != ref.type) {
            m_lexer.SignalError(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name);
            return false;
        }
        return true;
    }
    if (m_module.OptionExplicit()) {
        m_lexer.SignalError(CompileMessage::ExpectingAnExistingScalarVar, name);
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
