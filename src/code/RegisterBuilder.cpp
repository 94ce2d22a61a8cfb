#include "code/RegisterBuilder.h"

#include "code/BuiltinCall.h"
#include "frontend/Token.h"
#include "library/BuiltinTable.h"

#include "code/Statements.h"
#include "exec/ModuleInstance.h"
#include "frontend/Symbols.h"
#include "code/MemberSite.h"
#include "code/NumericKinds.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <utility>

namespace brannoc {

namespace {

using Operand = RegisterBuilder::Operand;
using Op = OperationId;

bool IsNarrow(VARTYPE kind) { return kind == VT_I2 || kind == VT_BOOL; }

// The comparison that holds for (b, a) when op holds for (a, b).
Op Mirrored(Op op)
{
    switch (op) {
    case Op::kLess: return Op::kGreater;
    case Op::kLessEqual: return Op::kGreaterEqual;
    case Op::kGreater: return Op::kLess;
    case Op::kGreaterEqual: return Op::kLessEqual;
    default: return op;
    }
}

bool IsSymmetric(Op op)
{
    switch (op) {
    case Op::kAdd:
    case Op::kMultiply:
    case Op::kAnd:
    case Op::kOr:
    case Op::kXor:
    case Op::kEqv:
    case Op::kEqual:
    case Op::kNotEqual:
        return true;
    default:
        return false;
    }
}

// The operation that computes what a checked Integer or Long +, - or * computes, with the result's kind
// climbing instead of giving up; kCount for any other operation.
RegisterCode PromotingCode(RegisterCode code)
{
    switch (code) {
    case RegisterCode::kAddLong: case RegisterCode::kAddInteger: return RegisterCode::kPromoteAdd;
    case RegisterCode::kAddLongK: case RegisterCode::kAddIntegerK: return RegisterCode::kPromoteAddK;
    case RegisterCode::kSubtractLong: case RegisterCode::kSubtractInteger: return RegisterCode::kPromoteSubtract;
    case RegisterCode::kSubtractLongK: case RegisterCode::kSubtractIntegerK: return RegisterCode::kPromoteSubtractK;
    case RegisterCode::kMultiplyLong: case RegisterCode::kMultiplyInteger: return RegisterCode::kPromoteMultiply;
    case RegisterCode::kMultiplyLongK: case RegisterCode::kMultiplyIntegerK: return RegisterCode::kPromoteMultiplyK;
    default: return RegisterCode::kCount;
    }
}

// The register operation of a whole-number binary op (the K form is the next code); kCount when none.
RegisterCode WholeCode(Op op, VARTYPE kind)
{
    const bool integer = kind == VT_I2;
    switch (op) {
    case Op::kAdd: return integer ? RegisterCode::kAddInteger : RegisterCode::kAddLong;
    case Op::kSubtract: return integer ? RegisterCode::kSubtractInteger : RegisterCode::kSubtractLong;
    case Op::kMultiply: return integer ? RegisterCode::kMultiplyInteger : RegisterCode::kMultiplyLong;
    case Op::kIntegerDivide: return integer ? RegisterCode::kDivideInteger : RegisterCode::kDivideLong;
    case Op::kModulo: return RegisterCode::kModuloLong;
    case Op::kAnd: return RegisterCode::kAnd;
    case Op::kOr: return RegisterCode::kOr;
    case Op::kXor: return RegisterCode::kXor;
    case Op::kEqv: return RegisterCode::kEqv;
    case Op::kImp: return RegisterCode::kImp;
    case Op::kEqual: return RegisterCode::kEqual;
    case Op::kNotEqual: return RegisterCode::kNotEqual;
    case Op::kLess: return RegisterCode::kLess;
    case Op::kLessEqual: return RegisterCode::kLessEqual;
    case Op::kGreater: return RegisterCode::kGreater;
    case Op::kGreaterEqual: return RegisterCode::kGreaterEqual;
    default: return RegisterCode::kCount;
    }
}

RegisterCode RealCode(Op op)
{
    switch (op) {
    case Op::kAdd: return RegisterCode::kAddReal;
    case Op::kSubtract: return RegisterCode::kSubtractReal;
    case Op::kMultiply: return RegisterCode::kMultiplyReal;
    case Op::kDivide: return RegisterCode::kDivideReal;
    case Op::kEqual: return RegisterCode::kEqualReal;
    case Op::kNotEqual: return RegisterCode::kNotEqualReal;
    case Op::kLess: return RegisterCode::kLessReal;
    case Op::kLessEqual: return RegisterCode::kLessEqualReal;
    case Op::kGreater: return RegisterCode::kGreaterReal;
    case Op::kGreaterEqual: return RegisterCode::kGreaterEqualReal;
    default: return RegisterCode::kCount;
    }
}

RegisterCode KForm(RegisterCode code) { return static_cast<RegisterCode>(static_cast<int>(code) + 1); }

// Load and store codes by where the variable lives and its width.
RegisterCode ByWidth(VARTYPE kind, RegisterCode whole, RegisterCode narrow, RegisterCode real)
{
    return kind == VT_R8 ? real : IsNarrow(kind) ? narrow : whole;
}

LONG WholeOfConstant(const VARIANT& value)
{
    switch (value.vt) {
    case VT_I2: return value.iVal;
    case VT_BOOL: return value.boolVal;
    default: return value.lVal;
    }
}

} // namespace

RegisterBuilder::RegisterBuilder(CompiledProcedure& procedure, RegisterProgram& program)
    : m_procedure(procedure), m_program(program)
{
}

void RegisterBuilder::Build()
{
    const StatementTable& table = m_procedure.Table();
    const int last = table.last;
    m_program.ops.clear();
    m_program.entries.assign(static_cast<std::size_t>(last) + 2, 0);
    m_program.formsLeft.assign(static_cast<std::size_t>(last) + 2, 0);
    m_program.givenUp.assign(static_cast<std::size_t>(last) + 2, 0);
    m_program.observed.assign(static_cast<std::size_t>(last) + 2, 0);
    m_program.firstTemporary = m_procedure.StatementSlotCount();
    for (int index = 0; index <= last; ++index) {
        m_program.entries[static_cast<std::size_t>(index)] = static_cast<int>(m_program.ops.size());
        if (table.empty[index])
            continue;
        BuildStatement(index, m_procedure.StatementObject(index));
    }
    m_program.entries[static_cast<std::size_t>(last) + 1] = static_cast<int>(m_program.ops.size());
    Emit(RegisterCode::kEnd);
    int observing = 0;
    for (const std::uint8_t forms : m_program.formsLeft)
        observing += forms != 0;
    if (observing > 0) {
        // Room for the forms made while running: operations that never move, and temporaries that are
        // frame slots from the start.
        constexpr std::size_t kRoomPerStatement = 96;
        constexpr std::size_t kMostRoom = 8192;
        const std::size_t room = std::min(kMostRoom, kRoomPerStatement * static_cast<std::size_t>(observing));
        m_program.ops.reserve(m_program.ops.size() + room);
        constexpr int kObservedTemporaries = 8;
        m_program.temporaryCount = std::max(m_program.temporaryCount, kObservedTemporaries);
    }
    m_program.temporaryLimit = m_program.temporaryCount;
    ResolveJumpTargets();
    PairEmptyStatements();
    // Range tables are complete: the operations point at them.
    for (RegisterOp& op : m_program.ops) {
        if (op.code == RegisterCode::kSelectRanges)
            op.constant.pointer = m_program.rangeTables[static_cast<std::size_t>(op.c)].data();
    }
}

void RegisterBuilder::PairEmptyStatements()
{
    // A statement with no operations of its own (End If, Else, a Case line) is entered together with
    // the statement after it when that one's marker follows at once, or ends the procedure when its
    // End follows.
    std::vector<RegisterOp>& ops = m_program.ops;
    for (std::size_t i = 0; i + 1 < ops.size(); ++i) {
        if (ops[i].code != RegisterCode::kStatement)
            continue;
        if (ops[i + 1].code == RegisterCode::kStatement) {
            ops[i].code = RegisterCode::kStatementPair;
            ops[i].c = kPairedMarker;
        } else if (ops[i + 1].code == RegisterCode::kEnd) {
            ops[i].code = RegisterCode::kStatementEnd;
            ops[i].c = kEndingMarker;
        }
    }
}

void RegisterBuilder::BuildStatement(int index, Statement* statement)
{
    const std::size_t mark = m_program.ops.size();
    const std::size_t fixupMark = m_fixups.size();
    const std::size_t tableMark = m_program.rangeTables.size();
    Emit(RegisterCode::kStatement, index);
    m_temporaryInUse.assign(m_temporaryInUse.size(), false);
    m_lastResultOp = ~std::size_t{0};
    m_variantSeen = false;
    m_callEmitted = false;
    m_givesUpAfterCall = false;
    if (statement && statement->EmitRegisters(*this) && !m_givesUpAfterCall) {
        ++m_program.registerStatements;
        return;
    }
    m_program.ops.resize(mark + 1);
    m_fixups.resize(fixupMark);
    m_program.rangeTables.resize(tableMark);
    // A statement that has no form only because it works on Variants gets one when it runs.
    constexpr std::uint8_t kFormsPerStatement = 6;
    if (statement && m_variantSeen) {
        Emit(RegisterCode::kObserve, index);
        m_program.formsLeft[static_cast<std::size_t>(index)] = kFormsPerStatement;
        ++m_program.registerStatements;
        return;
    }
    Emit(RegisterCode::kGeneral, index);
}

namespace {

// Operations that never give up once a call of the same statement has run: those that cannot give up,
// and the Long arithmetic whose only reasons to give up are overflow and division by zero, which it
// raises itself after a call (the general code would raise the same errors). A call is judged where it
// is emitted.
bool SafeAfterCall(RegisterCode code)
{
    switch (code) {
    case RegisterCode::kJump: case RegisterCode::kJumpIfTrue: case RegisterCode::kJumpIfFalse:
    case RegisterCode::kConstantWhole: case RegisterCode::kConstantReal: case RegisterCode::kMoveWhole:
    case RegisterCode::kMoveReal: case RegisterCode::kWholeToReal: case RegisterCode::kLoadNarrow:
    case RegisterCode::kStoreNarrow: case RegisterCode::kCall:
    case RegisterCode::kAddLong: case RegisterCode::kAddLongK: case RegisterCode::kSubtractLong:
    case RegisterCode::kSubtractLongK: case RegisterCode::kMultiplyLong: case RegisterCode::kMultiplyLongK:
    case RegisterCode::kDivideLong: case RegisterCode::kDivideLongK: case RegisterCode::kModuloLong:
    case RegisterCode::kModuloLongK:
    case RegisterCode::kAnd: case RegisterCode::kAndK: case RegisterCode::kOr: case RegisterCode::kOrK:
    case RegisterCode::kXor: case RegisterCode::kXorK: case RegisterCode::kEqv: case RegisterCode::kEqvK:
    case RegisterCode::kImp: case RegisterCode::kImpK:
    case RegisterCode::kEqual: case RegisterCode::kEqualK: case RegisterCode::kNotEqual:
    case RegisterCode::kNotEqualK: case RegisterCode::kLess: case RegisterCode::kLessK:
    case RegisterCode::kLessEqual: case RegisterCode::kLessEqualK: case RegisterCode::kGreater:
    case RegisterCode::kGreaterK: case RegisterCode::kGreaterEqual: case RegisterCode::kGreaterEqualK:
    case RegisterCode::kBranchEqual: case RegisterCode::kBranchEqualK: case RegisterCode::kBranchNotEqual:
    case RegisterCode::kBranchNotEqualK: case RegisterCode::kBranchLess: case RegisterCode::kBranchLessK:
    case RegisterCode::kBranchLessEqual: case RegisterCode::kBranchLessEqualK: case RegisterCode::kBranchGreater:
    case RegisterCode::kBranchGreaterK: case RegisterCode::kBranchGreaterEqual:
    case RegisterCode::kBranchGreaterEqualK:
    case RegisterCode::kEqualReal: case RegisterCode::kEqualRealK: case RegisterCode::kNotEqualReal:
    case RegisterCode::kNotEqualRealK: case RegisterCode::kLessReal: case RegisterCode::kLessRealK:
    case RegisterCode::kLessEqualReal: case RegisterCode::kLessEqualRealK: case RegisterCode::kGreaterReal:
    case RegisterCode::kGreaterRealK: case RegisterCode::kGreaterEqualReal: case RegisterCode::kGreaterEqualRealK:
    case RegisterCode::kNot: case RegisterCode::kNegateReal: case RegisterCode::kAbsReal:
    case RegisterCode::kFixReal: case RegisterCode::kIntReal:
        return true;
    default:
        return false;
    }
}

// The jump taken when whole comparison `compare` holds (`when` true) or fails (false); kCount when
// compare is not a comparison of whole numbers. Whole numbers are ordered, so a comparison that fails
// is its complement holding.
RegisterCode BranchCode(RegisterCode compare, bool when)
{
    using Code = RegisterCode;
    switch (compare) {
    case Code::kEqual: return when ? Code::kBranchEqual : Code::kBranchNotEqual;
    case Code::kEqualK: return when ? Code::kBranchEqualK : Code::kBranchNotEqualK;
    case Code::kNotEqual: return when ? Code::kBranchNotEqual : Code::kBranchEqual;
    case Code::kNotEqualK: return when ? Code::kBranchNotEqualK : Code::kBranchEqualK;
    case Code::kLess: return when ? Code::kBranchLess : Code::kBranchGreaterEqual;
    case Code::kLessK: return when ? Code::kBranchLessK : Code::kBranchGreaterEqualK;
    case Code::kLessEqual: return when ? Code::kBranchLessEqual : Code::kBranchGreater;
    case Code::kLessEqualK: return when ? Code::kBranchLessEqualK : Code::kBranchGreaterK;
    case Code::kGreater: return when ? Code::kBranchGreater : Code::kBranchLessEqual;
    case Code::kGreaterK: return when ? Code::kBranchGreaterK : Code::kBranchLessEqualK;
    case Code::kGreaterEqual: return when ? Code::kBranchGreaterEqual : Code::kBranchLess;
    case Code::kGreaterEqualK: return when ? Code::kBranchGreaterEqualK : Code::kBranchLessK;
    default: return Code::kCount;
    }
}

} // namespace

RegisterOp& RegisterBuilder::Emit(RegisterCode code, int a, int b, int c)
{
    if (m_callEmitted && !SafeAfterCall(code))
        m_givesUpAfterCall = true;
    if (code == RegisterCode::kCall || code == RegisterCode::kMemberCall)
        m_callEmitted = true;
    if (m_observing && m_program.ops.size() == m_program.ops.capacity()) {
        // Appending now would move the operations that running loops point into.
        m_outOfRoom = true;
        return m_spare;
    }
    RegisterOp op;
    op.code = code;
    op.a = a;
    op.b = b;
    op.c = c;
    m_program.ops.push_back(op);
    m_lastResultOp = ~std::size_t{0};
    return m_program.ops.back();
}

Operand RegisterBuilder::NewTemporary(VARTYPE kind)
{
    std::size_t index = 0;
    while (index < m_temporaryInUse.size() && m_temporaryInUse[index])
        ++index;
    if (index == m_temporaryInUse.size())
        m_temporaryInUse.push_back(false);
    m_temporaryInUse[index] = true;
    if (m_observing) {
        // The frames are laid out: only the temporaries they have.
        if (static_cast<int>(index) >= m_program.temporaryLimit)
            m_outOfRoom = true;
    } else {
        m_program.temporaryCount = std::max(m_program.temporaryCount, static_cast<int>(m_temporaryInUse.size()));
    }
    Operand operand;
    operand.kind = kind;
    operand.temporary = static_cast<int>(index);
    operand.offset = SlotOffset(m_program.firstTemporary + static_cast<int>(index));
    return operand;
}

void RegisterBuilder::Release(const Operand& operand)
{
    if (operand.temporary >= 0)
        m_temporaryInUse[static_cast<std::size_t>(operand.temporary)] = false;
}

Operand RegisterBuilder::Materialize(const Operand& operand)
{
    if (!operand.constant)
        return operand;
    Operand cell = NewTemporary(operand.kind);
    RegisterOp& op = Emit(operand.IsReal() ? RegisterCode::kConstantReal : RegisterCode::kConstantWhole, cell.offset);
    if (operand.IsReal())
        op.constant.real = operand.real;
    else
        op.constant.whole = operand.whole;
    return cell;
}

void RegisterBuilder::UseAsLong(const Operand& operand)
{
    if (operand.integerProducer < 0)
        return;
    RegisterOp& producer = m_program.ops[static_cast<std::size_t>(operand.integerProducer)];
    // Each Integer operation (and its K form) has its Long counterpart at the same distance.
    constexpr int kLongDistance = static_cast<int>(RegisterCode::kAddInteger) - static_cast<int>(RegisterCode::kAddLong);
    static_assert(static_cast<int>(RegisterCode::kDivideIntegerK) - static_cast<int>(RegisterCode::kDivideLongK) ==
                  kLongDistance);
    producer.code = static_cast<RegisterCode>(static_cast<int>(producer.code) - kLongDistance);
}

Operand RegisterBuilder::AsReal(const Operand& operand)
{
    UseAsLong(operand);
    if (operand.IsReal())
        return operand;
    if (operand.constant) {
        Operand real = operand;
        real.kind = VT_R8;
        real.real = operand.whole;
        return real;
    }
    Release(operand);
    Operand cell = NewTemporary(VT_R8);
    Emit(RegisterCode::kWholeToReal, cell.offset, operand.offset);
    return cell;
}

bool RegisterBuilder::IsByReferenceParameter(int slot) const
{
    return slot < m_procedure.ParameterCount() && !m_procedure.ParameterAt(slot).byVal;
}

bool RegisterBuilder::ArrayLocation(const VariableRef& array, bool& module, int& location) const
{
    if (array.scope == StorageScope::Local) {
        module = false;
        location = SlotOffset(array.index);
        return true;
    }
    if (array.scope == StorageScope::Module && !array.module) {
        module = true;
        location = array.index;
        return true;
    }
    return false;
}

bool RegisterBuilder::Translate(const Expression& code, std::size_t first, std::size_t last,
                                std::vector<Operand>& stack)
{
    if (last > code.ops.size())
        last = code.ops.size();
    m_poppableArguments = -1;
    m_memberEnds = false;
    for (std::size_t position = first; position < last; ++position) {
        const ExprOp& op = code.ops[position];
        const int poppable = std::exchange(m_poppableArguments, -1);
        const bool memberEnds = std::exchange(m_memberEnds, false);
        bool done = false;
        switch (op.code) {
        case ExprOpCode::kConstant: {
            const VARIANT& value = m_procedure.ConstantAt(op.index).Raw();
            Operand constant;
            constant.constant = true;
            constant.kind = value.vt;
            if (value.vt == VT_R8)
                constant.real = value.dblVal;
            else if (value.vt == VT_I2 || value.vt == VT_I4 || value.vt == VT_BOOL)
                constant.whole = WholeOfConstant(value);
            else
                return false;
            stack.push_back(constant);
            done = true;
            break;
        }
        case ExprOpCode::kLoad: done = Load(op, stack); break;
        case ExprOpCode::kElement: done = Element(op, stack); break;
        case ExprOpCode::kBinary: done = Binary(op.op, stack); break;
        case ExprOpCode::kUnary: done = Unary(op.op, stack); break;
        // The general code after a typed value computes the same value.
        case ExprOpCode::kTypedValue: done = true; break;
        case ExprOpCode::kEmpty: {
            Operand placeholder;
            placeholder.special = Operand::Special::kPlaceholder;
            stack.push_back(placeholder);
            done = true;
            break;
        }
        case ExprOpCode::kLoadRef: {
            Operand reference;
            reference.special = Operand::Special::kReference;
            reference.kind = FixedKind(op.type);
            reference.scope = op.scope;
            reference.index = op.index;
            done = reference.kind != VT_EMPTY && (op.scope != StorageScope::Module || !op.module);
            stack.push_back(reference);
            break;
        }
        case ExprOpCode::kCall: done = Call(op, stack); break;
        case ExprOpCode::kLoadPath: done = LoadField(op, stack); break;
        case ExprOpCode::kBuiltin: done = Length(op, stack); break;
        case ExprOpCode::kMemberCall: done = MemberCall(op, stack); break;
        // A register member call left its result where the general code's end of the call leaves it.
        case ExprOpCode::kMemberEnd: done = memberEnds; break;
        case ExprOpCode::kPop:
            // The arguments of the call just before it are gone already; other values are dropped.
            if (poppable == op.count) {
                done = true;
            } else if (stack.size() >= static_cast<std::size_t>(op.count)) {
                for (int i = 0; i < op.count; ++i) {
                    Release(stack.back());
                    stack.pop_back();
                }
                done = true;
            }
            break;
        default: break;
        }
        if (!done)
            return false;
    }
    return true;
}

bool RegisterBuilder::Value(const Expression& code, Operand& result, std::size_t first, std::size_t last)
{
    std::vector<Operand> stack;
    if (!Translate(code, first, last, stack) || stack.size() != 1 || stack.back().special != Operand::Special::kNone)
        return false;
    result = stack.back();
    return true;
}

bool RegisterBuilder::Effect(const Expression& code)
{
    std::vector<Operand> stack;
    if (!Translate(code, 0, code.ops.size(), stack) || stack.size() > 1)
        return false;
    return stack.empty() || stack.back().special == Operand::Special::kNone ||
           stack.back().special == Operand::Special::kVoid;
}

bool RegisterBuilder::BindArgument(const Operand& argumentIn, const ParameterInfo& parameter,
                                   RegisterArgument& binding, Operand& bound)
{
    const VARTYPE kind = FixedKind(parameter.type);
    if (kind == VT_EMPTY || parameter.paramArray || parameter.type.IsFixedString())
        return false;
    binding.kind = kind;
    Operand argument = argumentIn;
    if (argument.special == Operand::Special::kReference) {
        if (argument.kind != kind)
            return false;
        if (!parameter.byVal) {
            // The parameter refers to the variable itself.
            if (argument.scope == StorageScope::Module) {
                binding.mode = ArgumentMode::kModuleReference;
                binding.location = argument.index;
            } else if (argument.scope == StorageScope::Local) {
                binding.mode = IsByReferenceParameter(argument.index) ? ArgumentMode::kParameterReference
                                                                      : ArgumentMode::kLocalReference;
                binding.location = SlotOffset(argument.index);
            } else {
                return false;
            }
            return true;
        }
        // A variable given to a by-value parameter: its value.
        ExprOp load{ExprOpCode::kLoad};
        load.scope = argument.scope;
        load.index = argument.index;
        std::vector<Operand> stack;
        load.type = TypeCode(static_cast<std::uint16_t>(argument.kind == VT_I2   ? TypeCode::kInteger
                                                         : argument.kind == VT_I4 ? TypeCode::kLong
                                                         : argument.kind == VT_R8 ? TypeCode::kDouble
                                                                                  : TypeCode::kBoolean));
        if (!Load(load, stack))
            return false;
        argument = stack.back();
    }
    if (argument.special != Operand::Special::kNone)
        return false;
    // The value binds as BindDirectly takes it, or widened as a plain store widens it.
    const bool fits = argument.kind == kind || (kind == VT_I4 && argument.kind == VT_I2) ||
                      (kind == VT_R8 && IsWhole(argument.kind));
    if (!fits)
        return false;
    if (kind == VT_I4)
        UseAsLong(argument);
    const Operand value = Materialize(kind == VT_R8 ? AsReal(argument) : argument);
    binding.mode = kind == VT_R8 ? ArgumentMode::kReal : ArgumentMode::kWhole;
    binding.location = value.offset;
    bound = value;
    return true;
}

bool RegisterBuilder::TakeArguments(int count, CompiledProcedure& code, std::vector<Operand>& stack,
                                    RegisterCall& call)
{
    if (count != code.ParameterCount() || count > kMostRegisterArguments || stack.size() < static_cast<std::size_t>(count))
        return false;
    // The callee's frame must be laid out (and so have a layout) to bind into it.
    code.PrepareForCalls();
    if (!code.Layout().image)
        return false;
    call.procedure = &code;
    call.arguments.resize(static_cast<std::size_t>(count));
    const std::size_t first = stack.size() - static_cast<std::size_t>(count);
    // The values stay in their cells until the call has read them all.
    Operand bound[kMostRegisterArguments];
    for (int i = 0; i < count; ++i) {
        if (!BindArgument(stack[first + static_cast<std::size_t>(i)], code.ParameterAt(i),
                          call.arguments[static_cast<std::size_t>(i)], bound[i]))
            return false;
    }
    for (int i = 0; i < count; ++i)
        Release(bound[i]);
    for (const RegisterArgument& argument : call.arguments)
        call.referencesMayFail = call.referencesMayFail || argument.mode == ArgumentMode::kParameterReference ||
                                 argument.mode == ArgumentMode::kModuleReference;
    stack.resize(first);
    return true;
}

bool RegisterBuilder::TakePlaceholder(std::vector<Operand>& stack)
{
    if (stack.empty() || stack.back().special != Operand::Special::kPlaceholder)
        return false;
    stack.pop_back();
    return true;
}

bool RegisterBuilder::EmitCall(RegisterCode code, std::unique_ptr<RegisterCall> call, const CompiledProcedure& callee,
                               TypeCode resultType, std::vector<Operand>& stack)
{
    int result = -1;
    Operand cell;
    const bool function = !(resultType == TypeCode());
    if (function) {
        const VARTYPE kind = FixedKind(resultType);
        if (kind == VT_EMPTY || callee.ResultSlot() < 0)
            return false;
        cell = NewTemporary(kind);
        result = cell.offset;
    }
    // A second call whose references may not hold their kind would give up after the first one ran.
    if (m_callEmitted && (code == RegisterCode::kMemberCall || call->referencesMayFail))
        m_givesUpAfterCall = true;
    // b: the operation after the call, where the calling statement goes on once the callee has ended.
    RegisterOp& emitted = Emit(code, result, static_cast<int>(m_program.ops.size()) + 1);
    emitted.constant.pointer = call.get();
    m_program.calls.push_back(std::move(call));
    if (function) {
        // An Integer or Boolean result arrives as its 16-bit payload: widened in place.
        if (IsNarrow(cell.kind))
            Emit(RegisterCode::kLoadNarrow, cell.offset, cell.offset);
        stack.push_back(cell);
    }
    return true;
}

namespace {

CompiledProcedure* CompiledCode(struct Procedure* procedure)
{
    return procedure && procedure->code ? dynamic_cast<CompiledProcedure*>(procedure->code.get()) : nullptr;
}

bool ReturnsValue(const struct Procedure& procedure)
{
    return procedure.kind == ProcedureKind::Function || procedure.kind == ProcedureKind::PropertyGet;
}

} // namespace

bool RegisterBuilder::Call(const ExprOp& op, std::vector<Operand>& stack)
{
    CompiledProcedure* code = CompiledCode(m_procedure.CalleeAt(op.index));
    const bool function = !(op.type == TypeCode());
    auto call = std::make_unique<RegisterCall>();
    call->module = m_procedure.CalleeModuleAt(op.index);
    if (!code || !TakeArguments(op.count, *code, stack, *call) || (function && !TakePlaceholder(stack)) ||
        !EmitCall(RegisterCode::kCall, std::move(call), *code, function ? op.type : TypeCode(), stack))
        return false;
    m_poppableArguments = op.count;
    return true;
}

bool RegisterBuilder::MemberCall(const ExprOp& op, std::vector<Operand>& stack)
{
    // Early-bound calls only: the compiler's member of the class it saw, with positional arguments.
    const MemberSite& site = m_procedure.MemberSiteAt(op.index);
    if (!site.classModule || !site.procedure || site.variable >= 0 || !site.namedArguments.empty() ||
        (site.access != MemberAccess::Call && site.access != MemberAccess::Get))
        return false;
    CompiledProcedure* code = CompiledCode(site.procedure);
    auto call = std::make_unique<RegisterCall>();
    call->classModule = site.classModule;
    if (!code || !TakeArguments(op.count, *code, stack, *call) || !TakePlaceholder(stack) || stack.empty() ||
        stack.back().special != Operand::Special::kObject)
        return false;
    const Operand object = stack.back();
    stack.pop_back();
    call->objectInModule = object.scope == StorageScope::Module;
    call->objectLocation = call->objectInModule ? object.index : SlotOffset(object.index);
    const bool returns = ReturnsValue(*site.procedure);
    if (!EmitCall(RegisterCode::kMemberCall, std::move(call), *code, returns ? op.type : TypeCode(), stack))
        return false;
    if (!returns) {
        // A Sub's call leaves Empty in the object's place, which the statement drops.
        Operand nothing;
        nothing.special = Operand::Special::kVoid;
        stack.push_back(nothing);
    }
    m_memberEnds = true;
    return true;
}

bool RegisterBuilder::Condition(const Expression& code, Operand& truth)
{
    const Checkpoint mark = Mark();
    Operand value;
    if (!Value(code, value)) {
        TakeBack(mark);
        return TextCondition(code, truth);
    }
    if (value.IsReal()) {
        // A Double condition holds when it is not zero.
        Operand materialized = Materialize(value);
        Release(materialized);
        truth = NewTemporary(VT_BOOL);
        RegisterOp& op = Emit(KForm(RegisterCode::kNotEqualReal), truth.offset, materialized.offset);
        op.constant.real = 0;
        return true;
    }
    UseAsLong(value);
    truth = Materialize(value);
    return true;
}

bool RegisterBuilder::TextCondition(const Expression& code, Operand& truth)
{
    auto comparison = std::make_unique<TextComparison>();
    if (!comparison->Compile(code, m_procedure))
        return false;
    // An operand whose index is more than a local whole variable is read at the index computed here.
    const std::size_t rightStart = comparison->RightStart();
    Operand indexes[2];
    bool computed[2] = {false, false};
    for (int side = 0; side < 2; ++side) {
        const std::size_t first = side == 0 ? 0 : rightStart;
        const std::size_t last = side == 0 ? rightStart : code.ops.size() - 1;
        TextOperand& operand = side == 0 ? comparison->Left() : comparison->Right();
        const Checkpoint mark = Mark();
        TextOperand indexed;
        computed[side] = IndexedText(code, first, last, indexed, indexes[side]);
        if (computed[side])
            operand = std::move(indexed);
        else
            TakeBack(mark);
    }
    truth = NewTemporary(VT_I4);
    RegisterOp& op = Emit(RegisterCode::kCompareText, truth.offset);
    op.constant.pointer = comparison.get();
    for (int side = 0; side < 2; ++side) {
        if (computed[side])
            Release(indexes[side]);
    }
    m_program.textComparisons.push_back(std::move(comparison));
    return true;
}

bool RegisterBuilder::Load(const ExprOp& op, std::vector<Operand>& stack)
{
    if (op.type.IsObject() && !op.type.IsArray()) {
        // An object variable whose member a call reaches.
        if (op.scope != StorageScope::Local && (op.scope != StorageScope::Module || op.module))
            return false;
        Operand object;
        object.special = Operand::Special::kObject;
        object.scope = op.scope;
        object.index = op.index;
        stack.push_back(object);
        return true;
    }
    if (op.type.IsVariant() && !op.type.IsArray()) {
        // A Variant is read with a check of the kind it held when the form was made.
        m_variantSeen = true;
        const VARTYPE held = ObservedKind(op.scope, op.index);
        if (held == VT_EMPTY)
            return false;
        if (m_guardVariants && op.scope == StorageScope::Local && !IsByReferenceParameter(op.index) &&
            (held == VT_I4 || held == VT_R8)) {
            // Checked at each read, where a load would have read it: a statement's parts may branch, and
            // one read's check does not stand for a read on another path.
            const int slot = SlotOffset(op.index);
            Emit(RegisterCode::kGuardVariant, slot).kind = held;
            Operand payload;
            payload.kind = held;
            payload.offset = slot;
            stack.push_back(payload);
            return true;
        }
        Operand cell = NewTemporary(held);
        // A Variant local holds its value in its own cell; a by-reference parameter may refer to another.
        const RegisterCode code =
            op.scope != StorageScope::Local
                ? ByWidth(held, RegisterCode::kLoadModuleWhole, RegisterCode::kLoadModuleNarrow,
                          RegisterCode::kLoadModuleReal)
            : IsByReferenceParameter(op.index)
                ? ByWidth(held, RegisterCode::kLoadRefWhole, RegisterCode::kLoadRefNarrow, RegisterCode::kLoadRefReal)
                : ByWidth(held, RegisterCode::kLoadVariantWhole, RegisterCode::kLoadVariantNarrow,
                          RegisterCode::kLoadVariantReal);
        Emit(code, cell.offset, op.scope == StorageScope::Local ? SlotOffset(op.index) : op.index).kind = held;
        stack.push_back(cell);
        return true;
    }
    const VARTYPE kind = FixedKind(op.type);
    if (kind == VT_EMPTY)
        return false;
    if (op.scope == StorageScope::Local && !IsByReferenceParameter(op.index)) {
        if (!IsNarrow(kind)) {
            Operand cell;
            cell.kind = kind;
            cell.offset = SlotOffset(op.index);
            stack.push_back(cell);
            return true;
        }
        Operand cell = NewTemporary(kind);
        Emit(RegisterCode::kLoadNarrow, cell.offset, SlotOffset(op.index));
        stack.push_back(cell);
        return true;
    }
    Operand cell = NewTemporary(kind);
    if (op.scope == StorageScope::Local) {
        Emit(ByWidth(kind, RegisterCode::kLoadRefWhole, RegisterCode::kLoadRefNarrow, RegisterCode::kLoadRefReal),
             cell.offset, SlotOffset(op.index))
            .kind = kind;
    } else if (op.scope == StorageScope::Module && !op.module) {
        Emit(ByWidth(kind, RegisterCode::kLoadModuleWhole, RegisterCode::kLoadModuleNarrow,
                     RegisterCode::kLoadModuleReal),
             cell.offset, op.index)
            .kind = kind;
    } else if (op.scope == StorageScope::Static) {
        RegisterOp& load = Emit(
            ByWidth(kind, RegisterCode::kLoadStaticWhole, RegisterCode::kLoadStaticNarrow, RegisterCode::kLoadStaticReal),
            cell.offset);
        load.kind = kind;
        load.constant.pointer = &m_procedure.StaticAt(op.index);
    } else {
        return false;
    }
    stack.push_back(cell);
    return true;
}

bool RegisterBuilder::Element(const ExprOp& op, std::vector<Operand>& stack)
{
    const VARTYPE kind = FixedKind(op.type);
    if (op.count != 1 || stack.empty() || kind == VT_EMPTY || !IsWhole(stack.back().kind))
        return false;
    VariableRef array;
    array.scope = op.scope;
    array.index = op.index;
    array.module = op.module;
    bool module = false;
    int location = 0;
    if (!ArrayLocation(array, module, location))
        return false;
    UseAsLong(stack.back());
    const Operand index = Materialize(stack.back());
    stack.pop_back();
    Release(index);
    Operand cell = NewTemporary(kind);
    RegisterCode code = ByWidth(kind, RegisterCode::kElementLoadWhole, RegisterCode::kElementLoadNarrow,
                                RegisterCode::kElementLoadReal);
    if (module)
        code = static_cast<RegisterCode>(static_cast<int>(code) + 3);
    Emit(code, cell.offset, location, index.offset).kind = kind;
    stack.push_back(cell);
    return true;
}

bool RegisterBuilder::LoadField(const ExprOp& op, std::vector<Operand>& stack)
{
    auto walk = std::make_unique<FieldWalk>();
    if (!walk->Compile(op.index, m_procedure))
        return false;
    const RecordField& field = walk->Field();
    if (field.kind != FieldKind::Plain || (field.tag != VT_I4 && field.tag != VT_R8 && !IsNarrow(field.tag)))
        return false;
    int position = 0;
    if (walk->HasIndex()) {
        if (stack.empty() || stack.back().special != Operand::Special::kNone || !IsWhole(stack.back().kind))
            return false;
        UseAsLong(stack.back());
        const Operand index = Materialize(stack.back());
        stack.pop_back();
        Release(index);
        position = index.offset;
    }
    const Operand cell = NewTemporary(field.tag);
    RegisterOp& emitted = Emit(ByWidth(field.tag, RegisterCode::kLoadFieldWhole, RegisterCode::kLoadFieldNarrow,
                                       RegisterCode::kLoadFieldReal),
                               cell.offset, position);
    emitted.constant.pointer = walk.get();
    m_program.fieldWalks.push_back(std::move(walk));
    stack.push_back(cell);
    return true;
}

bool RegisterBuilder::Length(const ExprOp& op, std::vector<Operand>& stack)
{
    const BuiltinCall& call = m_procedure.BuiltinCallAt(op.index);
    if (!IsLazyBuiltinCall(call, Token::Len, 1))
        return false;
    const Expression& code = call.arguments[0].code;
    auto text = std::make_unique<TextOperand>();
    const Checkpoint mark = Mark();
    Operand index;
    const bool computed = IndexedText(code, 0, code.ops.size(), *text, index);
    if (!computed) {
        TakeBack(mark);
        if (code.ops.empty() || !text->Compile(code.ops.data(), code.ops.size(), m_procedure))
            return false;
    }
    const Operand cell = NewTemporary(VT_I4);
    Emit(RegisterCode::kTextLength, cell.offset).constant.pointer = text.get();
    if (computed)
        Release(index);
    m_program.textOperands.push_back(std::move(text));
    stack.push_back(cell);
    return true;
}

bool RegisterBuilder::Binary(OperationId op, std::vector<Operand>& stack)
{
    if (stack.size() < 2)
        return false;
    const Operand right = stack.back();
    stack.pop_back();
    const Operand left = stack.back();
    stack.pop_back();
    if (op == Op::kPower || op == Op::kConcatenate || op == Op::kLike || op == Op::kIs)
        return false;
    Operand result;
    if (IsWhole(left.kind) && IsWhole(right.kind) && op != Op::kDivide) {
        const VARTYPE kind = left.kind == VT_I2 && right.kind == VT_I2 ? VT_I2 : VT_I4;
        if (kind == VT_I4 || IsComparison(op)) {
            UseAsLong(left);
            UseAsLong(right);
        }
        if (!EmitWhole(op, kind, left, right, result))
            return false;
        result.kind = IsComparison(op) ? static_cast<VARTYPE>(VT_BOOL) : kind;
    } else if (left.kind == VT_BOOL && right.kind == VT_BOOL) {
        if (!IsLogic(op) && !IsComparison(op))
            return false;
        if (!EmitWhole(op, VT_BOOL, left, right, result))
            return false;
        result.kind = VT_BOOL;
    } else if ((left.IsReal() || IsWhole(left.kind)) && (right.IsReal() || IsWhole(right.kind))) {
        if (!IsFourRules(op) && !IsComparison(op))
            return false;
        if (!EmitReal(op, AsReal(left), AsReal(right), result))
            return false;
        result.kind = IsComparison(op) ? static_cast<VARTYPE>(VT_BOOL) : static_cast<VARTYPE>(VT_R8);
    } else {
        return false;
    }
    stack.push_back(result);
    return true;
}

bool RegisterBuilder::EmitWhole(OperationId op, VARTYPE kind, const Operand& leftIn, const Operand& rightIn,
                                Operand& result)
{
    Operand left = leftIn;
    Operand right = rightIn;
    if (left.constant && !right.constant && (IsSymmetric(op) || IsComparison(op))) {
        std::swap(left, right);
        op = Mirrored(op);
    }
    const RegisterCode code = WholeCode(op, kind);
    if (code == RegisterCode::kCount)
        return false;
    left = Materialize(left);
    Release(left);
    Release(right);
    result = NewTemporary(kind);
    const std::size_t at = m_program.ops.size();
    if (right.constant) {
        Emit(KForm(code), result.offset, left.offset).constant.whole = right.whole;
    } else {
        Emit(code, result.offset, left.offset, right.offset);
    }
    m_lastResultOp = at;
    m_lastResultTemporary = result.temporary;
    if (code >= RegisterCode::kAddInteger && code <= RegisterCode::kDivideIntegerK)
        result.integerProducer = static_cast<int>(at);
    return true;
}

bool RegisterBuilder::EmitReal(OperationId op, const Operand& leftIn, const Operand& rightIn, Operand& result)
{
    Operand left = leftIn;
    Operand right = rightIn;
    if (left.constant && !right.constant && (IsSymmetric(op) || IsComparison(op))) {
        std::swap(left, right);
        op = Mirrored(op);
    }
    const RegisterCode code = RealCode(op);
    if (code == RegisterCode::kCount)
        return false;
    left = Materialize(left);
    Release(left);
    Release(right);
    result = NewTemporary(IsComparison(op) ? static_cast<VARTYPE>(VT_BOOL) : static_cast<VARTYPE>(VT_R8));
    const std::size_t at = m_program.ops.size();
    if (right.constant)
        Emit(KForm(code), result.offset, left.offset).constant.real = right.real;
    else
        Emit(code, result.offset, left.offset, right.offset);
    m_lastResultOp = at;
    m_lastResultTemporary = result.temporary;
    return true;
}

bool RegisterBuilder::Unary(OperationId op, std::vector<Operand>& stack)
{
    if (stack.empty())
        return false;
    Operand operand = stack.back();
    stack.pop_back();
    const VARTYPE kind = operand.kind;
    // Whole numbers are their own Fix and Int.
    if (IsWhole(kind) && (op == Op::kFix || op == Op::kInt)) {
        stack.push_back(operand);
        return true;
    }
    if (operand.constant) {
        // Computed here as it runs, when the result stays in the kind.
        const LONG smallest = kind == VT_I2 ? SHRT_MIN : LONG_MIN;
        if (kind == VT_R8) {
            switch (op) {
            case Op::kNegate: operand.real = -operand.real; break;
            case Op::kAbs: operand.real = std::fabs(operand.real); break;
            case Op::kFix: operand.real = std::trunc(operand.real); break;
            case Op::kInt: operand.real = std::floor(operand.real); break;
            default: return false;
            }
        } else if (op == Op::kNot && (IsWhole(kind) || kind == VT_BOOL)) {
            operand.whole = ~operand.whole;
        } else if (IsWhole(kind) && (op == Op::kNegate || op == Op::kAbs) && operand.whole != smallest) {
            operand.whole = op == Op::kNegate || operand.whole < 0 ? -operand.whole : operand.whole;
        } else {
            return false;
        }
        stack.push_back(operand);
        return true;
    }
    RegisterCode code = RegisterCode::kCount;
    if (kind == VT_R8) {
        switch (op) {
        case Op::kNegate: code = RegisterCode::kNegateReal; break;
        case Op::kAbs: code = RegisterCode::kAbsReal; break;
        case Op::kFix: code = RegisterCode::kFixReal; break;
        case Op::kInt: code = RegisterCode::kIntReal; break;
        default: break;
        }
    } else if (op == Op::kNot && (IsWhole(kind) || kind == VT_BOOL)) {
        code = RegisterCode::kNot;
    } else if (IsWhole(kind) && op == Op::kNegate) {
        code = kind == VT_I2 ? RegisterCode::kNegateInteger : RegisterCode::kNegateLong;
    } else if (IsWhole(kind) && op == Op::kAbs) {
        code = kind == VT_I2 ? RegisterCode::kAbsInteger : RegisterCode::kAbsLong;
    }
    if (code == RegisterCode::kCount)
        return false;
    Release(operand);
    Operand result = NewTemporary(kind);
    const std::size_t at = m_program.ops.size();
    Emit(code, result.offset, operand.offset);
    m_lastResultOp = at;
    m_lastResultTemporary = result.temporary;
    stack.push_back(result);
    return true;
}

bool RegisterBuilder::Store(const VariableRef& target, const Operand& valueIn)
{
    if (target.type.IsVariant() && !target.type.IsArray()) {
        // A Variant takes the value's kind (when what it held owns nothing, which the store checks).
        m_variantSeen = true;
        if (!m_observing || valueIn.special != Operand::Special::kNone ||
            (target.scope != StorageScope::Local && (target.scope != StorageScope::Module || target.module)))
            return false;
        const bool local = target.scope == StorageScope::Local;
        const bool own = local && !IsByReferenceParameter(target.index);
        // Integer and Long +, - and * computed just before: the result climbs to the next kind instead
        // of giving up when it leaves its own (a counter growing past the Integer range, a product past
        // the Long range), and the Variant takes the kind the result has.
        if (!valueIn.constant && valueIn.temporary >= 0 && valueIn.temporary == m_lastResultTemporary &&
            m_lastResultOp == m_program.ops.size() - 1 && (valueIn.kind == VT_I2 || valueIn.kind == VT_I4)) {
            RegisterOp& producer = m_program.ops[m_lastResultOp];
            const RegisterCode promoting = PromotingCode(producer.code);
            if (promoting != RegisterCode::kCount) {
                producer.kind = producer.code >= RegisterCode::kAddInteger ? VT_I2 : VT_I4;
                producer.code = promoting;
                if (own) {
                    // A Variant local takes the result in its own cell, with no temporary between (the
                    // Into forms follow in the order of the Promote forms).
                    static_assert(static_cast<int>(RegisterCode::kPromoteMultiplyKInto) -
                                      static_cast<int>(RegisterCode::kPromoteAddInto) ==
                                  static_cast<int>(RegisterCode::kPromoteMultiplyK) -
                                      static_cast<int>(RegisterCode::kPromoteAdd));
                    producer.code = static_cast<RegisterCode>(static_cast<int>(promoting) -
                                                              static_cast<int>(RegisterCode::kPromoteAdd) +
                                                              static_cast<int>(RegisterCode::kPromoteAddInto));
                    producer.a = SlotOffset(target.index);
                    // It gives up when the Variant holds what it may not overwrite: after a call of the
                    // statement that would run the call again (as Emit judges the operations it adds).
                    if (m_callEmitted)
                        m_givesUpAfterCall = true;
                    return true;
                }
                Emit(local ? RegisterCode::kStoreVariantTagged : RegisterCode::kStoreModuleVariantTagged,
                     local ? SlotOffset(target.index) : target.index, valueIn.offset);
                return true;
            }
        }
        const Operand value = Materialize(valueIn);
        const RegisterCode code = own ? ByWidth(value.kind, RegisterCode::kStoreOwnVariantWhole,
                                                RegisterCode::kStoreOwnVariantNarrow, RegisterCode::kStoreOwnVariantReal)
                                  : local ? ByWidth(value.kind, RegisterCode::kStoreVariantWhole,
                                                    RegisterCode::kStoreVariantNarrow, RegisterCode::kStoreVariantReal)
                                          : ByWidth(value.kind, RegisterCode::kStoreModuleVariantWhole,
                                                    RegisterCode::kStoreModuleVariantNarrow,
                                                    RegisterCode::kStoreModuleVariantReal);
        Emit(code, local ? SlotOffset(target.index) : target.index, value.offset).kind = value.kind;
        return true;
    }
    const VARTYPE kind = FixedKind(target.type);
    if (kind == VT_EMPTY || target.type.IsFixedString())
        return false;
    const VARTYPE valueKind = valueIn.kind;
    // The combinations an assignment stores without a conversion routine; a Long into an Integer when
    // it fits.
    const bool checked = kind == VT_I2 && valueKind == VT_I4;
    const bool fits = valueKind == kind || checked || (kind == VT_I4 && valueKind == VT_I2) ||
                      (kind == VT_R8 && IsWhole(valueKind));
    if (!fits)
        return false;
    if (kind == VT_I4)
        UseAsLong(valueIn);
    Operand value = kind == VT_R8 ? AsReal(valueIn) : valueIn;
    const bool local = target.scope == StorageScope::Local && !IsByReferenceParameter(target.index);
    if (local) {
        const int offset = SlotOffset(target.index);
        if (!IsNarrow(kind)) {
            // The operation that computed the value writes the variable itself.
            if (!value.constant && value.temporary >= 0 && value.temporary == m_lastResultTemporary &&
                m_lastResultOp == m_program.ops.size() - 1) {
                m_program.ops[m_lastResultOp].a = offset;
                Release(value);
                return true;
            }
            if (value.constant) {
                RegisterOp& op = Emit(kind == VT_R8 ? RegisterCode::kConstantReal : RegisterCode::kConstantWhole, offset);
                if (kind == VT_R8)
                    op.constant.real = value.real;
                else
                    op.constant.whole = value.whole;
                return true;
            }
            Emit(kind == VT_R8 ? RegisterCode::kMoveReal : RegisterCode::kMoveWhole, offset, value.offset);
            return true;
        }
        value = Materialize(value);
        Emit(checked ? RegisterCode::kStoreNarrowChecked : RegisterCode::kStoreNarrow, offset, value.offset);
        return true;
    }
    value = Materialize(value);
    if (target.scope == StorageScope::Local) {
        if (checked)
            return false;
        Emit(ByWidth(kind, RegisterCode::kStoreRefWhole, RegisterCode::kStoreRefNarrow, RegisterCode::kStoreRefReal),
             SlotOffset(target.index), value.offset)
            .kind = kind;
        return true;
    }
    if (target.scope == StorageScope::Module && !target.module) {
        const RegisterCode code =
            checked ? RegisterCode::kStoreModuleNarrowChecked
                    : ByWidth(kind, RegisterCode::kStoreModuleWhole, RegisterCode::kStoreModuleNarrow,
                              RegisterCode::kStoreModuleReal);
        Emit(code, target.index, value.offset).kind = kind;
        return true;
    }
    return false;
}

bool RegisterBuilder::StoreElement(const VariableRef& array, const Operand& indexIn, const Operand& valueIn)
{
    if (!array.type.IsArray() || !IsWhole(indexIn.kind))
        return false;
    const VARTYPE kind = FixedKind(array.type.Scalar());
    const VARTYPE valueKind = valueIn.kind;
    // The value must go into the element as it is, or as a whole number widened.
    const bool fits = valueKind == kind || (kind == VT_I4 && valueKind == VT_I2) || (kind == VT_R8 && IsWhole(valueKind));
    if (kind == VT_EMPTY || !fits)
        return false;
    bool module = false;
    int location = 0;
    if (!ArrayLocation(array, module, location))
        return false;
    UseAsLong(indexIn);
    if (kind == VT_I4)
        UseAsLong(valueIn);
    const Operand index = Materialize(indexIn);
    const Operand value = Materialize(kind == VT_R8 ? AsReal(valueIn) : valueIn);
    RegisterCode code = ByWidth(kind, RegisterCode::kElementStoreWhole, RegisterCode::kElementStoreNarrow,
                                RegisterCode::kElementStoreReal);
    if (module)
        code = static_cast<RegisterCode>(static_cast<int>(code) + 3);
    Emit(code, location, value.offset, index.offset).kind = kind;
    return true;
}

bool RegisterBuilder::Jump(int address)
{
    if (AddressPosition(address) != 0)
        return false;
    m_fixups.push_back(Fixup{m_program.ops.size(), AddressIndex(address), 0});
    Emit(RegisterCode::kJump);
    return true;
}

bool RegisterBuilder::FuseComparison(const Operand& truth, bool when)
{
    if (truth.constant || truth.temporary < 0 || truth.temporary != m_lastResultTemporary ||
        m_program.ops.empty() || m_lastResultOp != m_program.ops.size() - 1)
        return false;
    RegisterOp& compare = m_program.ops[m_lastResultOp];
    const RegisterCode branch = BranchCode(compare.code, when);
    if (branch == RegisterCode::kCount)
        return false;
    // Operands b and c (or the constant) stay; a becomes the target.
    compare.code = branch;
    compare.a = 0;
    m_lastResultOp = ~std::size_t{0};
    return true;
}

bool RegisterBuilder::JumpIf(const Operand& truthIn, bool when, int address)
{
    if (AddressPosition(address) != 0)
        return false;
    if (FuseComparison(truthIn, when)) {
        m_fixups.push_back(Fixup{m_program.ops.size() - 1, AddressIndex(address), 0});
        return true;
    }
    const Operand truth = Materialize(truthIn);
    m_fixups.push_back(Fixup{m_program.ops.size(), AddressIndex(address), 0});
    Emit(when ? RegisterCode::kJumpIfTrue : RegisterCode::kJumpIfFalse, 0, truth.offset);
    return true;
}

std::size_t RegisterBuilder::JumpForward(const Operand* truthIn, bool when)
{
    const std::size_t at = m_program.ops.size();
    if (!truthIn) {
        Emit(RegisterCode::kJump);
        return at;
    }
    if (FuseComparison(*truthIn, when))
        return m_program.ops.size() - 1;
    const Operand truth = Materialize(*truthIn);
    const std::size_t jump = m_program.ops.size();
    Emit(when ? RegisterCode::kJumpIfTrue : RegisterCode::kJumpIfFalse, 0, truth.offset);
    return jump;
}

void RegisterBuilder::LandHere(std::size_t jump) { m_program.ops[jump].a = static_cast<int>(m_program.ops.size()); }

namespace {

// Whether code reads the variable (the general For sets the counter before it computes the end and step,
// which then see the new value).
bool ReadsVariable(const Expression& code, const VariableRef& variable)
{
    for (const ExprOp& op : code.ops) {
        if ((op.code == ExprOpCode::kLoad || op.code == ExprOpCode::kLoadRef) && op.scope == variable.scope &&
            op.index == variable.index)
            return true;
    }
    return false;
}

} // namespace

bool RegisterBuilder::WholeBound(const Expression& code, Operand& value)
{
    if (!Value(code, value) || value.special != Operand::Special::kNone || !IsWhole(value.kind))
        return false;
    UseAsLong(value);
    return true;
}

bool RegisterBuilder::ForLong(const VariableRef& counter, const Expression& start, const Expression& end,
                              const Expression* step, int endSlot, int stepSlot, int exitAddress)
{
    if (AddressPosition(exitAddress) != 0 || counter.scope != StorageScope::Local ||
        IsByReferenceParameter(counter.index) || FixedKind(counter.type) != VT_I4 || ReadsVariable(end, counter) ||
        (step && ReadsVariable(*step, counter)))
        return false;
    Operand first;
    Operand last;
    Operand by;
    by.constant = true;
    by.kind = VT_I4;
    by.whole = 1;
    if (!WholeBound(start, first) || !WholeBound(end, last) || (step && !WholeBound(*step, by)))
        return false;
    // The counter first, then the end and step in their slots as Longs (the counter's kind), as the
    // general For keeps them.
    const int counterOffset = SlotOffset(counter.index);
    if (first.constant)
        Emit(RegisterCode::kConstantWhole, counterOffset).constant.whole = first.whole;
    else
        Emit(RegisterCode::kMoveWhole, counterOffset, first.offset);
    Release(first);
    const Operand lastCell = Materialize(last);
    Emit(RegisterCode::kStoreVariantWhole, SlotOffset(endSlot), lastCell.offset).kind = VT_I4;
    Release(lastCell);
    const Operand byCell = Materialize(by);
    Emit(RegisterCode::kStoreVariantWhole, SlotOffset(stepSlot), byCell.offset).kind = VT_I4;
    Release(byCell);
    // The first test reads the kept payloads: past the end for a step of 0 or more when the counter is
    // greater, for a negative step when it is less.
    Operand counterValue;
    counterValue.kind = VT_I4;
    counterValue.offset = counterOffset;
    Operand endValue = counterValue;
    endValue.offset = SlotOffset(endSlot);
    Operand stepValue = counterValue;
    stepValue.offset = SlotOffset(stepSlot);
    const auto leaveWhenPast = [&](OperationId test) {
        Operand past;
        if (!EmitWhole(test, VT_I4, counterValue, endValue, past) || !JumpIf(past, true, exitAddress))
            return false;
        Release(past);
        return true;
    };
    if (by.constant)
        return leaveWhenPast(by.whole < 0 ? OperationId::kLess : OperationId::kGreater);
    Operand zero;
    zero.constant = true;
    zero.kind = VT_I4;
    Operand negative;
    if (!EmitWhole(OperationId::kLess, VT_I4, stepValue, zero, negative))
        return false;
    const std::size_t toNegative = JumpForward(&negative, true);
    Release(negative);
    if (!leaveWhenPast(OperationId::kGreater))
        return false;
    const std::size_t toEnd = JumpForward(nullptr, false);
    LandHere(toNegative);
    if (!leaveWhenPast(OperationId::kLess))
        return false;
    LandHere(toEnd);
    return true;
}

bool RegisterBuilder::NextLong(const VariableRef& counter, int stepSlot, int endSlot, int address)
{
    if (AddressPosition(address) != 0 || counter.scope != StorageScope::Local || IsByReferenceParameter(counter.index) ||
        FixedKind(counter.type) != VT_I4)
        return false;
    m_fixups.push_back(Fixup{m_program.ops.size(), AddressIndex(address), 1});
    Emit(RegisterCode::kNextLong, SlotOffset(counter.index), SlotOffset(stepSlot), SlotOffset(endSlot));
    return true;
}

bool RegisterBuilder::NextVariant(const VariableRef& counter, int stepSlot, int endSlot, int address)
{
    if (AddressPosition(address) != 0 || counter.scope != StorageScope::Local || IsByReferenceParameter(counter.index) ||
        !counter.type.IsVariant() || counter.type.IsArray())
        return false;
    m_fixups.push_back(Fixup{m_program.ops.size(), AddressIndex(address), 1});
    Emit(RegisterCode::kNextVariant, SlotOffset(counter.index), SlotOffset(stepSlot), SlotOffset(endSlot));
    return true;
}

const VARIANT* RegisterBuilder::ObservedVariant(StorageScope scope, int index) const
{
    if (!m_observing)
        return nullptr;
    if (scope == StorageScope::Local) {
        const auto* cell = reinterpret_cast<const VARIANT*>(m_observedFrame + SlotOffset(index) - 8);
        return cell->vt == (VT_BYREF | VT_VARIANT) ? cell->pvarVal : cell;
    }
    if (scope == StorageScope::Module && static_cast<std::size_t>(index) < m_observedModuleCount)
        return &m_observedModule[index];
    return nullptr;
}

VARTYPE RegisterBuilder::ObservedKind(StorageScope scope, int index) const
{
    const VARIANT* cell = ObservedVariant(scope, index);
    if (!cell)
        return VT_EMPTY;
    switch (cell->vt) {
    case VT_I2:
    case VT_I4:
    case VT_R8:
    case VT_BOOL: return cell->vt;
    default: return VT_EMPTY;
    }
}

void RegisterBuilder::ResolveJumpTargets()
{
    for (const Fixup& fixup : m_fixups) {
        const int target = m_program.entries[static_cast<std::size_t>(fixup.statement)];
        switch (fixup.field) {
        case 0: m_program.ops[fixup.op].a = target; break;
        case 1: m_program.ops[fixup.op].constant.whole = target; break;
        default: m_program.rangeTables[fixup.table][fixup.item].target = target; break;
        }
    }
}

bool RegisterBuilder::BuildObserved(int index, char* frame, ModuleInstance* instance, int& start, bool& called)
{
    called = false;
    Statement* statement = m_procedure.StatementObject(index);
    if (!statement)
        return false;
    m_observing = true;
    m_observedFrame = frame;
    m_observedModule = instance && instance->VariableCount() > 0 ? &instance->Slot(0) : nullptr;
    m_observedModuleCount = instance ? instance->VariableCount() : 0;
    m_temporaryInUse.clear();
    m_lastResultOp = ~std::size_t{0};
    const RegisterProgram::Reach reach = m_program.CurrentReach();
    m_callEmitted = false;
    m_givesUpAfterCall = false;
    bool made = statement->EmitRegisters(*this) && !m_givesUpAfterCall;
    // The form ends where the statement's own operations end: at the entry of the next statement.
    if (made)
        m_fixups.push_back(Fixup{m_program.ops.size(), index + 1, 0});
    if (made)
        Emit(RegisterCode::kJump);
    if (!made || m_outOfRoom) {
        m_program.TakeBackTo(reach);
        return false;
    }
    ResolveJumpTargets();
    for (std::size_t i = reach.ops; i < m_program.ops.size(); ++i) {
        if (m_program.ops[i].code == RegisterCode::kSelectRanges)
            m_program.ops[i].constant.pointer = m_program.rangeTables[static_cast<std::size_t>(m_program.ops[i].c)].data();
    }
    start = static_cast<int>(reach.ops);
    called = m_callEmitted;
    return true;
}

bool FormObservedStatement(CompiledProcedure& procedure, RegisterProgram& program, int index, char* frame,
                           ModuleInstance* instance, int& start)
{
    // First with Variant locals read in place. A statement that makes a call may change them between the
    // check and the read, so its form is made again with each read copied where it happens.
    const RegisterProgram::Reach reach = program.CurrentReach();
    bool called = false;
    bool made = false;
    {
        RegisterBuilder builder(procedure, program);
        builder.GuardVariantReads(true);
        made = builder.BuildObserved(index, frame, instance, start, called);
    }
    if (made && !called)
        return true;
    // The first form is taken back (a failed one took itself back: the copies would fail the same way).
    program.TakeBackTo(reach);
    if (!made)
        return false;
    RegisterBuilder builder(procedure, program);
    return builder.BuildObserved(index, frame, instance, start, called);
}

bool RegisterBuilder::SelectRanges(const Operand& selectorIn, int keptSlot, const std::vector<Range>& ranges,
                                   const std::vector<int>& targets, int elseAddress)
{
    if (!IsWhole(selectorIn.kind) || AddressPosition(elseAddress) != 0)
        return false;
    for (const int target : targets) {
        if (AddressPosition(target) != 0)
            return false;
    }
    const Operand selector = Materialize(selectorIn);
    const std::size_t table = m_program.rangeTables.size();
    m_program.rangeTables.emplace_back();
    std::vector<SelectRange>& entries = m_program.rangeTables.back();
    const auto addressOf = [&](int part) {
        return part >= 1 && part <= static_cast<int>(targets.size()) ? targets[static_cast<std::size_t>(part - 1)]
                                                                     : elseAddress;
    };
    for (const Range& range : ranges) {
        m_fixups.push_back(Fixup{0, AddressIndex(addressOf(range.part)), 2, table, entries.size()});
        entries.push_back(SelectRange{range.low, range.high, 0});
    }
    m_fixups.push_back(Fixup{0, AddressIndex(elseAddress), 2, table, entries.size()});
    entries.push_back(SelectRange{LONG_MIN, LONG_MAX, 0});
    // Offset 0 (no slot starts there): the selector is not kept.
    RegisterOp& op = Emit(RegisterCode::kSelectRanges, keptSlot >= 0 ? SlotOffset(keptSlot) : 0, selector.offset,
                          static_cast<int>(table));
    op.kind = selector.kind;
    return true;
}

void RegisterBuilder::TakeBack(const Checkpoint& mark)
{
    m_program.ops.resize(mark.ops);
    m_temporaryInUse = mark.temporaryInUse;
    m_callEmitted = mark.callEmitted;
    m_givesUpAfterCall = mark.givesUpAfterCall;
    m_lastResultOp = ~std::size_t{0};
}

bool RegisterBuilder::WholeIndex(const Expression& code, std::size_t first, std::size_t last, Operand& index)
{
    std::vector<Operand> stack;
    if (!Translate(code, first, last, stack) || stack.size() != 1 ||
        stack.back().special != Operand::Special::kNone || !IsWhole(stack.back().kind))
        return false;
    UseAsLong(stack.back());
    index = Materialize(stack.back());
    return true;
}

bool RegisterBuilder::IndexedText(const Expression& code, std::size_t first, std::size_t last, TextOperand& text,
                                  Operand& index)
{
    if (last > code.ops.size() || last < first + 2 || !TextOperand::IsIndexedText(code.ops[last - 1], m_procedure))
        return false;
    if (last == first + 2 && IsIndexReadInPlace(code.ops[first]))
        return false;
    if (!WholeIndex(code, first, last - 1, index))
        return false;
    if (!text.CompileAt(code.ops[last - 1], index.offset, m_procedure)) {
        Release(index);
        return false;
    }
    return true;
}

bool RegisterBuilder::StoreText(const AssignStatement& statement, const VariableRef& target, const Expression& value)
{
    auto store = std::make_unique<VariableTextStore>(target);
    const Checkpoint mark = Mark();
    Operand index;
    if (IndexedText(value, 0, value.ops.size(), store->Value(), index)) {
        Emit(RegisterCode::kStoreTextAt).constant.pointer = store.get();
        Release(index);
        m_program.textStores.push_back(std::move(store));
        return true;
    }
    TakeBack(mark);
    Emit(RegisterCode::kStoreText).constant.pointer = &statement;
    return true;
}

bool RegisterBuilder::StoreFieldText(const AssignPathStatement& statement, const Expression& code, int path)
{
    const std::size_t valueStart = FieldTextStore::ValueStart(code, path, m_procedure);
    const bool indexInPlace = valueStart == 1 && IsIndexReadInPlace(code.ops[0]);
    const Checkpoint mark = Mark();
    Operand index;
    auto store = std::make_unique<FieldTextStore>();
    if (valueStart > 0 && !indexInPlace && WholeIndex(code, 0, valueStart, index) &&
        store->CompileAt(code, valueStart, path, index.offset, m_procedure)) {
        Emit(RegisterCode::kStoreFieldTextAt).constant.pointer = store.get();
        Release(index);
        m_program.fieldTextStores.push_back(std::move(store));
        return true;
    }
    TakeBack(mark);
    Emit(RegisterCode::kStoreFieldText).constant.pointer = &statement;
    return true;
}

bool RegisterBuilder::SelectText(const BranchStatement& statement, const Expression& selector, int partCount,
                                 const std::vector<int>& targets, int elseAddress)
{
    // A selector whose index is more than a local whole variable is read at the index computed here.
    auto selection = std::make_unique<TextSelection>(statement);
    const Checkpoint mark = Mark();
    Operand index;
    const bool computed = IndexedText(selector, 0, selector.ops.size(), selection->Selector(), index);
    if (!computed)
        TakeBack(mark);
    const Operand part = NewTemporary(VT_I4);
    RegisterOp& op = Emit(computed ? RegisterCode::kSelectTextAt : RegisterCode::kSelectText, part.offset);
    if (computed) {
        op.constant.pointer = selection.get();
        Release(index);
        m_program.textSelections.push_back(std::move(selection));
    } else {
        op.constant.pointer = &statement;
    }
    std::vector<Range> ranges;
    for (int i = 1; i <= partCount; ++i)
        ranges.push_back(Range{i, i, i});
    // The string selector is not kept: nothing after the Select line reads it.
    const bool made = SelectRanges(part, -1, ranges, targets, elseAddress);
    Release(part);
    return made;
}

} // namespace brannoc
