// The register runner: the statement loop of a procedure that has a register form. Each operation
// jumps straight to the next one's code (the labels-as-values extension), so a statement of plain
// numbers costs a few instructions per operation instead of a statement dispatch and a call per node.
#include "code/RegisterCode.h"

#include "code/FastExpression.h"
#include "code/NumericKinds.h"
#include "code/ObservedForms.h"
#include "code/ProcedureBody.h"
#include "code/RecordAccess.h"
#include "code/Statements.h"
#include "exec/Activation.h"
#include "exec/CallsInLoop.h"
#include "exec/HaltFlags.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "values/ValueError.h"

#include <cfloat>
#include <climits>
#include <cmath>

namespace brannoc {

namespace {

// A double result that the register form may keep: a normal number, or a zero that is exact.
// Compared on each side of zero rather than through the magnitude: the compiler computes fabs on the
// x87 stack here, a round trip through memory on the path of every Double operation.
inline bool IsKeptReal(double value, bool exactZero)
{
    if (value >= DBL_MIN)
        return value <= DBL_MAX;
    if (value <= -DBL_MIN)
        return value >= -DBL_MAX;
    return value == 0 && exactZero;
}

inline bool FitsInteger(LONG value) { return value >= SHRT_MIN && value <= SHRT_MAX; }

// The variable a by-reference parameter's slot stands for: the caller's cell it refers to, or the slot
// itself when it holds a converted copy; null when that cell does not hold kind.
inline VARIANT* ReferredCell(char* frame, int offset, VARTYPE kind)
{
    auto* cell = reinterpret_cast<VARIANT*>(frame + offset - 8);
    if (cell->vt == (VT_BYREF | VT_VARIANT))
        cell = cell->pvarVal;
    return cell->vt == kind ? cell : nullptr;
}


// A Variant that a register store may overwrite: the cell itself or the Variant it refers to, when it
// holds a value that owns nothing (and no reference); else null.
inline VARIANT* PlainVariant(VARIANT* cell)
{
    if (cell->vt == (VT_BYREF | VT_VARIANT))
        cell = cell->pvarVal;
    return (cell->vt & VT_BYREF) == 0 && OwnsNothing(cell->vt) ? cell : nullptr;
}

// The cell of a Variant local that is not a by-reference parameter: it holds its value itself, so no
// reference is followed. Null when it does not hold kind.
inline VARIANT* OwnVariant(char* frame, int offset, VARTYPE kind)
{
    auto* cell = reinterpret_cast<VARIANT*>(frame + offset - 8);
    return cell->vt == kind ? cell : nullptr;
}

// The same cell when a store may overwrite it (it holds a value that owns nothing); else null. A cell
// that holds anything else, a reference included, leaves the store to the general code.
inline VARIANT* OwnPlainVariant(char* frame, int offset)
{
    auto* cell = reinterpret_cast<VARIANT*>(frame + offset - 8);
    return (cell->vt & VT_BYREF) == 0 && OwnsNothing(cell->vt) ? cell : nullptr;
}

// A form made for the kinds some Variants held gave up: after a few times it is made again for the
// kinds they hold then (or, with no forms left, the statement runs as its object from now on).
void NoteGivingUp(RegisterProgram& program, int index)
{
    constexpr std::uint8_t kGivingUpBeforeNewForm = 8;
    auto& count = program.givenUp[static_cast<std::size_t>(index)];
    if (++count < kGivingUpBeforeNewForm)
        return;
    count = 0;
    ChooseNextForm(program, index);
}

// Writes the callee's parameter slots from the caller's frame: values of their own kind, or references to
// the caller's cells (`cells`, found before the call began, when some reference may fail).
[[gnu::always_inline]] inline void BindRegisterArguments(const RegisterCall& call, char* frame, VARIANT* const* cells,
                                                         VARIANT* slots)
{
    const RegisterArgument* const first = call.arguments.data();
    const RegisterArgument* const end = first + call.arguments.size();
    VARIANT* slot = slots;
    for (const RegisterArgument* argument = first; argument != end; ++argument, ++slot) {
        if (argument->mode == ArgumentMode::kWhole) {
            // A narrow value's low half is the value; the high half of the payload is not read as an I2.
            slot->vt = argument->kind;
            slot->lVal = *reinterpret_cast<const LONG*>(frame + argument->location);
        } else if (argument->mode == ArgumentMode::kReal) {
            slot->vt = VT_R8;
            slot->dblVal = *reinterpret_cast<const double*>(frame + argument->location);
        } else {
            slot->vt = VT_BYREF | VT_VARIANT;
            slot->pvarVal = call.referencesMayFail ? cells[argument - first]
                                                   : reinterpret_cast<VARIANT*>(frame + argument->location - 8);
        }
    }
}

// The common call, begun in line by the Call operation: no reference argument that may fail, a callee of
// the register form, and what TryEnterFramedCall needs. The callee, entered, with its parameters bound
// and its result target set; null, with nothing done, otherwise (BeginRegisterCall goes the general way).
[[gnu::always_inline]] inline Activation* EnterQuickCall(Interpreter& interpreter, const RegisterOp& op, char* frame,
                                                         ModuleInstance* target)
{
    const auto& call = *static_cast<const RegisterCall*>(op.constant.pointer);
    ProcedureCode& procedure = *call.procedure;
    if (call.referencesMayFail || procedure.Table().runner != &RunRegisterProgram)
        return nullptr;
    Activation* callee = interpreter.TryEnterFramedCall(procedure, target);
    if (!callee)
        return nullptr;
    BindRegisterArguments(call, frame, nullptr, static_cast<VARIANT*>(callee->Locals()));
    if (op.a >= 0)
        callee->SetResultTarget(reinterpret_cast<VARIANT*>(frame + op.a - 8));
    return callee;
}

enum class CallStart { kGiveUp, kEnded, kWaiting, kFailed, kEntered };

// Begins the call of operation `op` (a Call or MemberCall) in instance `target`: the arguments bound from
// the caller's frame, the result into its temporary. A callee that has a register form runs in the
// caller's loop (kEntered: `callee` is its activation, on the execution stack); any other runs at once
// or goes the scheduled way. kGiveUp (nothing happened) when a reference argument's variable does not
// hold its kind or the callee has no frame layout. Runs after EnterQuickCall found the call not to be a
// quick one.
CallStart BeginRegisterCall(Interpreter& interpreter, const RegisterOp& op, char* frame, VARIANT* moduleSlots,
                            std::int32_t moduleCount, ModuleInstance* target, Activation*& callee)
{
    const auto& call = *static_cast<const RegisterCall*>(op.constant.pointer);
    ProcedureCode& procedure = *call.procedure;
    // References that may not hold their kind are found before the call begins.
    VARIANT* cells[kMostRegisterArguments];
    const std::size_t count = call.arguments.size();
    for (std::size_t i = 0; call.referencesMayFail && i < count; ++i) {
        const RegisterArgument& argument = call.arguments[i];
        switch (argument.mode) {
        case ArgumentMode::kLocalReference:
            cells[i] = reinterpret_cast<VARIANT*>(frame + argument.location - 8);
            break;
        case ArgumentMode::kParameterReference:
            cells[i] = ReferredCell(frame, argument.location, argument.kind);
            break;
        case ArgumentMode::kModuleReference:
            cells[i] = argument.location < moduleCount && moduleSlots[argument.location].vt == argument.kind
                           ? &moduleSlots[argument.location]
                           : nullptr;
            break;
        default:
            cells[i] = reinterpret_cast<VARIANT*>(frame);
            break;
        }
        if (!cells[i])
            return CallStart::kGiveUp;
    }
    if (!procedure.Layout().image)
        return CallStart::kGiveUp;
    // A callee of the register form usually goes straight onto the execution stack, already entered;
    // EnterQuickCall has tried that already unless some reference argument had to be checked first.
    const bool inLoop = procedure.Table().runner == &RunRegisterProgram;
    callee = inLoop && call.referencesMayFail ? interpreter.TryEnterFramedCall(procedure, target) : nullptr;
    const bool entered = callee != nullptr;
    if (!entered && !(callee = interpreter.BeginFramedCall(procedure, target)))
        return CallStart::kFailed;
    BindRegisterArguments(call, frame, cells, static_cast<VARIANT*>(callee->Locals()));
    if (op.a >= 0)
        callee->SetResultTarget(reinterpret_cast<VARIANT*>(frame + op.a - 8));
    if (entered || (inLoop && interpreter.EnterCallInLoop(*callee)))
        return CallStart::kEntered;
    switch (interpreter.RunBegunCall(*callee)) {
    case Interpreter::CallOutcome::kEnded: return CallStart::kEnded;
    case Interpreter::CallOutcome::kWaiting: return CallStart::kWaiting;
    default: return CallStart::kFailed;
    }
}

} // namespace

bool RunRegisterProgram(Activation& base, ExecEntry& entry, const void* data)
{
    if (!DirectFormsEnabled())
        return base.RunStatements(entry);

    static const void* const kLabels[] = {
#define BRANNOC_REGISTER_LABEL(name) &&op_##name,
        BRANNOC_REGISTER_OPERATIONS(BRANNOC_REGISTER_LABEL)
#undef BRANNOC_REGISTER_LABEL
    };
    static_assert(sizeof(kLabels) / sizeof(kLabels[0]) == static_cast<std::size_t>(RegisterCode::kCount));

    Interpreter& interpreter = *Interpreter::Current();
    // The activation whose statements run: the base, or a callee that the loop runs itself (a call of the
    // register form, entered at a Call operation and left at its End), with its program and frame.
    Activation* activation = nullptr;
    // Forms made while running change the program (appended operations, patched entries).
    RegisterProgram* program = nullptr;
    CompiledProcedure* procedure = nullptr;
    Node* const* statements = nullptr;
    const RegisterOp* ops = nullptr;
    const int* entries = nullptr;
    int endIndex = 0;
    char* frame = nullptr;
    ModuleInstance* instance = nullptr;
    VARIANT* moduleSlots = nullptr;
    std::int32_t moduleCount = 0;
    // A call within the same procedure (recursion) or the same module instance keeps what it shares with
    // the caller: a program's operations never move once it runs (forms made while running use room
    // reserved when it was built), and a module instance's variables stay where they are while it runs.
    const auto enter = [&](Activation& which, const void* programData) {
        activation = &which;
        frame = static_cast<char*>(which.Locals());
        if (programData != program) {
            program = const_cast<RegisterProgram*>(static_cast<const RegisterProgram*>(programData));
            procedure = static_cast<CompiledProcedure*>(&which.OwnProcedure());
            statements = procedure->Table().statements;
            ops = program->ops.data();
            entries = program->entries.data();
            endIndex = static_cast<int>(program->entries.size()) - 1;
        }
        if (which.Instance() != instance) {
            instance = which.Instance();
            moduleCount = static_cast<std::int32_t>(instance ? instance->VariableCount() : 0);
            moduleSlots = moduleCount > 0 ? &instance->Slot(0) : nullptr;
        }
    };
    enter(base, data);
    // The activation at the bottom of this loop: the base, or a caller the loop went on into.
    Activation* bottom = &base;
    // A callee that a Call operation begins in this loop.
    Activation* entering = nullptr;

    // Where the statement loop goes on: the entry of the activation's next statement.
    const auto resume = [&]() {
        const int next = activation->NextIndex();
        return ops + entries[next < 0 ? 0 : next > endIndex ? endIndex : next];
    };

#define BRANNOC_DISPATCH() goto* kLabels[static_cast<int>(pc->code)]
// After a statement object ran: the statement loop goes on at the next statement, whose marker makes
// the full tests.
#define BRANNOC_RESUME()                                                                                        \
    do {                                                                                                        \
        budget = 0;                                                                                             \
        pc = resume();                                                                                          \
        BRANNOC_DISPATCH();                                                                                     \
    } while (0)
#define BRANNOC_NEXT()                                                                                          \
    do {                                                                                                        \
        ++pc;                                                                                                   \
        BRANNOC_DISPATCH();                                                                                     \
    } while (0)
#define BRANNOC_WHOLE(offset) (*reinterpret_cast<LONG*>(frame + (offset)))
#define BRANNOC_NARROW(offset) (*reinterpret_cast<SHORT*>(frame + (offset)))
#define BRANNOC_REAL(offset) (*reinterpret_cast<double*>(frame + (offset)))
#define BRANNOC_CALL_ARGUMENTS(target) interpreter, *pc, frame, moduleSlots, moduleCount, (target)
#define BRANNOC_MODULE_CELL(index, kind)                                                                        \
    ((index) < moduleCount && moduleSlots[(index)].vt == (kind) ? &moduleSlots[(index)] : nullptr)

    // A statement that stopped at a call goes on after it; else the next statement runs.
    const int resumeOperation = activation->TakeResumeOperation();
    // A call of the running statement has run: the statement can no longer give up (its object would
    // run the call again), and the Long arithmetic after it raises its own errors (`arithmetic_fault`).
    bool called = resumeOperation >= 0;
    long fault = 0;
    // Statements this loop may still enter without the break and time-slice tests and without reading
    // the halt byte (Interpreter::TakeTestBudget). Nothing in the register form records an error or a
    // request without leaving the loop at once; whatever runs outside it (a statement object, a call
    // that is not entered here) may, and the budget is dropped after it, so the next marker makes the
    // full tests again (a call's end reads the halt byte itself, for what a terminator recorded). A
    // thread waiting for the engine is seen at most a budget later.
    int budget = 0;
    const RegisterOp* pc = resumeOperation >= 0 ? ops + resumeOperation : resume();
    BRANNOC_DISPATCH();

    // ---- Statements and control ----
// Enters the marker's statement, after the break and time-slice tests once the budget is spent; when
// they stop the run, the statement has not run and is tried again on a later step.
#define BRANNOC_ENTER_STATEMENT()                                                                               \
    do {                                                                                                        \
        if (--budget < 0) [[unlikely]] {                                                                        \
            if (HaltFlags::Any() || interpreter.StatementCheckStops(*activation, pc->a)) {                      \
                budget = 0;                                                                                     \
                activation->HoldAt(pc->a);                                                                      \
                return false;                                                                                   \
            }                                                                                                   \
            budget = interpreter.TakeTestBudget();                                                              \
        }                                                                                                       \
        activation->EnterStatement(pc->a);                                                                      \
        called = false;                                                                                         \
    } while (0)
op_Statement:
    BRANNOC_ENTER_STATEMENT();
    BRANNOC_NEXT();
op_StatementJump:
    // A statement over Variants whose form was made: the marker goes straight to it.
    BRANNOC_ENTER_STATEMENT();
    pc = ops + pc->b;
    BRANNOC_DISPATCH();
op_StatementPair:
    // An empty statement and the next one, whose plain marker follows: when the budget covers both,
    // both are entered at once (nothing runs in between); else each marker runs in turn.
    if ((pc + 1)->code != RegisterCode::kStatement || budget < 2)
        goto op_Statement;
    budget -= 2;
    ++pc;
    activation->EnterStatement(pc->a);
    called = false;
    BRANNOC_NEXT();
op_StatementEnd:
    // An empty statement before the procedure's end: when the budget covers it, the procedure ends.
    if (budget < 1)
        goto op_Statement;
    --budget;
    ++pc;
    goto op_End;
op_Replaced:
    // A break point stands in the statement's place: its object runs instead of the statement's form.
    BRANNOC_ENTER_STATEMENT();
    if (!statements[pc->a]->Execute() || HaltFlags::Any())
        return false;
    BRANNOC_RESUME();
op_General:
    // A statement that ran into an error or recorded a request answers true with a halt bit set.
    if (!statements[pc->a]->Execute() || HaltFlags::Any())
        return false;
    BRANNOC_RESUME();
arithmetic_fault:
    // Overflow or division by zero in Long arithmetic: before a call of the statement ran, its object
    // runs it and raises the error; after one, the error is raised here.
    if (called) {
        (void)interpreter.SignalError(fault);
        return false;
    }
    goto give_up;
give_up: {
    // The current statement's register form gave up before changing anything: its object runs it. A
    // form made for the kinds some Variants held is made again when it keeps giving up.
    const int index = activation->CurrentIndex();
    if (program->observed[static_cast<std::size_t>(index)])
        NoteGivingUp(*program, index);
    if (!statements[index]->Execute() || HaltFlags::Any())
        return false;
    BRANNOC_RESUME();
}
op_Observe: {
    const int index = pc->a;
    int start = 0;
    if (program->formsLeft[static_cast<std::size_t>(index)] > 0) {
        --program->formsLeft[static_cast<std::size_t>(index)];
        if (FormObservedStatement(*procedure, *program, index, frame, instance, start)) {
            program->observed[static_cast<std::size_t>(index)] = 1;
            program->givenUp[static_cast<std::size_t>(index)] = 0;
            RecordObservedForm(*program, index, start);
            EnterFormAt(*program, index, start);
            pc = ops + start;
            BRANNOC_DISPATCH();
        }
    }
    // No form for these kinds (a Variant holds something else): the object runs the statement.
    if (program->formsLeft[static_cast<std::size_t>(index)] == 0)
        ChooseNextForm(*program, index);
    if (!statements[index]->Execute() || HaltFlags::Any())
        return false;
    BRANNOC_RESUME();
}
op_End:
    if (activation == bottom) {
        // The activation the step loop gave this loop has ended. When its caller waits right below it for
        // this call, the loop ends the call and goes on in the caller, as it does for calls it entered
        // itself (after a yield inside a deep recursion, each level's return stays in one loop).
        if (!interpreter.MayReturnIntoCaller(*bottom, entry, &RunRegisterProgram)) {
            if (bottom != &base) {
                // The step loop's entry is gone: the caller's own entry is the one on top now.
                interpreter.FinishCallInLoop();
                return false;
            }
            entry.state = ExecEntry::kFinished;
            return !HaltFlags::Any();
        }
        Interpreter::LeaveSteppedEntry(entry);
        bottom = bottom->Caller();
    } else if (HaltFlags::Any()) {
        // A callee the loop entered itself has ended, but a request or error recorded by its last
        // statement is seen to by the step loop first, which then ends the call as it ends a scheduled one.
        interpreter.FinishCallInLoop();
        return false;
    }
    {
        Activation* caller = activation->Caller();
        interpreter.LeaveCallInLoop(*activation);
        enter(*caller, caller->OwnProcedure().Table().runnerData);
        // Whatever the call's end ran (a terminator) left a request: the calling statement goes on
        // after the call on a later step.
        if (HaltFlags::Any())
            return false;
        pc = ops + activation->TakeResumeOperation();
        called = true;
        BRANNOC_DISPATCH();
    }
op_Jump:
    pc = ops + pc->a;
    BRANNOC_DISPATCH();
op_JumpIfTrue:
    if (BRANNOC_WHOLE(pc->b) != 0) {
        pc = ops + pc->a;
        BRANNOC_DISPATCH();
    }
    BRANNOC_NEXT();
op_JumpIfFalse:
    if (BRANNOC_WHOLE(pc->b) == 0) {
        pc = ops + pc->a;
        BRANNOC_DISPATCH();
    }
    BRANNOC_NEXT();

    // ---- Moves, constants and conversions ----
op_ConstantWhole:
    BRANNOC_WHOLE(pc->a) = pc->constant.whole;
    BRANNOC_NEXT();
op_ConstantReal:
    BRANNOC_REAL(pc->a) = pc->constant.real;
    BRANNOC_NEXT();
op_MoveWhole:
    BRANNOC_WHOLE(pc->a) = BRANNOC_WHOLE(pc->b);
    BRANNOC_NEXT();
op_MoveReal:
    BRANNOC_REAL(pc->a) = BRANNOC_REAL(pc->b);
    BRANNOC_NEXT();
op_WholeToReal:
    BRANNOC_REAL(pc->a) = BRANNOC_WHOLE(pc->b);
    BRANNOC_NEXT();
op_LoadNarrow:
    BRANNOC_WHOLE(pc->a) = BRANNOC_NARROW(pc->b);
    BRANNOC_NEXT();
op_StoreNarrow:
    BRANNOC_NARROW(pc->a) = static_cast<SHORT>(BRANNOC_WHOLE(pc->b));
    BRANNOC_NEXT();
op_StoreNarrowChecked: {
    const LONG value = BRANNOC_WHOLE(pc->b);
    if (!FitsInteger(value))
        goto give_up;
    BRANNOC_NARROW(pc->a) = static_cast<SHORT>(value);
    BRANNOC_NEXT();
}

    // ---- By-reference parameters, module variables, statics and Variants ----
// A load from a variable's cell: the cell `locate` finds (null when it does not hold the operation's
// kind) gives its payload `member` to operand a.
#define BRANNOC_CELL_LOAD(label, locate, member, target)                                                      \
    label : {                                                                                                   \
        const VARIANT* cell = (locate);                                                                         \
        if (!cell)                                                                                              \
            goto give_up;                                                                                       \
        target(pc->a) = cell->member;                                                                           \
        BRANNOC_NEXT();                                                                                         \
    }
// A store into a variable's cell: the cell `locate` finds (null when it may not take the value) gets kind
// `tag` and operand b, converted to the payload's type, as its payload `member`.
#define BRANNOC_CELL_STORE(label, locate, tag, member, storage, source)                                       \
    label : {                                                                                                   \
        VARIANT* cell = (locate);                                                                               \
        if (!cell)                                                                                              \
            goto give_up;                                                                                       \
        cell->vt = static_cast<VARTYPE>(tag);                                                                   \
        cell->member = static_cast<storage>(source(pc->b));                                                     \
        BRANNOC_NEXT();                                                                                         \
    }
#define BRANNOC_VARIANT_CELL_AT(offset) PlainVariant(reinterpret_cast<VARIANT*>(frame + (offset) - 8))
#define BRANNOC_MODULE_VARIANT_CELL_AT(index) ((index) < moduleCount ? PlainVariant(&moduleSlots[(index)]) : nullptr)
// A Variant stored from a temporary that carries its own kind (a result that may have been promoted).
#define BRANNOC_TAGGED_STORE(label, locate)                                                                   \
    label : {                                                                                                   \
        VARIANT* cell = (locate);                                                                               \
        if (!cell)                                                                                              \
            goto give_up;                                                                                       \
        const auto* value = reinterpret_cast<const VARIANT*>(frame + pc->b - 8);                                \
        cell->vt = value->vt;                                                                                   \
        cell->llVal = value->llVal;                                                                             \
        BRANNOC_NEXT();                                                                                         \
    }
// Integer and Long arithmetic whose result goes to a Variant: an exact result outside the kind climbs to
// the next kind (Integer to Long, Long to Double) as the general code recomputes it there. The result
// and its kind go into the temporary's cell.
#define BRANNOC_PROMOTING(label, konstant, symbol, destination)                                                 \
    label : {                                                                                                   \
        const long long exact = static_cast<long long>(BRANNOC_WHOLE(pc->b))                                    \
            symbol static_cast<long long>((konstant) ? pc->constant.whole : BRANNOC_WHOLE(pc->c));             \
        VARIANT* cell = (destination);                                                                          \
        if (!cell)                                                                                              \
            goto give_up;                                                                                       \
        if (pc->kind == VT_I2 && exact >= SHRT_MIN && exact <= SHRT_MAX) {                                      \
            cell->vt = VT_I2;                                                                                   \
            cell->llVal = 0;                                                                                    \
            cell->iVal = static_cast<SHORT>(exact);                                                             \
        } else if (exact >= LONG_MIN && exact <= LONG_MAX) {                                                    \
            cell->vt = VT_I4;                                                                                   \
            cell->llVal = 0;                                                                                    \
            cell->lVal = static_cast<LONG>(exact);                                                              \
        } else {                                                                                                \
            /* The operands are exact as doubles, and the double operation rounds the exact result once, as \
               converting it would, without going through the 64-bit conversion. */                          \
            cell->vt = VT_R8;                                                                                   \
            cell->dblVal = static_cast<double>(BRANNOC_WHOLE(pc->b))                                           \
                symbol static_cast<double>((konstant) ? pc->constant.whole : BRANNOC_WHOLE(pc->c));             \
        }                                                                                                       \
        BRANNOC_NEXT();                                                                                         \
    }
    BRANNOC_TAGGED_STORE(op_StoreVariantTagged, BRANNOC_VARIANT_CELL_AT(pc->a))
    BRANNOC_TAGGED_STORE(op_StoreModuleVariantTagged, BRANNOC_MODULE_VARIANT_CELL_AT(pc->a))
#define BRANNOC_TEMPORARY_CELL reinterpret_cast<VARIANT*>(frame + pc->a - 8)
    BRANNOC_PROMOTING(op_PromoteAdd, false, +, BRANNOC_TEMPORARY_CELL)
    BRANNOC_PROMOTING(op_PromoteAddK, true, +, BRANNOC_TEMPORARY_CELL)
    BRANNOC_PROMOTING(op_PromoteSubtract, false, -, BRANNOC_TEMPORARY_CELL)
    BRANNOC_PROMOTING(op_PromoteSubtractK, true, -, BRANNOC_TEMPORARY_CELL)
    BRANNOC_PROMOTING(op_PromoteMultiply, false, *, BRANNOC_TEMPORARY_CELL)
    BRANNOC_PROMOTING(op_PromoteMultiplyK, true, *, BRANNOC_TEMPORARY_CELL)
#undef BRANNOC_TEMPORARY_CELL
    // The same computed straight into a Variant local's own cell, when it may be overwritten.
    BRANNOC_PROMOTING(op_PromoteAddInto, false, +, OwnPlainVariant(frame, pc->a))
    BRANNOC_PROMOTING(op_PromoteAddKInto, true, +, OwnPlainVariant(frame, pc->a))
    BRANNOC_PROMOTING(op_PromoteSubtractInto, false, -, OwnPlainVariant(frame, pc->a))
    BRANNOC_PROMOTING(op_PromoteSubtractKInto, true, -, OwnPlainVariant(frame, pc->a))
    BRANNOC_PROMOTING(op_PromoteMultiplyInto, false, *, OwnPlainVariant(frame, pc->a))
    BRANNOC_PROMOTING(op_PromoteMultiplyKInto, true, *, OwnPlainVariant(frame, pc->a))
#undef BRANNOC_TAGGED_STORE
#undef BRANNOC_PROMOTING
#undef BRANNOC_VARIANT_CELL_AT
#undef BRANNOC_MODULE_VARIANT_CELL_AT
#define BRANNOC_STATIC_CELL(kind)                                                                               \
    (static_cast<const VARIANT*>(pc->constant.pointer)->vt == (kind) ? static_cast<const VARIANT*>(pc->constant.pointer) \
                                                                     : nullptr)
#define BRANNOC_VARIANT_CELL(offset) PlainVariant(reinterpret_cast<VARIANT*>(frame + (offset) - 8))
#define BRANNOC_MODULE_VARIANT_CELL(index) ((index) < moduleCount ? PlainVariant(&moduleSlots[(index)]) : nullptr)
    // By-reference parameters, module variables and statics hold their declared kinds (checked at each
    // access: a by-reference parameter may refer to a Variant); Variants take whatever kind is stored.
    BRANNOC_CELL_LOAD(op_LoadRefWhole, ReferredCell(frame, pc->b, VT_I4), lVal, BRANNOC_WHOLE)
    BRANNOC_CELL_LOAD(op_LoadRefNarrow, ReferredCell(frame, pc->b, static_cast<VARTYPE>(pc->kind)), iVal, BRANNOC_WHOLE)
    BRANNOC_CELL_LOAD(op_LoadRefReal, ReferredCell(frame, pc->b, VT_R8), dblVal, BRANNOC_REAL)
    BRANNOC_CELL_STORE(op_StoreRefWhole, ReferredCell(frame, pc->a, VT_I4), VT_I4, lVal, LONG, BRANNOC_WHOLE)
    BRANNOC_CELL_STORE(op_StoreRefNarrow, ReferredCell(frame, pc->a, static_cast<VARTYPE>(pc->kind)), pc->kind, iVal, SHORT,
                       BRANNOC_WHOLE)
    BRANNOC_CELL_STORE(op_StoreRefReal, ReferredCell(frame, pc->a, VT_R8), VT_R8, dblVal, double, BRANNOC_REAL)
    BRANNOC_CELL_LOAD(op_LoadModuleWhole, BRANNOC_MODULE_CELL(pc->b, VT_I4), lVal, BRANNOC_WHOLE)
    BRANNOC_CELL_LOAD(op_LoadModuleNarrow, BRANNOC_MODULE_CELL(pc->b, pc->kind), iVal, BRANNOC_WHOLE)
    BRANNOC_CELL_LOAD(op_LoadModuleReal, BRANNOC_MODULE_CELL(pc->b, VT_R8), dblVal, BRANNOC_REAL)
    BRANNOC_CELL_STORE(op_StoreModuleWhole, BRANNOC_MODULE_CELL(pc->a, VT_I4), VT_I4, lVal, LONG, BRANNOC_WHOLE)
    BRANNOC_CELL_STORE(op_StoreModuleNarrow, BRANNOC_MODULE_CELL(pc->a, pc->kind), pc->kind, iVal, SHORT, BRANNOC_WHOLE)
    BRANNOC_CELL_STORE(op_StoreModuleReal, BRANNOC_MODULE_CELL(pc->a, VT_R8), VT_R8, dblVal, double, BRANNOC_REAL)
    BRANNOC_CELL_LOAD(op_LoadStaticWhole, BRANNOC_STATIC_CELL(VT_I4), lVal, BRANNOC_WHOLE)
    BRANNOC_CELL_LOAD(op_LoadStaticNarrow, BRANNOC_STATIC_CELL(pc->kind), iVal, BRANNOC_WHOLE)
    BRANNOC_CELL_LOAD(op_LoadStaticReal, BRANNOC_STATIC_CELL(VT_R8), dblVal, BRANNOC_REAL)
    BRANNOC_CELL_STORE(op_StoreVariantWhole, BRANNOC_VARIANT_CELL(pc->a), VT_I4, lVal, LONG, BRANNOC_WHOLE)
    BRANNOC_CELL_STORE(op_StoreVariantNarrow, BRANNOC_VARIANT_CELL(pc->a), pc->kind, iVal, SHORT, BRANNOC_WHOLE)
    BRANNOC_CELL_STORE(op_StoreVariantReal, BRANNOC_VARIANT_CELL(pc->a), VT_R8, dblVal, double, BRANNOC_REAL)
    BRANNOC_CELL_LOAD(op_LoadVariantWhole, OwnVariant(frame, pc->b, VT_I4), lVal, BRANNOC_WHOLE)
    BRANNOC_CELL_LOAD(op_LoadVariantNarrow, OwnVariant(frame, pc->b, static_cast<VARTYPE>(pc->kind)), iVal, BRANNOC_WHOLE)
    BRANNOC_CELL_LOAD(op_LoadVariantReal, OwnVariant(frame, pc->b, VT_R8), dblVal, BRANNOC_REAL)
op_GuardVariant:
    // A form whose statement makes no call reads a Variant local's Long or Double payload where it lies,
    // after this check at the read has found the kind the form was made for.
    if (reinterpret_cast<const VARIANT*>(frame + pc->a - 8)->vt != pc->kind)
        goto give_up;
    BRANNOC_NEXT();
    BRANNOC_CELL_STORE(op_StoreOwnVariantWhole, OwnPlainVariant(frame, pc->a), VT_I4, lVal, LONG, BRANNOC_WHOLE)
    BRANNOC_CELL_STORE(op_StoreOwnVariantNarrow, OwnPlainVariant(frame, pc->a), pc->kind, iVal, SHORT, BRANNOC_WHOLE)
    BRANNOC_CELL_STORE(op_StoreOwnVariantReal, OwnPlainVariant(frame, pc->a), VT_R8, dblVal, double, BRANNOC_REAL)
    BRANNOC_CELL_STORE(op_StoreModuleVariantWhole, BRANNOC_MODULE_VARIANT_CELL(pc->a), VT_I4, lVal, LONG, BRANNOC_WHOLE)
    BRANNOC_CELL_STORE(op_StoreModuleVariantNarrow, BRANNOC_MODULE_VARIANT_CELL(pc->a), pc->kind, iVal, SHORT, BRANNOC_WHOLE)
    BRANNOC_CELL_STORE(op_StoreModuleVariantReal, BRANNOC_MODULE_VARIANT_CELL(pc->a), VT_R8, dblVal, double, BRANNOC_REAL)
op_StoreModuleNarrowChecked: {
    VARIANT* cell = BRANNOC_MODULE_CELL(pc->a, VT_I2);
    const LONG value = BRANNOC_WHOLE(pc->b);
    if (!cell || !FitsInteger(value))
        goto give_up;
    cell->iVal = static_cast<SHORT>(value);
    BRANNOC_NEXT();
}
#undef BRANNOC_CELL_LOAD
#undef BRANNOC_CELL_STORE
#undef BRANNOC_STATIC_CELL
#undef BRANNOC_VARIANT_CELL
#undef BRANNOC_MODULE_VARIANT_CELL

    // ---- Array elements ----
#define BRANNOC_LOCAL_ELEMENT(array, index)                                                                     \
    ElementOfVector(reinterpret_cast<VARIANT*>(frame + (array) - 8), static_cast<VARTYPE>(pc->kind),            \
                    BRANNOC_WHOLE(index))
#define BRANNOC_MODULE_ELEMENT(array, index)                                                                    \
    ((array) < moduleCount ? ElementOfVector(&moduleSlots[(array)], static_cast<VARTYPE>(pc->kind),             \
                                             BRANNOC_WHOLE(index))                                              \
                           : nullptr)
// An element load: the element of array operand b at index operand c, read as its storage type, into a.
#define BRANNOC_ELEMENT_LOAD(label, locate, storage, target)                                                  \
    label : {                                                                                                   \
        const char* element = locate(pc->b, pc->c);                                                             \
        if (!element)                                                                                           \
            goto give_up;                                                                                       \
        target(pc->a) = *reinterpret_cast<const storage*>(element);                                            \
        BRANNOC_NEXT();                                                                                         \
    }
// An element store: operand b, converted to the storage type, into the element of array a at index c.
#define BRANNOC_ELEMENT_STORE(label, locate, storage, source)                                                 \
    label : {                                                                                                   \
        char* element = locate(pc->a, pc->c);                                                                   \
        if (!element)                                                                                           \
            goto give_up;                                                                                       \
        *reinterpret_cast<storage*>(element) = static_cast<storage>(source(pc->b));                            \
        BRANNOC_NEXT();                                                                                         \
    }
    BRANNOC_ELEMENT_LOAD(op_ElementLoadWhole, BRANNOC_LOCAL_ELEMENT, LONG, BRANNOC_WHOLE)
    BRANNOC_ELEMENT_LOAD(op_ElementLoadNarrow, BRANNOC_LOCAL_ELEMENT, SHORT, BRANNOC_WHOLE)
    BRANNOC_ELEMENT_LOAD(op_ElementLoadReal, BRANNOC_LOCAL_ELEMENT, double, BRANNOC_REAL)
    BRANNOC_ELEMENT_LOAD(op_ModuleElementLoadWhole, BRANNOC_MODULE_ELEMENT, LONG, BRANNOC_WHOLE)
    BRANNOC_ELEMENT_LOAD(op_ModuleElementLoadNarrow, BRANNOC_MODULE_ELEMENT, SHORT, BRANNOC_WHOLE)
    BRANNOC_ELEMENT_LOAD(op_ModuleElementLoadReal, BRANNOC_MODULE_ELEMENT, double, BRANNOC_REAL)
    BRANNOC_ELEMENT_STORE(op_ElementStoreWhole, BRANNOC_LOCAL_ELEMENT, LONG, BRANNOC_WHOLE)
    BRANNOC_ELEMENT_STORE(op_ElementStoreNarrow, BRANNOC_LOCAL_ELEMENT, SHORT, BRANNOC_WHOLE)
    BRANNOC_ELEMENT_STORE(op_ElementStoreReal, BRANNOC_LOCAL_ELEMENT, double, BRANNOC_REAL)
    BRANNOC_ELEMENT_STORE(op_ModuleElementStoreWhole, BRANNOC_MODULE_ELEMENT, LONG, BRANNOC_WHOLE)
    BRANNOC_ELEMENT_STORE(op_ModuleElementStoreNarrow, BRANNOC_MODULE_ELEMENT, SHORT, BRANNOC_WHOLE)
    BRANNOC_ELEMENT_STORE(op_ModuleElementStoreReal, BRANNOC_MODULE_ELEMENT, double, BRANNOC_REAL)
#undef BRANNOC_ELEMENT_LOAD
#undef BRANNOC_ELEMENT_STORE
#undef BRANNOC_LOCAL_ELEMENT
#undef BRANNOC_MODULE_ELEMENT

    // ---- Whole-number arithmetic: Long, and Integer with its range ----
#define BRANNOC_RIGHT_WHOLE(konstant) ((konstant) ? pc->constant.whole : BRANNOC_WHOLE(pc->c))
#define BRANNOC_CHECKED(label, builtin, konstant, integer)                                                     \
    label : {                                                                                                   \
        LONG result;                                                                                            \
        if (builtin(BRANNOC_WHOLE(pc->b), BRANNOC_RIGHT_WHOLE(konstant), &result) || (integer && !FitsInteger(result))) { \
            fault = kErrorOverflow;                                                                             \
            goto arithmetic_fault;                                                                              \
        }                                                                                                       \
        BRANNOC_WHOLE(pc->a) = result;                                                                          \
        BRANNOC_NEXT();                                                                                         \
    }
    BRANNOC_CHECKED(op_AddLong, __builtin_add_overflow, false, false)
    BRANNOC_CHECKED(op_AddLongK, __builtin_add_overflow, true, false)
    BRANNOC_CHECKED(op_SubtractLong, __builtin_sub_overflow, false, false)
    BRANNOC_CHECKED(op_SubtractLongK, __builtin_sub_overflow, true, false)
    BRANNOC_CHECKED(op_MultiplyLong, __builtin_mul_overflow, false, false)
    BRANNOC_CHECKED(op_MultiplyLongK, __builtin_mul_overflow, true, false)
    BRANNOC_CHECKED(op_AddInteger, __builtin_add_overflow, false, true)
    BRANNOC_CHECKED(op_AddIntegerK, __builtin_add_overflow, true, true)
    BRANNOC_CHECKED(op_SubtractInteger, __builtin_sub_overflow, false, true)
    BRANNOC_CHECKED(op_SubtractIntegerK, __builtin_sub_overflow, true, true)
    BRANNOC_CHECKED(op_MultiplyInteger, __builtin_mul_overflow, false, true)
    BRANNOC_CHECKED(op_MultiplyIntegerK, __builtin_mul_overflow, true, true)
#undef BRANNOC_CHECKED
#define BRANNOC_DIVIDE(label, konstant, smallest)                                                               \
    label : {                                                                                                   \
        const LONG left = BRANNOC_WHOLE(pc->b);                                                                 \
        const LONG right = BRANNOC_RIGHT_WHOLE(konstant);                                                       \
        if (right == 0 || (right == -1 && left == (smallest))) {                                                \
            fault = right == 0 ? kErrorDivideByZero : kErrorOverflow;                                           \
            goto arithmetic_fault;                                                                              \
        }                                                                                                       \
        BRANNOC_WHOLE(pc->a) = left / right;                                                                    \
        BRANNOC_NEXT();                                                                                         \
    }
    BRANNOC_DIVIDE(op_DivideLong, false, LONG_MIN)
    BRANNOC_DIVIDE(op_DivideLongK, true, LONG_MIN)
    BRANNOC_DIVIDE(op_DivideInteger, false, SHRT_MIN)
    BRANNOC_DIVIDE(op_DivideIntegerK, true, SHRT_MIN)
#undef BRANNOC_DIVIDE
#define BRANNOC_MODULO(label, konstant)                                                                         \
    label : {                                                                                                   \
        const LONG right = BRANNOC_RIGHT_WHOLE(konstant);                                                       \
        if (right == 0) {                                                                                       \
            fault = kErrorDivideByZero;                                                                         \
            goto arithmetic_fault;                                                                              \
        }                                                                                                       \
        BRANNOC_WHOLE(pc->a) = right == -1 ? 0 : BRANNOC_WHOLE(pc->b) % right;                                  \
        BRANNOC_NEXT();                                                                                         \
    }
    BRANNOC_MODULO(op_ModuloLong, false)
    BRANNOC_MODULO(op_ModuloLongK, true)
#undef BRANNOC_MODULO
#define BRANNOC_PLAIN(label, konstant, expression)                                                              \
    label : {                                                                                                   \
        const LONG x = BRANNOC_WHOLE(pc->b);                                                                    \
        const LONG y = BRANNOC_RIGHT_WHOLE(konstant);                                                           \
        BRANNOC_WHOLE(pc->a) = (expression);                                                                    \
        BRANNOC_NEXT();                                                                                         \
    }
    BRANNOC_PLAIN(op_And, false, x & y)
    BRANNOC_PLAIN(op_AndK, true, x & y)
    BRANNOC_PLAIN(op_Or, false, x | y)
    BRANNOC_PLAIN(op_OrK, true, x | y)
    BRANNOC_PLAIN(op_Xor, false, x ^ y)
    BRANNOC_PLAIN(op_XorK, true, x ^ y)
    BRANNOC_PLAIN(op_Eqv, false, ~(x ^ y))
    BRANNOC_PLAIN(op_EqvK, true, ~(x ^ y))
    BRANNOC_PLAIN(op_Imp, false, ~x | y)
    BRANNOC_PLAIN(op_ImpK, true, ~x | y)
    BRANNOC_PLAIN(op_Equal, false, x == y ? -1 : 0)
    BRANNOC_PLAIN(op_EqualK, true, x == y ? -1 : 0)
    BRANNOC_PLAIN(op_NotEqual, false, x != y ? -1 : 0)
    BRANNOC_PLAIN(op_NotEqualK, true, x != y ? -1 : 0)
    BRANNOC_PLAIN(op_Less, false, x < y ? -1 : 0)
    BRANNOC_PLAIN(op_LessK, true, x < y ? -1 : 0)
    BRANNOC_PLAIN(op_LessEqual, false, x <= y ? -1 : 0)
    BRANNOC_PLAIN(op_LessEqualK, true, x <= y ? -1 : 0)
    BRANNOC_PLAIN(op_Greater, false, x > y ? -1 : 0)
    BRANNOC_PLAIN(op_GreaterK, true, x > y ? -1 : 0)
    BRANNOC_PLAIN(op_GreaterEqual, false, x >= y ? -1 : 0)
    BRANNOC_PLAIN(op_GreaterEqualK, true, x >= y ? -1 : 0)
#undef BRANNOC_PLAIN
#define BRANNOC_BRANCH(label, konstant, symbol)                                                                 \
    label:                                                                                                      \
    if (BRANNOC_WHOLE(pc->b) symbol BRANNOC_RIGHT_WHOLE(konstant)) {                                            \
        pc = ops + pc->a;                                                                                       \
        BRANNOC_DISPATCH();                                                                                     \
    }                                                                                                           \
    BRANNOC_NEXT();
    BRANNOC_BRANCH(op_BranchEqual, false, ==)
    BRANNOC_BRANCH(op_BranchEqualK, true, ==)
    BRANNOC_BRANCH(op_BranchNotEqual, false, !=)
    BRANNOC_BRANCH(op_BranchNotEqualK, true, !=)
    BRANNOC_BRANCH(op_BranchLess, false, <)
    BRANNOC_BRANCH(op_BranchLessK, true, <)
    BRANNOC_BRANCH(op_BranchLessEqual, false, <=)
    BRANNOC_BRANCH(op_BranchLessEqualK, true, <=)
    BRANNOC_BRANCH(op_BranchGreater, false, >)
    BRANNOC_BRANCH(op_BranchGreaterK, true, >)
    BRANNOC_BRANCH(op_BranchGreaterEqual, false, >=)
    BRANNOC_BRANCH(op_BranchGreaterEqualK, true, >=)
#undef BRANNOC_BRANCH
#undef BRANNOC_RIGHT_WHOLE

    // ---- Double arithmetic and comparisons ----
#define BRANNOC_RIGHT_REAL(konstant) ((konstant) ? pc->constant.real : BRANNOC_REAL(pc->c))
#define BRANNOC_ARITHMETIC(label, konstant, symbol, zeroRule)                                                   \
    label : {                                                                                                   \
        const double x = BRANNOC_REAL(pc->b);                                                                   \
        const double y = BRANNOC_RIGHT_REAL(konstant);                                                          \
        const double result = x symbol y;                                                                       \
        if (!IsKeptReal(result, (zeroRule)))                                                                    \
            goto give_up;                                                                                       \
        BRANNOC_REAL(pc->a) = result;                                                                           \
        BRANNOC_NEXT();                                                                                         \
    }
    BRANNOC_ARITHMETIC(op_AddReal, false, +, true)
    BRANNOC_ARITHMETIC(op_AddRealK, true, +, true)
    BRANNOC_ARITHMETIC(op_SubtractReal, false, -, true)
    BRANNOC_ARITHMETIC(op_SubtractRealK, true, -, true)
    BRANNOC_ARITHMETIC(op_MultiplyReal, false, *, x == 0 || y == 0)
    BRANNOC_ARITHMETIC(op_MultiplyRealK, true, *, x == 0 || y == 0)
#undef BRANNOC_ARITHMETIC
#define BRANNOC_REAL_DIVIDE(label, konstant)                                                                    \
    label : {                                                                                                   \
        const double x = BRANNOC_REAL(pc->b);                                                                   \
        const double y = BRANNOC_RIGHT_REAL(konstant);                                                          \
        if (y == 0)                                                                                             \
            goto give_up;                                                                                       \
        const double result = x / y;                                                                            \
        if (!IsKeptReal(result, x == 0))                                                                        \
            goto give_up;                                                                                       \
        BRANNOC_REAL(pc->a) = result;                                                                           \
        BRANNOC_NEXT();                                                                                         \
    }
    BRANNOC_REAL_DIVIDE(op_DivideReal, false)
    BRANNOC_REAL_DIVIDE(op_DivideRealK, true)
#undef BRANNOC_REAL_DIVIDE
#define BRANNOC_REAL_COMPARE(label, konstant, symbol)                                                           \
    label : BRANNOC_WHOLE(pc->a) = BRANNOC_REAL(pc->b) symbol BRANNOC_RIGHT_REAL(konstant) ? -1 : 0;           \
    BRANNOC_NEXT();
    BRANNOC_REAL_COMPARE(op_EqualReal, false, ==)
    BRANNOC_REAL_COMPARE(op_EqualRealK, true, ==)
    BRANNOC_REAL_COMPARE(op_NotEqualReal, false, !=)
    BRANNOC_REAL_COMPARE(op_NotEqualRealK, true, !=)
    BRANNOC_REAL_COMPARE(op_LessReal, false, <)
    BRANNOC_REAL_COMPARE(op_LessRealK, true, <)
    BRANNOC_REAL_COMPARE(op_LessEqualReal, false, <=)
    BRANNOC_REAL_COMPARE(op_LessEqualRealK, true, <=)
    BRANNOC_REAL_COMPARE(op_GreaterReal, false, >)
    BRANNOC_REAL_COMPARE(op_GreaterRealK, true, >)
    BRANNOC_REAL_COMPARE(op_GreaterEqualReal, false, >=)
    BRANNOC_REAL_COMPARE(op_GreaterEqualRealK, true, >=)
#undef BRANNOC_REAL_COMPARE
#undef BRANNOC_RIGHT_REAL

    // ---- Unary operations ----
op_NegateLong: {
    const LONG value = BRANNOC_WHOLE(pc->b);
    if (value == LONG_MIN)
        goto give_up;
    BRANNOC_WHOLE(pc->a) = -value;
    BRANNOC_NEXT();
}
op_NegateInteger: {
    const LONG value = BRANNOC_WHOLE(pc->b);
    if (value == SHRT_MIN)
        goto give_up;
    BRANNOC_WHOLE(pc->a) = -value;
    BRANNOC_NEXT();
}
op_Not:
    BRANNOC_WHOLE(pc->a) = ~BRANNOC_WHOLE(pc->b);
    BRANNOC_NEXT();
op_AbsLong: {
    const LONG value = BRANNOC_WHOLE(pc->b);
    if (value == LONG_MIN)
        goto give_up;
    BRANNOC_WHOLE(pc->a) = value < 0 ? -value : value;
    BRANNOC_NEXT();
}
op_AbsInteger: {
    const LONG value = BRANNOC_WHOLE(pc->b);
    if (value == SHRT_MIN)
        goto give_up;
    BRANNOC_WHOLE(pc->a) = value < 0 ? -value : value;
    BRANNOC_NEXT();
}
op_NegateReal:
    BRANNOC_REAL(pc->a) = -BRANNOC_REAL(pc->b);
    BRANNOC_NEXT();
op_AbsReal:
    BRANNOC_REAL(pc->a) = std::fabs(BRANNOC_REAL(pc->b));
    BRANNOC_NEXT();
op_FixReal:
    BRANNOC_REAL(pc->a) = std::trunc(BRANNOC_REAL(pc->b));
    BRANNOC_NEXT();
op_IntReal:
    BRANNOC_REAL(pc->a) = std::floor(BRANNOC_REAL(pc->b));
    BRANNOC_NEXT();

    // ---- Loops and Select Case ----
op_NextLong: {
    const auto* step = reinterpret_cast<const VARIANT*>(frame + pc->b - 8);
    const auto* end = reinterpret_cast<const VARIANT*>(frame + pc->c - 8);
    LONG next;
    if (step->vt != VT_I4 || end->vt != VT_I4 || __builtin_add_overflow(BRANNOC_WHOLE(pc->a), step->lVal, &next))
        goto give_up;
    BRANNOC_WHOLE(pc->a) = next;
    if (step->lVal < 0 ? next >= end->lVal : next <= end->lVal) {
        pc = ops + pc->constant.whole;
        BRANNOC_DISPATCH();
    }
    BRANNOC_NEXT();
}
op_NextVariant: {
    // A Variant counter of whole numbers: the sum is a Long when the counter or the step is one, else an
    // Integer that must stay in range (the general step promotes it).
    auto* counter = reinterpret_cast<VARIANT*>(frame + pc->a - 8);
    const auto* step = reinterpret_cast<const VARIANT*>(frame + pc->b - 8);
    const auto* end = reinterpret_cast<const VARIANT*>(frame + pc->c - 8);
    LONG from, by, to, next;
    if (!WholeOf(*counter, from) || !WholeOf(*step, by) || !WholeOf(*end, to) || __builtin_add_overflow(from, by, &next))
        goto give_up;
    const bool isLong = counter->vt == VT_I4 || step->vt == VT_I4;
    if (!isLong && !FitsInteger(next))
        goto give_up;
    counter->vt = isLong ? VT_I4 : VT_I2;
    if (isLong)
        counter->lVal = next;
    else
        counter->iVal = static_cast<SHORT>(next);
    if (by < 0 ? next >= to : next <= to) {
        pc = ops + pc->constant.whole;
        BRANNOC_DISPATCH();
    }
    BRANNOC_NEXT();
}
op_SelectRanges: {
    const LONG selector = BRANNOC_WHOLE(pc->b);
    // Kept in its slot as the general code keeps it (offset 0: not kept).
    if (pc->a != 0) {
        auto* kept = reinterpret_cast<VARIANT*>(frame + pc->a - 8);
        if (!OwnsNothing(kept->vt))
            goto give_up;
        kept->vt = static_cast<VARTYPE>(pc->kind);
        if (pc->kind == VT_I4)
            kept->lVal = selector;
        else
            kept->iVal = static_cast<SHORT>(selector);
    }
    // The table ends with a range that takes every selector (the Else part).
    const auto* range = static_cast<const SelectRange*>(pc->constant.pointer);
    while (selector < range->low || selector > range->high)
        ++range;
    pc = ops + range->target;
    BRANNOC_DISPATCH();
}

    // ---- Calls ----
op_Call: {
    const auto& call = *static_cast<const RegisterCall*>(pc->constant.pointer);
    ModuleInstance* target = call.module && instance ? instance->Find(*call.module) : instance;
    if ((entering = EnterQuickCall(interpreter, *pc, frame, target)))
        goto entered;
    switch (BeginRegisterCall(BRANNOC_CALL_ARGUMENTS(target), entering)) {
    case CallStart::kGiveUp: goto give_up;
    case CallStart::kEnded:
        // The callee ran outside this loop: the next marker makes the full tests.
        called = true;
        budget = 0;
        BRANNOC_NEXT();
    case CallStart::kEntered: goto entered;
    case CallStart::kWaiting:
        // The statement goes on after the call once the callee has ended.
        activation->SetResumeOperation(pc->b);
        return false;
    case CallStart::kFailed: return false;
    }
    return false;
}
op_MemberCall: {
    // An instance of the class the compiler saw runs the member it found; anything else (Nothing, another
    // class, another object) goes the general way, which raises or looks the member up by name.
    const auto& call = *static_cast<const RegisterCall*>(pc->constant.pointer);
    const VARIANT* holder = call.objectInModule ? (call.objectLocation < moduleCount ? &moduleSlots[call.objectLocation] : nullptr)
                                                : reinterpret_cast<const VARIANT*>(frame + call.objectLocation - 8);
    if (!holder)
        goto give_up;
    holder = FollowByRefChain(holder);
    if ((holder->vt != VT_DISPATCH && holder->vt != VT_UNKNOWN) || !holder->punkVal)
        goto give_up;
    ModuleInstance* target = interpreter.Host().InstanceOf(holder->punkVal);
    if (!target || &target->OwnModule() != call.classModule)
        goto give_up;
    if ((entering = EnterQuickCall(interpreter, *pc, frame, target)))
        goto entered;
    switch (BeginRegisterCall(BRANNOC_CALL_ARGUMENTS(target), entering)) {
    case CallStart::kGiveUp: goto give_up;
    case CallStart::kEnded:
        // The callee ran outside this loop: the next marker makes the full tests.
        called = true;
        budget = 0;
        BRANNOC_NEXT();
    case CallStart::kEntered: goto entered;
    case CallStart::kWaiting:
        activation->SetResumeOperation(pc->b);
        return false;
    case CallStart::kFailed: return false;
    }
    return false;
}

op_CompareText: {
    // Gives up, before anything changed, when an operand is not where and what it was compiled for.
    bool truth = false;
    const RunContext context{&interpreter, activation, procedure};
    if (!static_cast<const TextComparison*>(pc->constant.pointer)->EvaluateCondition(context, truth))
        goto give_up;
    BRANNOC_WHOLE(pc->a) = truth ? -1 : 0;
    BRANNOC_NEXT();
}

#define BRANNOC_TEXT_SELECT(label, Selection, Part)                                                             \
    label : {                                                                                                   \
        const RunContext context{&interpreter, activation, procedure};                                          \
        const int part = static_cast<const Selection*>(pc->constant.pointer)->Part(context);                    \
        if (part == 0)                                                                                          \
            goto give_up;                                                                                       \
        BRANNOC_WHOLE(pc->a) = part;                                                                            \
        BRANNOC_NEXT();                                                                                         \
    }
    BRANNOC_TEXT_SELECT(op_SelectText, BranchStatement, TextCasePart)
    BRANNOC_TEXT_SELECT(op_SelectTextAt, TextSelection, Part)
#undef BRANNOC_TEXT_SELECT

#define BRANNOC_FIELD_LOAD(label, storage, target)                                                             \
    label : {                                                                                                   \
        const RunContext context{&interpreter, activation, procedure};                                          \
        const char* field = static_cast<const FieldWalk*>(pc->constant.pointer)                                 \
                                ->FindField(context, pc->b != 0 ? BRANNOC_WHOLE(pc->b) : 0);                    \
        if (!field)                                                                                             \
            goto give_up;                                                                                       \
        target(pc->a) = *reinterpret_cast<const storage*>(field);                                               \
        BRANNOC_NEXT();                                                                                         \
    }
    BRANNOC_FIELD_LOAD(op_LoadFieldWhole, LONG, BRANNOC_WHOLE)
    BRANNOC_FIELD_LOAD(op_LoadFieldNarrow, SHORT, BRANNOC_WHOLE)
    BRANNOC_FIELD_LOAD(op_LoadFieldReal, double, BRANNOC_REAL)
#undef BRANNOC_FIELD_LOAD

op_TextLength: {
    std::wstring_view text;
    const RunContext context{&interpreter, activation, procedure};
    if (!static_cast<const TextOperand*>(pc->constant.pointer)->Read(context, text))
        goto give_up;
    BRANNOC_WHOLE(pc->a) = static_cast<LONG>(text.size());
    BRANNOC_NEXT();
}

// A string stored by an object of the program or of the statement; gives up before changing anything.
// Out of memory for the new text: the error was raised and the loop stops.
#define BRANNOC_TEXT_STORE(label, Store, Run)                                                                   \
    label : {                                                                                                   \
        const RunContext context{&interpreter, activation, procedure};                                          \
        if (!static_cast<const Store*>(pc->constant.pointer)->Run(context))                                     \
            goto give_up;                                                                                       \
        if (HaltFlags::Any())                                                                                   \
            return false;                                                                                       \
        BRANNOC_NEXT();                                                                                         \
    }
    BRANNOC_TEXT_STORE(op_StoreText, AssignStatement, StoreTextInPlace)
    BRANNOC_TEXT_STORE(op_StoreFieldText, AssignPathStatement, StoreTextInPlace)
    BRANNOC_TEXT_STORE(op_StoreTextAt, VariableTextStore, Run)
    BRANNOC_TEXT_STORE(op_StoreFieldTextAt, FieldTextStore, Run)
#undef BRANNOC_TEXT_STORE

entered: {
    // The calling statement goes on after the call once the callee has ended, here or, when something
    // stops the loop inside the callee, on a later step.
    activation->SetResumeOperation(pc->b);
    enter(*entering, entering->OwnProcedure().Table().runnerData);
    pc = ops + entries[0];
    BRANNOC_DISPATCH();
}

#undef BRANNOC_ENTER_STATEMENT
#undef BRANNOC_CALL_ARGUMENTS
#undef BRANNOC_DISPATCH
#undef BRANNOC_NEXT
#undef BRANNOC_RESUME
#undef BRANNOC_WHOLE
#undef BRANNOC_NARROW
#undef BRANNOC_REAL
#undef BRANNOC_MODULE_CELL
}

} // namespace brannoc
