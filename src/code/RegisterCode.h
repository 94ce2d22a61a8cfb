#pragma once
// The register form of a procedure body: the statements whose work is plain numbers (assignments and
// conditions over Integer, Long, Boolean and Double variables and array elements, jumps, loops, Select
// Case over whole numbers) as a list of three-address operations on the payloads of the frame's slots,
// and every other statement as one operation that runs the statement object. The register runner goes
// through the list in one loop instead of dispatching each statement, keeping the statement loop's
// rules: each statement is entered through a marker that makes the break and time-slice tests and
// publishes the statement's index, so stopping, yielding, error dispatch and Resume see the same
// execution points.
//
// A statement's operations read variables and write temporaries (extra slots at the end of the frame)
// and change nothing else until their last operation, which stores the result. An operation whose
// exact result leaves the fast kinds (an overflow, a zero divisor, an array index outside the bounds, a
// variable that does not hold its kind) gives up: the statement object runs instead, from its start, and
// computes, promotes or raises as the general code does.
#include "code/FieldTextStore.h"
#include "code/TextOperand.h"
#include "code/TextSelection.h"
#include "code/VariableTextStore.h"
#include "exec/ProcedureCode.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace brannoc {

class Activation;
class Module;

// Operation codes. "Whole" values are 32-bit numbers (Integer, Long and Boolean values widened);
// "Narrow" cells are the 16-bit payloads of Integer and Boolean variables; "Real" values are doubles.
// Operands a, b and c are byte offsets into the frame unless noted; K forms take their right operand
// from the operation's constant.
#define BRANNOC_REGISTER_OPERATIONS(X)                                                                          \
    X(Statement)         /* a: statement index; enters it */                                                  \
    X(StatementJump)     /* a: statement index; enters it and goes on at operation b (its current form) */      \
    X(StatementPair)     /* a: an empty statement whose next statement's plain marker follows; enters both */  \
    X(StatementEnd)      /* a: an empty statement that the procedure's End follows; tests it and ends */      \
    X(Replaced)          /* a: statement index; enters it and runs the object that stands in its place */      \
    X(General)           /* a: statement index; runs the statement object */                                   \
    X(Observe)           /* a: statement index; makes the statement's form for the kinds its Variants hold */  \
    X(End)               /* the end of the procedure */                                                        \
    X(Jump)              /* a: target operation */                                                             \
    X(JumpIfTrue)        /* b: whole operand; a: target */                                                     \
    X(JumpIfFalse)                                                                                              \
    X(ConstantWhole)     /* a = constant */                                                                    \
    X(ConstantReal)                                                                                             \
    X(MoveWhole)         /* a = b */                                                                           \
    X(MoveReal)                                                                                                 \
    X(WholeToReal)       /* a = (double) b */                                                                  \
    X(LoadNarrow)        /* a = (whole) narrow b */                                                            \
    X(StoreNarrow)       /* narrow a = b (a value of the narrow kind) */                                       \
    X(StoreNarrowChecked) /* narrow a = b when b fits into an Integer */                                       \
    X(LoadRefWhole)      /* a = variable in slot offset b (a by-reference parameter) */                        \
    X(LoadRefNarrow)                                                                                            \
    X(LoadRefReal)                                                                                              \
    X(StoreRefWhole)     /* variable in slot offset a = b */                                                   \
    X(StoreRefNarrow)                                                                                           \
    X(StoreRefReal)                                                                                             \
    X(LoadModuleWhole)   /* a = module variable b (an index) */                                                \
    X(LoadModuleNarrow)                                                                                         \
    X(LoadModuleReal)                                                                                           \
    X(StoreModuleWhole)  /* module variable a (an index) = b */                                                \
    X(StoreModuleNarrow)                                                                                        \
    X(StoreModuleNarrowChecked)                                                                                 \
    X(StoreModuleReal)                                                                                          \
    X(StoreVariantWhole) /* the Variant in slot offset a (or the one its slot refers to) takes b of `kind` */  \
    X(StoreVariantNarrow)                                                                                       \
    X(StoreVariantReal)                                                                                         \
    X(StoreModuleVariantWhole) /* the same for module variable a (an index) */                                \
    X(StoreModuleVariantNarrow)                                                                                 \
    X(StoreModuleVariantReal)                                                                                   \
    X(StoreVariantTagged) /* the Variant in slot offset a takes the kind and payload of temporary b */        \
    X(LoadVariantWhole)  /* a = payload of the Variant local in slot offset b (its own cell) holding `kind` */ \
    X(LoadVariantNarrow)                                                                                        \
    X(LoadVariantReal)                                                                                          \
    X(GuardVariant)      /* gives up unless the Variant local whose payload is at offset a holds `kind` */    \
    X(StoreOwnVariantWhole) /* the StoreVariant forms for a Variant local's own cell (never a reference) */    \
    X(StoreOwnVariantNarrow)                                                                                    \
    X(StoreOwnVariantReal)                                                                                      \
    X(StoreModuleVariantTagged)                                                                                 \
    X(PromoteAdd)        /* temporary a = b + c with its kind: `kind` (Integer or Long) or the next wider */   \
    X(PromoteAddK)                                                                                              \
    X(PromoteSubtract)                                                                                          \
    X(PromoteSubtractK)                                                                                         \
    X(PromoteMultiply)                                                                                          \
    X(PromoteMultiplyK)                                                                                         \
    X(PromoteAddInto)    /* the Promote forms with a: a Variant local's own cell, which takes the result */    \
    X(PromoteAddKInto) X(PromoteSubtractInto) X(PromoteSubtractKInto) X(PromoteMultiplyInto)                    \
    X(PromoteMultiplyKInto)                                                                                     \
    X(LoadStaticWhole)   /* a = *pointer */                                                                    \
    X(LoadStaticNarrow)                                                                                         \
    X(LoadStaticReal)                                                                                           \
    X(ElementLoadWhole)  /* a = element of kind `kind` at whole index c of the array in slot offset b */       \
    X(ElementLoadNarrow)                                                                                        \
    X(ElementLoadReal)                                                                                          \
    X(ModuleElementLoadWhole) /* the same with b a module variable index */                                    \
    X(ModuleElementLoadNarrow)                                                                                  \
    X(ModuleElementLoadReal)                                                                                    \
    X(ElementStoreWhole) /* element at whole index c of the array in slot offset a = b */                     \
    X(ElementStoreNarrow)                                                                                       \
    X(ElementStoreReal)                                                                                         \
    X(ModuleElementStoreWhole)                                                                                  \
    X(ModuleElementStoreNarrow)                                                                                 \
    X(ModuleElementStoreReal)                                                                                   \
    X(AddLong) X(AddLongK) X(SubtractLong) X(SubtractLongK) X(MultiplyLong) X(MultiplyLongK)                   \
    X(DivideLong) X(DivideLongK) X(ModuloLong) X(ModuloLongK)                                                   \
    X(AddInteger) X(AddIntegerK) X(SubtractInteger) X(SubtractIntegerK) X(MultiplyInteger)                     \
    X(MultiplyIntegerK) X(DivideInteger) X(DivideIntegerK)                                                      \
    X(And) X(AndK) X(Or) X(OrK) X(Xor) X(XorK) X(Eqv) X(EqvK) X(Imp) X(ImpK)                                    \
    X(Equal) X(EqualK) X(NotEqual) X(NotEqualK) X(Less) X(LessK) X(LessEqual) X(LessEqualK)                     \
    X(Greater) X(GreaterK) X(GreaterEqual) X(GreaterEqualK)                                                     \
    X(BranchEqual)       /* jump to operation a when whole b = c (K: the constant); a comparison and its jump */ \
    X(BranchEqualK) X(BranchNotEqual) X(BranchNotEqualK) X(BranchLess) X(BranchLessK) X(BranchLessEqual)        \
    X(BranchLessEqualK) X(BranchGreater) X(BranchGreaterK) X(BranchGreaterEqual) X(BranchGreaterEqualK)         \
    X(AddReal) X(AddRealK) X(SubtractReal) X(SubtractRealK) X(MultiplyReal) X(MultiplyRealK)                   \
    X(DivideReal) X(DivideRealK)                                                                                \
    X(EqualReal) X(EqualRealK) X(NotEqualReal) X(NotEqualRealK) X(LessReal) X(LessRealK)                       \
    X(LessEqualReal) X(LessEqualRealK) X(GreaterReal) X(GreaterRealK) X(GreaterEqualReal)                      \
    X(GreaterEqualRealK)                                                                                        \
    X(NegateLong) X(NegateInteger) X(Not) X(AbsLong) X(AbsInteger)                                              \
    X(NegateReal) X(AbsReal) X(FixReal) X(IntReal)                                                              \
    X(NextLong)          /* Next of a Long counter at a; b, c: step and end slots; kind: target op */          \
    X(NextVariant)       /* the same for a Variant counter holding whole numbers */                            \
    X(SelectRanges)      /* b: whole selector; a: kept slot offset; pointer: the range table */          \
    X(Call)              /* pointer: the RegisterCall; a: the result's slot offset, or -1; b: next operation */ \
    X(MemberCall)        /* the same for a member of a class instance held by a variable */                  \
    X(CompareText)       /* pointer: a TextComparison; a: whole slot set to -1 when it holds, else 0 */     \
    X(SelectText)        /* pointer: a BranchStatement over a string; a: whole slot set to the part it enters */ \
    X(LoadFieldWhole)    /* pointer: a FieldWalk; a: result; b: the index operand (0: none); a Long field */   \
    X(LoadFieldNarrow)   /* the same for an Integer or Boolean field */                                       \
    X(LoadFieldReal)     /* the same for a Double field */                                                    \
    X(TextLength)        /* pointer: a TextOperand; a: whole slot set to the length of its text (Len) */    \
    X(StoreText)         /* pointer: an AssignStatement that stores a string read in place into its variable */ \
    X(StoreFieldText)    /* pointer: an AssignPathStatement that stores a string read in place into a field */ \
    X(StoreTextAt)       /* pointer: a VariableTextStore (the text's index computed before it) */           \
    X(StoreFieldTextAt)  /* pointer: a FieldTextStore (the field's index computed before it) */             \
    X(SelectTextAt)      /* pointer: a TextSelection (its selector's index computed before it); a: as SelectText */

enum class RegisterCode : std::uint16_t {
#define BRANNOC_REGISTER_ENUM(name) k##name,
    BRANNOC_REGISTER_OPERATIONS(BRANNOC_REGISTER_ENUM)
#undef BRANNOC_REGISTER_ENUM
        kCount
};

// Operand c of a statement marker that may enter its statement together with the next one (an empty
// statement followed at once by the next statement's marker), or with the procedure's end: it goes back
// to kStatementPair (kStatementEnd), not to kStatement, when a break point leaves its place.
constexpr std::int32_t kPairedMarker = 1;
constexpr std::int32_t kEndingMarker = 2;

struct RegisterOp {
    RegisterCode code = RegisterCode::kEnd;
    // Array operations: the element kind. NextLong: the target operation.
    std::uint16_t kind = 0;
    std::int32_t a = 0;
    std::int32_t b = 0;
    std::int32_t c = 0;
    union {
        LONG whole;
        double real;
        const void* pointer;
    } constant{};
};
static_assert(sizeof(RegisterOp) == 24 && alignof(RegisterOp) == 8);

// One range of whole selectors of a Select Case and the part it enters: part i (from 1) is branch i's
// target, the part after the last branch the Else target; `target` is that part's operation.
struct SelectRange {
    LONG low = 0;
    LONG high = 0;
    int target = 0;
};

// How one argument of a register call binds its parameter: a value of the parameter's kind (from a frame
// cell: 32-bit whole, or double), or a reference to a variable of that kind.
enum class ArgumentMode : std::uint8_t { kWhole, kReal, kLocalReference, kParameterReference, kModuleReference };

struct RegisterArgument {
    ArgumentMode mode = ArgumentMode::kWhole;
    // The parameter's storage kind (VT_I2, VT_I4, VT_BOOL, VT_R8).
    VARTYPE kind = VT_EMPTY;
    // A frame offset (values, local and parameter references) or a module variable index.
    int location = 0;
};

// The most arguments a register call binds.
constexpr int kMostRegisterArguments = 8;

// A call of a user procedure whose arguments all bind in the common way (RegisterArgument).
struct RegisterCall {
    ProcedureCode* procedure = nullptr;
    // The module whose instance runs the callee when it is another than the caller's.
    const Module* module = nullptr;
    std::vector<RegisterArgument> arguments;
    // Some argument is a reference to a parameter's or module variable's cell, which must hold its kind
    // when the call begins (else the call gives up); references to the caller's own locals always do.
    bool referencesMayFail = false;
    // Member calls: the class module whose member the procedure is, and the variable holding the object
    // (a frame offset, or a module variable index).
    const Module* classModule = nullptr;
    bool objectInModule = false;
    int objectLocation = 0;
};

// The register form of one procedure. Built once, when the procedure's frame is first laid out; the
// procedure owns it.
class RegisterProgram final {
public:
    // The operations, and the operation each statement index starts at (one more entry for the end).
    std::vector<RegisterOp> ops;
    std::vector<int> entries;
    // Select Case range tables (each ends with an entry whose target is the Else part and whose range is
    // empty); operations point into them.
    std::vector<std::vector<SelectRange>> rangeTables;
    std::vector<std::unique_ptr<RegisterCall>> calls;
    // Conditions comparing two strings read in place (CompareText).
    std::vector<std::unique_ptr<TextComparison>> textComparisons;
    // The walks to numeric record fields (LoadField...).
    std::vector<std::unique_ptr<FieldWalk>> fieldWalks;
    // Strings read in place whose length Len takes (TextLength).
    std::vector<std::unique_ptr<TextOperand>> textOperands;
    // Strings stored into variables and fields at indexes the operations computed (StoreTextAt...).
    std::vector<std::unique_ptr<VariableTextStore>> textStores;
    std::vector<std::unique_ptr<FieldTextStore>> fieldTextStores;
    // Select Case selectors read at indexes the operations computed (SelectTextAt).
    std::vector<std::unique_ptr<TextSelection>> textSelections;
    // Temporaries: frame slots from firstTemporary on.
    int firstTemporary = 0;
    int temporaryCount = 0;
    // How many statements have a register form (the rest run as statement objects).
    int registerStatements = 0;
    // Statements over Variants get their form when they run, for the kinds their Variants hold then
    // (Observe), and again when those kinds change: per statement index, how many more forms it may get
    // and how often its form has given up since the last one. Forms made while running are appended to
    // `ops` within the capacity reserved when the program was built, so operations never move.
    std::vector<std::uint8_t> formsLeft;
    std::vector<std::uint8_t> givenUp;
    // 1 for the statements whose form was made while running.
    std::vector<std::uint8_t> observed;
    // Per statement index: the first operations of the forms made while running, and how many of them
    // have been tried in turn since the last new one (ObservedForms.h).
    std::vector<std::vector<int>> formStarts;
    std::vector<std::uint8_t> formTries;
    // Per statement index: the last operations of the forms made while running that go on to that
    // statement. Each is a jump to the statement's marker or, while the marker goes straight to a form,
    // a copy of the marker (ObservedForms.h).
    std::vector<std::vector<int>> formEndsInto;
    // Temporaries that forms made while running may use (from firstTemporary on).
    int temporaryLimit = 0;

    // How far the parts that forms append to reach: a form that is not kept is taken back to that.
    struct Reach {
        std::size_t ops, rangeTables, calls, textComparisons, fieldWalks, textOperands, textStores, fieldTextStores,
            textSelections;
    };
    Reach CurrentReach() const noexcept
    {
        return Reach{ops.size(),          rangeTables.size(),  calls.size(),      textComparisons.size(),
                     fieldWalks.size(),  textOperands.size(), textStores.size(), fieldTextStores.size(),
                     textSelections.size()};
    }
    void TakeBackTo(const Reach& reach)
    {
        ops.resize(reach.ops);
        rangeTables.resize(reach.rangeTables);
        calls.resize(reach.calls);
        textComparisons.resize(reach.textComparisons);
        fieldWalks.resize(reach.fieldWalks);
        textOperands.resize(reach.textOperands);
        textStores.resize(reach.textStores);
        fieldTextStores.resize(reach.fieldTextStores);
        textSelections.resize(reach.textSelections);
    }
};

class CompiledProcedure;
class ModuleInstance;

// Makes the form of statement `index` of program's procedure for the kinds that the Variants it reads
// and writes hold now (in `frame` and instance's variables), appended to the program's operations;
// `start` receives its first operation. False when it has none (nothing was kept).
bool FormObservedStatement(CompiledProcedure& procedure, RegisterProgram& program, int index, char* frame,
                           ModuleInstance* instance, int& start);

// The statement loop over a register form (a StatementTable runner).
[[nodiscard]] bool RunRegisterProgram(Activation& activation, ExecEntry& entry, const void* program);

} // namespace brannoc
