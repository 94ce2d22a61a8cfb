#include "code/MemberCall.h"

#include "automation/DispatchCall.h"
#include "exec/Activation.h"
#include "exec/HaltFlags.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "frontend/CharClasses.h"
#include "frontend/Module.h"
#include "values/ComRef.h"
#include "values/Conversion.h"
#include "values/RecordType.h"
#include "values/ValueError.h"

namespace brannoc {
namespace {

EvalStatus Raise(const RunContext& context, long number)
{
    (void)context.interpreter->SignalError(number);
    return EvalStatus::kFailed;
}

bool IsAssignment(MemberAccess access) { return access == MemberAccess::Let || access == MemberAccess::Set; }

bool IsObjectValue(const VARIANT& value) { return value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN; }

bool KindFits(ProcedureKind kind, MemberAccess access)
{
    switch (access) {
    case MemberAccess::Get: return kind == ProcedureKind::Function || kind == ProcedureKind::PropertyGet;
    case MemberAccess::Call:
        return kind == ProcedureKind::Sub || kind == ProcedureKind::Function || kind == ProcedureKind::PropertyGet;
    case MemberAccess::Let: return kind == ProcedureKind::PropertyLet;
    case MemberAccess::Set: return kind == ProcedureKind::PropertySet;
    }
    return false;
}

// Arranges the arguments of a call found by name into the procedure's parameter order: positional ones
// first, named ones by name, the assigned value of a Let or Set into the last parameter, left-out
// optional ones as missing and extra ones into the ParamArray.
bool ArrangeArguments(const RunContext& context, std::size_t first, int count, const MemberSite& site,
                      const Procedure& procedure)
{
    ValueStack& values = context.interpreter->Values();
    const auto& parameters = procedure.parameters;
    const int total = static_cast<int>(parameters.size());
    const int named = static_cast<int>(site.namedArguments.size());
    const bool assignment = IsAssignment(site.access);
    const int positional = count - named - (assignment ? 1 : 0);
    const bool hasParamArray = total > 0 && parameters.back().paramArray && !assignment;
    const int fixed = hasParamArray ? total - 1 : (assignment ? total - 1 : total);
    if (named == 0 && !hasParamArray && positional == fixed && fixed >= 0) {
        // A left-out argument (o.M(, 2)) needs an optional parameter.
        for (int i = 0; i < positional; ++i) {
            if (!parameters[static_cast<std::size_t>(i)].optional && IsMissing(values.At(first + static_cast<std::size_t>(i))))
                return context.interpreter->SignalError(kErrorWrongParameterCount);
        }
        return true;
    }
    if (fixed < 0)
        return context.interpreter->SignalError(kErrorWrongParameterCount);
    std::vector<Variant> arranged(static_cast<std::size_t>(total));
    std::vector<bool> given(static_cast<std::size_t>(total), false);
    std::vector<Variant> extras;
    for (int i = 0; i < positional; ++i) {
        Variant& argument = values.At(first + static_cast<std::size_t>(i));
        if (i < fixed) {
            if (!parameters[static_cast<std::size_t>(i)].optional && IsMissing(argument))
                return context.interpreter->SignalError(kErrorWrongParameterCount);
            arranged[static_cast<std::size_t>(i)] = std::move(argument);
            given[static_cast<std::size_t>(i)] = true;
        } else if (hasParamArray) {
            extras.push_back(std::move(argument));
        } else {
            return context.interpreter->SignalError(kErrorWrongParameterCount);
        }
    }
    for (int j = 0; j < named; ++j) {
        const std::wstring& name = site.namedArguments[static_cast<std::size_t>(j)];
        int index = 0;
        while (index < fixed && !SameName(std::string(name.begin(), name.end()),
                                          parameters[static_cast<std::size_t>(index)].name))
            ++index;
        if (index == fixed)
            return context.interpreter->SignalError(kErrorNoSuchNamedParameter);
        if (given[static_cast<std::size_t>(index)])
            return context.interpreter->SignalError(kErrorWrongParameterCount);
        arranged[static_cast<std::size_t>(index)] = std::move(values.At(first + static_cast<std::size_t>(positional + j)));
        given[static_cast<std::size_t>(index)] = true;
    }
    if (assignment) {
        arranged[static_cast<std::size_t>(total - 1)] = std::move(values.At(first + static_cast<std::size_t>(count - 1)));
        given[static_cast<std::size_t>(total - 1)] = true;
    }
    for (int i = 0; i < fixed; ++i) {
        if (given[static_cast<std::size_t>(i)])
            continue;
        if (!parameters[static_cast<std::size_t>(i)].optional)
            return context.interpreter->SignalError(kErrorWrongParameterCount);
        arranged[static_cast<std::size_t>(i)].SetError(kMissingArgumentStatus);
    }
    values.CutBack(first);
    const int pushed = hasParamArray ? total - 1 : total;
    for (int i = 0; i < pushed; ++i) {
        Variant* slot = values.Push();
        if (!slot)
            return context.interpreter->RaiseOutOfMemory();
        *slot = std::move(arranged[static_cast<std::size_t>(i)]);
    }
    if (hasParamArray) {
        for (Variant& extra : extras) {
            Variant* slot = values.Push();
            if (!slot)
                return context.interpreter->RaiseOutOfMemory();
            *slot = std::move(extra);
        }
        return PackValues(values, static_cast<int>(extras.size()));
    }
    return true;
}

// A public module-level variable of the instance read or assigned as a property.
EvalStatus AccessVariable(const RunContext& context, const MemberSite& site, ModuleInstance& instance, int variable,
                          std::size_t first, int count)
{
    ValueStack& values = context.interpreter->Values();
    const CompiledModule* compiled = instance.OwnModule().Compiled();
    if (!compiled || static_cast<std::size_t>(variable) >= instance.VariableCount())
        return Raise(context, kErrorNoSuchMember);
    VARIANT& storage = instance.Slot(static_cast<std::size_t>(variable));
    if (site.access == MemberAccess::Call)
        return Raise(context, kErrorNoSuchMember);
    if (!IsAssignment(site.access)) {
        if (count != 0)
            return Raise(context, kErrorWrongParameterCount);
        if (!values.At(first - 1).CopyIndirectFrom(storage))
            return Raise(context, CopyFailure(storage));
        return EvalStatus::kDone;
    }
    if (count != 1)
        return Raise(context, kErrorWrongParameterCount);
    const Variant& value = values.Top();
    if (site.access == MemberAccess::Set && !IsObjectValue(*FollowByRefChain(&value.Raw())))
        return Raise(context, kErrorTypeMismatch);
    if (!StoreTyped(storage, compiled->variables[static_cast<std::size_t>(variable)]->type.code, value))
        return EvalStatus::kFailed;
    values.CutBack(first);
    return EvalStatus::kDone;
}

// A member of a class module instance: the compiler's member when the instance is of the class it saw,
// else the member of that name in the instance's module.
// The member a late-bound site names in an instance's module, kept in the site for the next access to an
// instance of the same module; false when the module has none of that name for the access.
bool LookUpLateMember(MemberSite& site, const Module& module, Procedure*& procedure, int& variable)
{
    if (site.cachedModule == &module) {
        procedure = site.cachedProcedure;
        variable = site.cachedVariable;
        return true;
    }
    if (!FindClassMember(module, site.name, site.access, procedure, variable))
        return false;
    site.cachedModule = &module;
    site.cachedProcedure = procedure;
    site.cachedVariable = variable;
    return true;
}

EvalStatus CallInstanceMember(const RunContext& context, MemberSite& site, ModuleInstance& instance,
                              std::size_t first, int count)
{
    const Module& module = instance.OwnModule();
    Procedure* procedure = nullptr;
    int variable = -1;
    const bool early = site.classModule == &module;
    if (early) {
        procedure = site.procedure;
        variable = site.variable;
    } else if (!LookUpLateMember(site, module, procedure, variable)) {
        return Raise(context, kErrorNoSuchMember);
    }
    if (variable >= 0)
        return AccessVariable(context, site, instance, variable, first, count);
    if (!procedure)
        return Raise(context, kErrorNoSuchMember);
    if (!procedure->code)
        return Raise(context, kErrorSubOrFunctionMissing);
    if (!early && !ArrangeArguments(context, first, count, site, *procedure))
        return EvalStatus::kFailed;
    switch (context.interpreter->CallFromCode(*procedure->code, &instance, true)) {
    case Interpreter::CallOutcome::kEnded: return EvalStatus::kDone;
    case Interpreter::CallOutcome::kWaiting: return EvalStatus::kYield;
    case Interpreter::CallOutcome::kFailed: break;
    }
    return EvalStatus::kFailed;
}

} // namespace

bool FindClassMember(const Module& module, std::string_view name, MemberAccess access, Procedure*& procedure,
                     int& variable)
{
    procedure = nullptr;
    variable = -1;
    const auto& variables = module.Variables();
    Procedure* sub = nullptr;
    for (const auto& candidate : module.Procedures()) {
        if (candidate->visibility == Visibility::Private || candidate->kind == ProcedureKind::External ||
            !SameName(candidate->name, name))
            continue;
        if (KindFits(candidate->kind, access)) {
            procedure = candidate.get();
            return true;
        }
        if (candidate->kind == ProcedureKind::Sub)
            sub = candidate.get();
    }
    for (std::size_t i = 0; i < variables.size(); ++i) {
        const Variable& candidate = *variables[i];
        if ((candidate.visibility == Visibility::Public || candidate.visibility == Visibility::Friend) &&
            SameName(candidate.name, name) && !candidate.type.code.IsArray()) {
            variable = static_cast<int>(i);
            return true;
        }
    }
    // A Sub read as a value gives Empty.
    if (access == MemberAccess::Get && sub) {
        procedure = sub;
        return true;
    }
    return false;
}

namespace {

// value.field on a Variant that holds a record: the field is found by name when the access runs. The
// Variant's record is a copy of the variable's, so only reading it is offered.
EvalStatus ReadRecordField(const RunContext& context, const MemberSite& site, const VARIANT& record,
                           std::size_t first, int count)
{
    if (site.access != MemberAccess::Get && site.access != MemberAccess::Call)
        return Raise(context, kErrorNotImplemented);
    RecordType* type = AsRecordType(record.pRecInfo);
    const RecordField* field = type ? type->FindField(site.name) : nullptr;
    if (!field || !record.pvRecord)
        return Raise(context, kErrorNoSuchMember);
    if (count != 0)
        return Raise(context, kErrorWrongParameterCount);
    Variant value;
    if (!RecordType::LoadField(*field, record.pvRecord, value))
        return EvalStatus::kFailed;
    ValueStack& values = context.interpreter->Values();
    values.CutBack(first);
    values.Top() = std::move(value);
    return EvalStatus::kDone;
}

// Whether a late-bound access to a class instance's member does not fit the member as given but may
// fit through the default-member fallback (obj.Items(2) where Items takes no argument and gives an
// array or an object; obj.Cells(1, 2) = 5 where Cells only has a getter). Such an access goes through
// the instance's dispatch interface, whose refusal leads the automation call into that fallback.
bool TakesDefaultMemberFallback(MemberSite& site, const ModuleInstance& instance, int count)
{
    const bool let = site.access == MemberAccess::Let;
    if ((site.access != MemberAccess::Get && !let) || !site.namedArguments.empty())
        return false;
    const Module& module = instance.OwnModule();
    if (site.classModule == &module)
        return false;
    Procedure* procedure = nullptr;
    int variable = -1;
    if (!LookUpLateMember(site, module, procedure, variable))
        return let && FindClassMember(module, site.name, MemberAccess::Get, procedure, variable);
    const int positional = count - (let ? 1 : 0);
    if (variable >= 0)
        return positional > 0;
    if (!procedure)
        return false;
    const auto& parameters = procedure->parameters;
    if (!parameters.empty() && parameters.back().paramArray)
        return false;
    return positional > static_cast<int>(parameters.size()) - (let ? 1 : 0);
}

} // namespace

EvalStatus RunMemberCall(const RunContext& context, const ExprOp& op)
{
    Interpreter& interpreter = *context.interpreter;
    ValueStack& values = interpreter.Values();
    MemberSite& site = context.procedure->MemberSiteAt(op.index);
    const std::size_t first = values.Size() - static_cast<std::size_t>(op.count);
    VARIANT* object = FollowByRefChain(&values.At(first - 2).Raw());
    if ((object->vt & ~VT_BYREF) == VT_RECORD)
        return ReadRecordField(context, site, *object, first, op.count);
    if (!IsObjectValue(*object))
        return Raise(context, object->vt == VT_EMPTY ? kErrorObjectIsNothing : kErrorTypeMismatch);
    if (!object->punkVal)
        return Raise(context, kErrorObjectIsNothing);
    if (ModuleInstance* instance = interpreter.Host().InstanceOf(object->punkVal)) {
        if (!TakesDefaultMemberFallback(site, *instance, op.count))
            return CallInstanceMember(context, site, *instance, first, op.count);
    }

    ComRef<IDispatch> dispatch;
    if (object->vt == VT_DISPATCH)
        dispatch = ComRef<IDispatch>::Share(object->pdispVal);
    else if (FAILED(object->punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch.Out()))))
        return Raise(context, kErrorAutomation);
    automation::DispatchArguments arguments;
    arguments.values = op.count > 0 ? &values.At(first).Raw() : nullptr;
    arguments.count = op.count;
    arguments.namedArguments = &site.namedArguments;
    Variant result;
    if (!automation::InvokeMember(dispatch.Get(), site.wideName, site.access, arguments, result))
        return EvalStatus::kFailed;
    values.CutBack(first);
    values.Top() = std::move(result);
    return HaltFlags::MustStop() ? EvalStatus::kFailed : EvalStatus::kDone;
}

bool HoldsObject(const VARIANT& storage)
{
    const VARIANT* value = FollowByRefChain(&storage);
    return IsObjectValue(*value);
}

bool AccessDefaultMember(const RunContext& context, const VARIANT& storage, int count, const Variant* value)
{
    ValueStack& values = context.interpreter->Values();
    const VARIANT* object = FollowByRefChain(&storage);
    ComRef<IDispatch> dispatch;
    if (!object->punkVal)
        return context.interpreter->SignalError(kErrorObjectIsNothing);
    if (object->vt == VT_DISPATCH)
        dispatch = ComRef<IDispatch>::Share(object->pdispVal);
    else if (FAILED(object->punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch.Out()))))
        return context.interpreter->SignalError(kErrorAutomation);
    const std::size_t first = values.Size() - static_cast<std::size_t>(count);
    // The arguments in the language's order, the assigned value last.
    std::vector<VARIANT> arguments;
    arguments.reserve(static_cast<std::size_t>(count) + 1);
    for (std::size_t i = first; i < values.Size(); ++i)
        arguments.push_back(values.At(i).Raw());
    if (value)
        arguments.push_back(value->Raw());
    automation::DispatchArguments call;
    call.values = arguments.empty() ? nullptr : arguments.data();
    call.count = static_cast<int>(arguments.size());
    Variant result;
    if (!automation::InvokeMember(dispatch.Get(), std::wstring(), value ? MemberAccess::Let : MemberAccess::Get, call,
                                  result))
        return false;
    values.CutBack(first);
    if (value)
        return true;
    Variant* slot = values.Push();
    if (!slot)
        return context.interpreter->RaiseOutOfMemory();
    *slot = std::move(result);
    return true;
}

void EndMemberCall(const RunContext& context)
{
    ValueStack& values = context.interpreter->Values();
    Variant& result = values.Top();
    if (result.Tag() == VT_ERROR && result.Error() == kResultSlotStatus)
        result.Clear();
    values.At(values.Size() - 2) = std::move(result);
    values.Pop();
}

bool PushWithObject(const RunContext& context, int level)
{
    Activation& activation = *context.activation;
    // Fewer With objects than the blocks around the reference: the run jumped into a With block.
    if (activation.WithDepth() <= level)
        return context.interpreter->SignalError(kErrorWrongWith);
    ValueStack& values = context.interpreter->Values();
    // The innermost With object kept (an error handler's own With block may stand above the blocks
    // that were active when the error occurred).
    const std::size_t position = activation.ValueStackBase() + static_cast<std::size_t>(activation.WithDepth() - 1);
    Variant* slot = values.Push();
    if (!slot)
        return context.interpreter->RaiseOutOfMemory();
    // Pushing may have moved the stack: the kept object is read after it.
    if (!values.Top().CopyFrom(values.At(position).Raw()))
        return context.interpreter->SignalError(CopyFailure(values.At(position).Raw()));
    return true;
}

bool PushMe(const RunContext& context)
{
    ModuleInstance* instance = context.activation->Instance();
    if (!instance || !instance->Object())
        return context.interpreter->SignalError(kErrorObjectIsNothing);
    Variant* slot = context.interpreter->Values().Push();
    if (!slot)
        return context.interpreter->RaiseOutOfMemory();
    slot->SetObject(instance->Object());
    return true;
}

bool LoadAutoNew(const RunContext& context, const ExprOp& op)
{
    VARIANT* storage = StorageOf(context, op.scope, op.index, op.module);
    if (!storage)
        return false;
    storage = FollowByRefChain(storage);
    if (storage->vt == VT_DISPATCH && !storage->pdispVal && op.classModule) {
        Variant made;
        if (!context.interpreter->Host().NewInstance(*op.classModule, made)) {
            if (!HaltFlags::MustStop())
                (void)context.interpreter->SignalError(kErrorCannotCreateObject);
            return false;
        }
        ClearSlot(*storage);
        made.Detach(*storage);
    }
    Variant* slot = context.interpreter->Values().Push();
    if (!slot)
        return context.interpreter->RaiseOutOfMemory();
    if (!slot->CopyFrom(*storage))
        return context.interpreter->SignalError(CopyFailure(*storage));
    return true;
}

} // namespace brannoc
