#pragma once
// Builds the register form of a procedure (RegisterCode.h): statements emit their operations through
// this builder, which translates their numeric postfix code into three-address operations on frame
// offsets, hands out temporaries and resolves jumps to statement entries.
#include "code/ProcedureBody.h"
#include "code/RegisterCode.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace brannoc {

class AssignPathStatement;
class AssignStatement;
class BranchStatement;

class RegisterBuilder final {
public:
    // Where a value of the register form is: a constant, or a cell of the frame (a variable's payload or
    // a temporary). Whole values in the frame are 32-bit; Integer and Boolean variables are read into a
    // temporary first.
    struct Operand {
        // The placeholder of a Function's result and a reference to a variable (a by-reference argument)
        // stand on the stack only until their call takes them.
        enum class Special : std::uint8_t { kNone, kPlaceholder, kReference, kObject, kVoid };
        Special special = Special::kNone;
        // A reference: where the variable lives.
        StorageScope scope = StorageScope::Local;
        int index = 0;
        bool constant = false;
        // VT_I2, VT_I4, VT_BOOL (whole) or VT_R8: the kind the general code would give the value.
        VARTYPE kind = VT_EMPTY;
        int offset = 0;
        int temporary = -1;
        // The operation that computed an Integer value with its Integer range check, or -1. A value
        // that leaves the Integer range becomes a Long in the general code; where it is used as a Long
        // anyway (in a Long or Double operation, a comparison, a truth test, a Long or Double variable)
        // that operation computes it without the check.
        int integerProducer = -1;
        LONG whole = 0;
        double real = 0;

        bool IsReal() const noexcept { return kind == VT_R8; }
    };

    RegisterBuilder(CompiledProcedure& procedure, RegisterProgram& program);

    // Builds the whole program from the procedure's statement vector.
    void Build();
    // Makes the form of statement index for the kinds the Variants hold in frame and instance (see
    // FormObservedStatement).
    // `called`: the form makes a call.
    bool BuildObserved(int index, char* frame, ModuleInstance* instance, int& start, bool& called);
    // Forms made from now on read Variant locals in place after a kind check (for statements without calls).
    void GuardVariantReads(bool guard) noexcept { m_guardVariants = guard; }

    // ---- For the statements' EmitRegisters ----

    // Translates pure numeric postfix code (ops [first, last) of code) into operations that leave its
    // value in `result`. False when some op has no register form.
    bool Value(const Expression& code, Operand& result, std::size_t first = 0, std::size_t last = ~std::size_t{0});
    // Translates code that leaves nothing, or a value that is dropped (a call as a statement).
    bool Effect(const Expression& code);
    // The same for a condition: `truth` is a whole operand that is non-zero when the condition holds.
    bool Condition(const Expression& code, Operand& truth);
    // A condition comparing two strings that are read in place (a String variable, element, field or
    // constant): one operation compares them where they are stored.
    bool TextCondition(const Expression& code, Operand& truth);
    // Stores value into a variable as an assignment of that type does without conversions; false when
    // the combination needs the general store. When value is the result of the operation just emitted,
    // that operation writes the variable itself.
    bool Store(const VariableRef& target, const Operand& value);
    // Stores value into the element at whole index `index` of a one-dimensional array variable.
    bool StoreElement(const VariableRef& array, const Operand& index, const Operand& value);
    // A jump to a statement address (index and position; only position 0 has a register form).
    bool Jump(int address);
    // Turns the comparison of whole numbers just emitted, whose result is `truth` and serves only this
    // jump, into a jump on the comparison; false (nothing changed) otherwise.
    bool FuseComparison(const Operand& truth, bool when);
    bool JumpIf(const Operand& truth, bool when, int address);
    // A jump forward inside the statement (unconditional when truth is null) whose target LandHere sets
    // later; answers the jump's operation.
    std::size_t JumpForward(const Operand* truth, bool when);
    void LandHere(std::size_t jump);
    // For of a Long counter local: whole start, end and step (null: 1), the end and step kept in their
    // slots as Next reads them, and the first test, which leaves the loop for exitAddress when the
    // counter is already past the end. Nothing gives up once the counter is set.
    bool ForLong(const VariableRef& counter, const Expression& start, const Expression& end, const Expression* step,
                 int endSlot, int stepSlot, int exitAddress);
    // Next of a Long counter local with its step and end slots, looping back to address.
    bool NextLong(const VariableRef& counter, int stepSlot, int endSlot, int address);
    // The same for a Variant counter local that holds whole numbers.
    bool NextVariant(const VariableRef& counter, int stepSlot, int endSlot, int address);
    // Select Case over a whole selector kept in keptSlot: ranges (low, high, part) in order, part i
    // entering targets[i - 1] and the part after the last target entering elseAddress.
    struct Range {
        LONG low;
        LONG high;
        int part;
    };
    bool SelectRanges(const Operand& selector, int keptSlot, const std::vector<Range>& ranges,
                      const std::vector<int>& targets, int elseAddress);
    // A String or Variant variable `target` assigned a string read in place (`value`): by the statement's
    // own store, or, when the text's index is more than a local whole variable, by a store that reads
    // the text at the index the operations computed.
    bool StoreText(const AssignStatement& statement, const VariableRef& target, const Expression& value);
    // A string field of a record assigned a string read in place (`code`: the path's index, then the value),
    // the same way.
    bool StoreFieldText(const AssignPathStatement& statement, const Expression& code, int path);
    // Select Case over a string compared in place with the string constants of its partCount Case lines
    // (BranchStatement::TextCasePart): part i enters targets[i - 1], the part after them elseAddress.
    bool SelectText(const BranchStatement& statement, const Expression& selector, int partCount, const std::vector<int>& targets,
                    int elseAddress);
    // Frees a temporary operand (after its last use).
    void Release(const Operand& operand);

    const CompiledProcedure& Procedure() const noexcept { return m_procedure; }

private:
    struct Fixup {
        std::size_t op;
        int statement;
        // Where the target goes: 0 the op's a, 1 its kind, 2 a range table entry (table, index in it).
        int field;
        std::size_t table = 0;
        std::size_t item = 0;
    };

    // Markers of empty statements followed at once by another marker become kStatementPair, those the
    // procedure's End follows kStatementEnd.
    void PairEmptyStatements();
    // One statement: its operations, or a General operation when it has none (or has been replaced).
    void BuildStatement(int index, Statement* statement);

    int SlotOffset(int slot) const noexcept { return slot * static_cast<int>(sizeof(VARIANT)) + 8; }
    Operand NewTemporary(VARTYPE kind);
    Operand Materialize(const Operand& operand);
    RegisterOp& Emit(RegisterCode code, int a = 0, int b = 0, int c = 0);
    // Translates ops [first, last) of code onto stack.
    bool Translate(const Expression& code, std::size_t first, std::size_t last, std::vector<Operand>& stack);
    // Postfix translation steps.
    bool Call(const ExprOp& op, std::vector<Operand>& stack);
    // A Long, Integer, Boolean or Double field of a record path with at most one index (whole, on the
    // stack), read where it is stored.
    bool LoadField(const ExprOp& op, std::vector<Operand>& stack);
    // Len of a string read in place (a String variable, element, field, constant or Mid part).
    bool Length(const ExprOp& op, std::vector<Operand>& stack);
    // The whole index computed by code's ops [first, last) into a Long temporary (or the slot that holds
    // it); false when they do not compute a whole number. The caller releases `index` once it is read.
    bool WholeIndex(const Expression& code, std::size_t first, std::size_t last, Operand& index);
    // What a statement's emitting has reached, to take back an attempt that failed half-way and emit the
    // statement another way.
    struct Checkpoint {
        std::size_t ops;
        std::vector<bool> temporaryInUse;
        bool callEmitted;
        bool givesUpAfterCall;
    };
    Checkpoint Mark() const { return Checkpoint{m_program.ops.size(), m_temporaryInUse, m_callEmitted, m_givesUpAfterCall}; }
    void TakeBack(const Checkpoint& mark);
    // A text of code's ops [first, last) that ends in an element or record field at an index other than a
    // lone local whole variable (read in place already), compiled to read at the index computed here.
    bool IndexedText(const Expression& code, std::size_t first, std::size_t last, TextOperand& text, Operand& index);
    bool MemberCall(const ExprOp& op, std::vector<Operand>& stack);
    // Binds the `count` arguments on top of stack into call's parameters of code and takes them off.
    bool TakeArguments(int count, CompiledProcedure& code, std::vector<Operand>& stack, RegisterCall& call);
    // Takes a Function's result placeholder off the stack.
    bool TakePlaceholder(std::vector<Operand>& stack);
    // Emits the call operation; a Function's result (of resultType) comes onto the stack.
    bool EmitCall(RegisterCode code, std::unique_ptr<RegisterCall> call, const CompiledProcedure& callee,
                  TypeCode resultType, std::vector<Operand>& stack);
    // How an argument binds its parameter; `bound` is the cell a value argument is read from.
    bool BindArgument(const Operand& argument, const ParameterInfo& parameter, RegisterArgument& binding,
                      Operand& bound);
    bool Load(const ExprOp& op, std::vector<Operand>& stack);
    bool Element(const ExprOp& op, std::vector<Operand>& stack);
    bool Binary(OperationId op, std::vector<Operand>& stack);
    bool Unary(OperationId op, std::vector<Operand>& stack);
    bool EmitWhole(OperationId op, VARTYPE kind, const Operand& left, const Operand& right, Operand& result);
    bool EmitReal(OperationId op, const Operand& left, const Operand& right, Operand& result);
    // The operand is used where a Long would do as well: its Integer operation drops the range check.
    void UseAsLong(const Operand& operand);
    // A For bound: a whole value of pure numeric code, used as a Long.
    bool WholeBound(const Expression& code, Operand& value);
    // A whole operand as a Double (a constant converted, a cell through WholeToReal).
    Operand AsReal(const Operand& operand);
    bool IsByReferenceParameter(int slot) const;
    // The Variant a variable reference names in the observed frame or module (one by-reference step
    // followed), or null.
    const VARIANT* ObservedVariant(StorageScope scope, int index) const;
    // The kind an observed Variant holds when the register form takes it, else VT_EMPTY.
    VARTYPE ObservedKind(StorageScope scope, int index) const;
    // The array variable an element operation addresses: a local slot offset or a module variable
    // index; false for other variables.
    bool ArrayLocation(const VariableRef& array, bool& module, int& location) const;
    // Writes each recorded jump's target: the entry operation of the statement it goes to.
    void ResolveJumpTargets();

    CompiledProcedure& m_procedure;
    RegisterProgram& m_program;
    std::vector<bool> m_temporaryInUse;
    std::vector<VARTYPE> m_temporaryKind;
    std::vector<Fixup> m_fixups;
    // The operation most recently emitted that left its result in a fresh temporary (so that a store can
    // have it write the variable instead), or npos.
    std::size_t m_lastResultOp = ~std::size_t{0};
    // The argument count of a call just translated, whose arguments the kPop after it would remove.
    int m_poppableArguments = -1;
    // Forms made while running read the kinds that Variants hold in the frame and module variables
    // being observed; otherwise a Variant operand only marks the statement for such a form.
    bool m_observing = false;
    char* m_observedFrame = nullptr;
    VARIANT* m_observedModule = nullptr;
    std::size_t m_observedModuleCount = 0;
    bool m_variantSeen = false;
    // Forms of statements that make no call read a Variant local's Long or Double payload in place after
    // a kind check (GuardVariant) instead of copying it to a temporary.
    bool m_guardVariants = false;
    // A form made while running ran out of room (operations or temporaries).
    bool m_outOfRoom = false;
    // A call operation has been emitted in the statement, and after it an operation that may give up
    // for a reason other than an error it can raise itself. A statement that gives up is run again by its
    // object from its start, which would make the call twice: such a statement gets no form.
    bool m_callEmitted = false;
    bool m_givesUpAfterCall = false;
    RegisterOp m_spare;
    // A member call was just translated; its end op after it has nothing left to do.
    bool m_memberEnds = false;
    int m_lastResultTemporary = -1;
};

} // namespace brannoc
