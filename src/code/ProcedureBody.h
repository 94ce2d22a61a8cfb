#pragma once
// The executable form of a procedure body: postfix expression code working on the value stack, the
// statement objects of the statement vector and the compiled procedure that owns them.
//
// Frames: every local, parameter, function result and hidden loop cell is one VARIANT slot of the
// activation's frame whose tag stays the declared kind. A by-reference parameter's slot holds
// VT_BYREF | VT_VARIANT pointing at the caller's storage. A Function's caller pushes an Empty result slot
// (an Error value of status kResultSlotStatus) below the arguments; the result is moved there when the
// activation ends. Hosts that call a Function directly push the same slot.
#include "code/MemberSite.h"
#include "code/Node.h"
#include "exec/Activation.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "exec/ProcedureCode.h"
#include "frontend/TypeCode.h"
#include "values/OperationId.h"
#include "values/RecordType.h"
#include "values/Variant.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <string>
#include <vector>

namespace brannoc {

class Activation;
struct BuiltinCall;
class RegisterBuilder;
class RegisterProgram;
class TypedExpression;
class CompiledProcedure;
struct RecordPath;
class ValueStack;
class Interpreter;
class Module;
struct Procedure;

enum class StorageScope : std::uint8_t { Local, Module, Static };

// Where a variable lives and its declared type.
struct VariableRef {
    StorageScope scope = StorageScope::Local;
    int index = 0;
    TypeCode type;
    // Module scope: the module whose instance holds the variable when it is another than the caller's.
    const Module* module = nullptr;
};

struct UserType;

// A variable of a procedure (local, parameter or Static) by its upper-cased name: what an expression
// evaluated in a paused frame of the procedure needs to reach it.
struct LocalName {
    std::string upperName;
    VariableRef ref;
    const Module* classModule = nullptr;
    const UserType* userType = nullptr;
    bool autoNew = false;
};

enum class ExprOpCode : std::uint8_t {
    kConstant,   // push constant `index` of the procedure
    kLoad,       // push the value of a variable
    kLoadRef,    // push a reference to a variable (by-reference arguments)
    kBinary,     // left op right, leaving the result in place of both; `count` is kAlignLeft or kAlignRight
                 // when one operand is a Variant and the other of a fixed kind (the Variant's value is
                 // converted toward the other before the operator), else 0
    kUnary,      // op top
    kMissing,    // a left-out optional argument
    kEmpty,      // a function's result slot (the kResultSlotStatus placeholder)
    kCall,       // call callee `index` with `count` arguments on the stack; yields
    kPop,        // drop `count` values
    kPack,       // pack the top `count` values into a Variant array (ParamArray)
    kElement,    // replace the top `count` indexes by the element of an array variable
    kNew,        // push a new instance of class module `module`
    kLoadNew,    // as kLoad for an "As New" variable: a new instance of `classModule` first when it holds
                 // Nothing
    kMe,         // push the object of the current module instance
    kDefaultObject, // push the default instance of object module `module` (made at its first use)
    kWithObject, // push the object of the With block at nesting level `index` of the procedure
    kMemberCall, // member site `index` on the object below the result slot and `count` arguments; a
                 // procedure member yields, other members finish at once; leaves object and result
    kMemberEnd,  // replaces the object below the top by the result on top (an unfilled slot is Empty)
    kErrProperty, // push property `index` (an ErrMember) of the Err object
    kErrObject,   // push the Err object itself as an automation object (Set x = Err)
    kLoadPath,    // replace the top `count` indexes by the value at record path `index` (RecordAccess.h)
    kRecordSize,  // replace the record on top by its size in bytes (Len of a record)
    kRefPath,     // as kLoadPath, pushing a reference to the record the path names (With on a record)
    kBuiltin,    // call built-in call `index` of the procedure; `count` of its arguments were computed
                 // onto the stack before it, and `variable` ops of deferred argument code follow it
    kJump,       // skip `count` ops (the end of a deferred argument's code)
    kIndexValue, // replace the value below the top `count` indexes by its element (an array that a
                 // function returned, indexed at once: Split(text)(1))
    kElementArgument,  // as kElement for a by-reference argument: the element is copied into hidden slot
                       // `variable` (its address kept in slot `variable` + 1) and a reference to that
                       // slot replaces the indexes
    kElementWriteBack, // after the call: the hidden slot `variable` goes back into the element
    kPathArgument,     // as kLoadPath for a by-reference argument: the value at record path `index` is
                       // copied into hidden slot `variable` (where it lives kept in slot `variable` + 1)
                       // and a reference to that slot replaces the path's indexes
    kPathWriteBack,    // after the call: the hidden slot `variable` goes back to the place of path `index`
    kTypeOf,     // replace the object and the type name above it by whether the object is of that type
                 // (`classModule`: the class module the name found at compile time, if any)
    kTypedValue, // push the value of typed form `index` of the procedure and skip the `count` ops after
                 // it; when the form gives up (or direct forms are off) those ops compute the value
    kLetValue,   // replace an object on top by its default member's value (the value a Let assigns)
    kNullExit,   // after an argument of a built-in's Null-rule parameter that was computed before the call:
                 // when it is Null, the `count` values computed for the call are dropped, Null is pushed in
                 // place of the result (`variable` nonzero, a "$" call: error 10075 instead) and the `index`
                 // ops up to the call's end are skipped, so no later argument runs
};

// kBinary's `count`: which operand is converted toward the other one's kind.
constexpr int kAlignLeft = 1;
constexpr int kAlignRight = 2;

struct ExprOp {
    ExprOpCode code = ExprOpCode::kConstant;
    OperationId op = OperationId::kAdd;
    StorageScope scope = StorageScope::Local;
    int index = 0;
    int count = 0;
    TypeCode type;
    const Module* module = nullptr;
    // kBuiltin: the number of ops of deferred argument code that follow it. kNullExit: nonzero for a "$"
    // call.
    int variable = 0;
    // kLoadNew: the class module whose instance the variable gets when it holds Nothing.
    const Module* classModule = nullptr;
};

// A postfix list; running it leaves its values on the value stack.
struct Expression {
    std::vector<ExprOp> ops;
    TypeCode type;
    bool IsEmpty() const { return ops.empty(); }
    void Append(const Expression& other) { ops.insert(ops.end(), other.ops.begin(), other.ops.end()); }
};

enum class EvalStatus { kDone, kYield, kFailed };

// What a running statement needs: the interpreter, the current activation and the procedure.
struct RunContext {
    Interpreter* interpreter = nullptr;
    Activation* activation = nullptr;
    CompiledProcedure* procedure = nullptr;
};

// Runs expression ops from pc. kYield: a call was scheduled and pc is where to resume.
EvalStatus RunExpression(const RunContext& context, const Expression& expression, int& pc);
// The storage of a module-level or static variable; null after raising an error.
VARIANT* StorageOutsideFrame(const RunContext& context, StorageScope scope, int index, const Module* module);
// The storage of a variable (by-reference parameters followed); null after raising an error.
inline VARIANT* StorageOf(const RunContext& context, StorageScope scope, int index, const Module* module = nullptr)
{
    if (scope != StorageScope::Local) {
        // A variable of the module whose instance runs the procedure: read in place.
        if (scope == StorageScope::Module) {
            if (ModuleInstance* instance = context.activation->Instance();
                instance && (!module || module == &instance->OwnModule()) &&
                static_cast<std::size_t>(index) < instance->VariableCount())
                return &instance->Slot(static_cast<std::size_t>(index));
        }
        return StorageOutsideFrame(context, scope, index, module);
    }
    VARIANT* storage = static_cast<VARIANT*>(context.activation->Locals()) + index;
    while (storage->vt == (VT_BYREF | VT_VARIANT))
        storage = storage->pvarVal;
    return storage;
}
// Makes target a reference to a variable's storage of declared type (by-reference arguments).
void MakeReference(Variant& target, VARIANT* storage, TypeCode type);
// The tag of a variable's storage: its value kind, VT_VARIANT for Variants and arrays.
inline VARTYPE StorageTag(TypeCode type)
{
    return type.IsArray() ? static_cast<VARTYPE>(VT_VARIANT) : static_cast<VARTYPE>(type.ValueTag());
}
// Stores value into storage of kind without the conversion routine when reading it in that kind cannot
// change it: the same kind, an Integer into a Long, an Integer or Long into a Double, a Long that fits
// into an Integer, and into a Variant any value that owns nothing. False (nothing stored) otherwise.
[[nodiscard]] bool StorePlain(VARIANT& storage, VARTYPE kind, const VARIANT& value);
// Stores value into the variable with its declared type's conversion.
[[nodiscard]] bool StoreVariable(const RunContext& context, const VariableRef& target, const Variant& value);
// Stores value into storage declared as type (the same conversion).
[[nodiscard]] bool StoreTyped(VARIANT& storage, TypeCode type, const Variant& value);
// Replaces the top `count` values by one Variant array holding copies of them (ParamArray).
[[nodiscard]] bool PackValues(ValueStack& values, int count);
// The same for a value that is discarded afterwards: a String moves into the variable instead of being
// copied, and value may be left holding the variable's previous contents.
[[nodiscard]] bool StoreVariableTaking(const RunContext& context, const VariableRef& target, Variant& value);
// A Let assignment stores values, never objects: an object assigned to a Variant gives way to the value
// of its default member (10080 when it has none).
[[nodiscard]] bool ResolveLetValue(Variant& value);
// The element of the array held by storage at the `count` indexes on top of the value stack (left to
// right); null after raising an error. tag receives the element kind.
void* ElementOf(const RunContext& context, VARIANT* storage, int count, VARTYPE& tag);
// Copies an element of kind tag into target; stores value into an element of kind tag.
[[nodiscard]] bool LoadElement(const void* element, VARTYPE tag, Variant& target, IRecordInfo* record = nullptr);
[[nodiscard]] bool StoreElement(void* element, VARTYPE tag, const Variant& value);
// As StoreElement for an element of a declared array type (fixed-length String elements keep their
// length).
[[nodiscard]] bool StoreTypedElement(void* element, VARTYPE tag, TypeCode arrayType, const Variant& value);
// The array held by a variable's storage (by-reference values followed), or null.
SAFEARRAY* ArrayOf(VARIANT* storage);
// The element at index of a one-dimensional array, when it has storage and the index lies inside it;
// null otherwise, and for a null array (nothing raised: the direct forms then give up).
inline char* ElementOfVector(SAFEARRAY* array, LONG index)
{
    if (!array || array->cDims != 1 || !array->pvData)
        return nullptr;
    const ULONG offset = static_cast<ULONG>(index - array->rgsabound[0].lLbound);
    if (offset >= array->rgsabound[0].cElements)
        return nullptr;
    return static_cast<char*>(array->pvData) + offset * array->cbElements;
}
// The same for the array that storage holds.
inline char* ElementOfVector(VARIANT* storage, LONG index) { return ElementOfVector(ArrayOf(storage), index); }

// The same for an array whose elements must be of kind (VT_I2, VT_I4, ...): null as well when storage
// holds an array of another kind. Reads the tag once, with no call out of line.
inline char* ElementOfVector(VARIANT* storage, VARTYPE kind, LONG index)
{
    const VARIANT* holder = FollowByRefChain(storage);
    SAFEARRAY* array = nullptr;
    if (holder->vt == (VT_ARRAY | kind))
        array = holder->parray;
    else if (holder->vt == (VT_ARRAY | VT_BYREF | kind) && holder->pparray)
        array = *holder->pparray;
    return ElementOfVector(array, index);
}

// Releases what a slot holds and leaves it Empty.
void ClearSlot(VARIANT& slot);

// The truth of a condition value: Null is false; other values are converted to Boolean.
[[nodiscard]] bool ConditionIsTrue(Variant& value, bool& result);

// Base of the statement objects of a statement vector.
class Statement : public Node {
public:
    // Statements belong to their procedure; popping their entry does not destroy them.
    void Release() override {}
    void Print(std::string& out) const override { out += m_listing; }
    int KeywordToken() const override { return m_keyword; }
    // True for blank, comment and label-only lines and for Dim and Const inside the procedure.
    virtual bool IsEmpty() const { return false; }
    // Emits the statement's register form (RegisterCode.h) after its entry marker; false when it has
    // none (the register loop then runs the statement object). Called once, when the procedure is
    // complete.
    virtual bool EmitRegisters(RegisterBuilder& builder) { return false; }
    // How the statement changes the With depth of its activation: With 1, End With -1, others 0.
    virtual int WithDepthChange() const { return 0; }

    void SetListing(std::string listing) { m_listing = std::move(listing); }
    const std::string& Listing() const { return m_listing; }
    void SetKeyword(int keyword) { m_keyword = keyword; }
    void SetOwner(CompiledProcedure* owner) { m_owner = owner; }

protected:
    RunContext Context() const
    {
        Interpreter* interpreter = Interpreter::Current();
        return RunContext{interpreter, interpreter->CurrentActivation(), m_owner};
    }
    // Runs Step from state as Execute does from 0: true when it finished, else the entry waits on the
    // pending stack and the statement yields.
    [[nodiscard]] bool ExecuteFrom(std::int32_t state);
    // Answers for an entry that Step-like code ran: true when done, else it goes on the pending stack.
    [[nodiscard]] static bool FinishOrWait(ExecEntry& entry, bool done);
    // Cuts the value stack back to the activation's base after a failed statement.
    static bool Fail(const RunContext& context, ExecEntry& entry);
    // Runs code from the entry's resume point. True when its value is on the stack; false when the
    // statement must answer `answer` at once: false with the resume point saved while a call it made
    // runs, or Fail's answer after a failure.
    [[nodiscard]] static bool ExpressionReady(const RunContext& context, const Expression& code, ExecEntry& entry,
                                              bool& answer);

    CompiledProcedure* m_owner = nullptr;
    std::string m_listing;
    int m_keyword = 0;
};

struct ParameterInfo {
    TypeCode type;
    // Records and arrays of records: the record type.
    RecordTypeRef record;
    bool byVal = false;
    bool optional = false;
    bool paramArray = false;
    bool hasDefault = false;
    Variant defaultValue;
    // The tag of the parameter's storage (StorageTag of type), set when the parameter is added.
    VARTYPE storageTag = VT_EMPTY;
};

class CompiledProcedure final : public ProcedureCode {
public:
    explicit CompiledProcedure(Procedure& procedure);
    ~CompiledProcedure() override;

    // The interpreter calls the procedure; it is owned by its Procedure and never destroyed on release.
    void Release() override {}
    void Print(std::string& out) const override;

    int LastStatementIndex() const override { return static_cast<int>(m_statements.size()) - 1; }
    Node* StatementAt(int index) const override { return m_statements[static_cast<std::size_t>(index)]; }
    bool IsEmptyStatement(int index) const override;
    int ParameterCount() const override { return static_cast<int>(m_parameters.size()); }
    std::size_t FrameSize() const override { return m_slotTypes.size() * sizeof(VARIANT); }
    [[nodiscard]] bool InitializeLocals(void* frame) override;
    [[nodiscard]] bool BindParameter(int index, void* frame, Variant& argument) override;
    [[nodiscard]] bool BindArguments(void* frame, Variant* arguments) override;
    void ClearLocals(void* frame) override;

    Procedure& Source() const { return *m_procedure; }
    // Source line of statement 0 (the header) and the number of lines from the header to the End line.
    int FirstLine() const override;
    int LineCount() const { return static_cast<int>(m_statements.size()); }
    // Puts statement in place of entry index and answers the previous one (breakpoints wrap statements
    // this way); the caller owns the replacement and puts the original back. The entry keeps whether
    // it is empty.
    Node* ReplaceStatement(int index, Node* statement) override;
    int WithDepthChangeAt(int index) const override;
    bool IsFunction() const { return m_resultSlot >= 0; }
    // Lays out the frame (and builds the register form) before the first call.
    void PrepareForCalls() override
    {
        if (!m_prepared)
            PrepareInitialSlots();
    }
    // The slots the statements use, without the register form's temporaries.
    int StatementSlotCount() const
    {
        return static_cast<int>(m_slotTypes.size()) - (m_registers ? m_registerTemporaries : 0);
    }
    const ParameterInfo& ParameterAt(int index) const { return m_parameters[static_cast<std::size_t>(index)]; }
    // Statement index's own object while it is in the vector; null while a replacement stands there.
    Statement* StatementObject(int index) const
    {
        const auto at = static_cast<std::size_t>(index);
        return m_statements[at] == m_statementObjects[at] ? m_statementObjects[at] : nullptr;
    }
    int ResultSlot() const { return m_resultSlot; }
    // The procedure's variables by name (kept for evaluations in its frames).
    const std::vector<LocalName>& LocalNames() const { return m_localNames; }
    void AddLocalName(LocalName name) { m_localNames.push_back(std::move(name)); }

    // Building (the body compiler).
    // record is the record type of a record or an array of records (a reference is kept).
    int AddSlot(TypeCode type, RecordType* record = nullptr);
    // A Static; false when its record could not be made.
    [[nodiscard]] bool AddStatic(TypeCode type, RecordType* record, int& index);
    // A fixed array local (or Static) with dimensions (lower, upper); made when the frame is set up.
    int AddArraySlot(TypeCode type, std::vector<std::pair<long, long>> bounds, RecordType* record = nullptr);
    [[nodiscard]] bool AddStaticArray(TypeCode type, const std::vector<std::pair<long, long>>& bounds, int& index,
                                      RecordType* record = nullptr);
    // An element access through records and arrays of records (RecordAccess.h).
    int AddRecordPath(std::unique_ptr<RecordPath> path);
    const RecordPath& RecordPathAt(int index) const { return *m_recordPaths[static_cast<std::size_t>(index)]; }
    int AddConstant(Variant value);
    // Constant folding: whether index is the newest constant, and taking the newest constant out of the
    // table (the operands of a folded operator are not kept beside its result).
    bool IsNewestConstant(int index) const { return index >= 0 && index + 1 == static_cast<int>(m_constants.size()); }
    Variant TakeNewestConstant();
    int AddMemberSite(MemberSite site);
    // A procedure this one calls; module is the callee's when it belongs to another module.
    int AddCallee(Procedure* procedure, const Module* module = nullptr);
    // A compiled built-in call; the procedure owns it.
    int AddBuiltinCall(std::unique_ptr<BuiltinCall> call);
    // A typed form that a kTypedValue op evaluates; the procedure owns it.
    int AddTypedForm(std::unique_ptr<TypedExpression> form);
    void AddParameter(ParameterInfo parameter)
    {
        parameter.storageTag = StorageTag(parameter.type);
        m_parameters.push_back(std::move(parameter));
        SetLayout(FrameLayout{});
        m_prepared = false;
    }
    void SetResultSlot(int slot)
    {
        m_resultSlot = slot;
        SetLayout(FrameLayout{});
        m_prepared = false;
    }
    // Takes ownership of statement and appends it to the statement vector.
    Statement* Append(std::unique_ptr<Statement> statement);
    void AppendShared(Statement* statement)
    {
        m_statements.push_back(statement);
        m_statementObjects.push_back(statement);
        m_emptyFlags.push_back(statement->IsEmpty());
        PublishTable();
    }
    int StatementCount() const { return static_cast<int>(m_statements.size()); }

    // Run time.
    const Variant& ConstantAt(int index) const { return m_constants[static_cast<std::size_t>(index)]; }
    Procedure* CalleeAt(int index) const { return m_callees[static_cast<std::size_t>(index)]; }
    const Module* CalleeModuleAt(int index) const { return m_calleeModules[static_cast<std::size_t>(index)]; }
    const BuiltinCall& BuiltinCallAt(int index) const { return *m_builtinCalls[static_cast<std::size_t>(index)]; }
    const TypedExpression& TypedFormAt(int index) const { return *m_typedForms[static_cast<std::size_t>(index)]; }
    int BuiltinCallCount() const { return static_cast<int>(m_builtinCalls.size()); }
    MemberSite& MemberSiteAt(int index) { return m_memberSites[static_cast<std::size_t>(index)]; }
    VARIANT& StaticAt(int index) { return m_statics[static_cast<std::size_t>(index)]; }
    TypeCode SlotType(int index) const { return m_slotTypes[static_cast<std::size_t>(index)]; }

private:
    // Points the interpreter's table at the vectors (after each append, which may move them).
    // The table runs on the register form while there is one.
    void PublishTable() noexcept;
    // Builds the register form once the procedure is complete (its temporaries become frame slots).
    void BuildRegisters();
    // Builds the image of a fresh frame that InitializeLocals copies (after the last slot was added), and
    // publishes the quick call path's layout when the image is the whole fresh frame.
    void PrepareInitialSlots();

    Procedure* m_procedure;
    std::vector<Node*> m_statements;
    // The statement objects in the order of the vector (entries of m_statements may be replaced).
    std::vector<Statement*> m_statementObjects;
    std::vector<std::uint8_t> m_emptyFlags;
    std::vector<std::unique_ptr<Statement>> m_owned;
    std::vector<ParameterInfo> m_parameters;
    std::vector<TypeCode> m_slotTypes;
    std::vector<std::vector<std::pair<long, long>>> m_slotBounds;
    // The fresh frame: every local that owns nothing when new, as its declared type sets it up.
    std::vector<VARIANT> m_initialSlots;
    // Locals set up on each call (arrays, fixed-length strings): 1 at their index.
    std::vector<std::uint8_t> m_perCallSlots;
    // The slots that can come to own something (all but those of numeric, date and Boolean types, which
    // hold their own kind or a reference): the only ones a frame's end looks at.
    std::vector<int> m_ownerSlots;
    // The parameters' common bindings, for the quick call path's layout.
    std::vector<ParameterBinding> m_bindings;
    // No local needs more than the copy of m_initialSlots.
    bool m_plainFrame = true;
    // The frame image and layout are up to date with the slots.
    bool m_prepared = false;
    std::unique_ptr<RegisterProgram> m_registers;
    int m_registerTemporaries = 0;
    // Set once the register form was built or found unusable.
    bool m_registersTried = false;
    std::vector<RecordTypeRef> m_slotRecords;
    std::vector<std::unique_ptr<RecordPath>> m_recordPaths;
    std::vector<VARIANT> m_statics;
    std::vector<LocalName> m_localNames;
    std::vector<Variant> m_constants;
    std::vector<Procedure*> m_callees;
    std::vector<const Module*> m_calleeModules;
    std::vector<std::unique_ptr<BuiltinCall>> m_builtinCalls;
    std::vector<std::unique_ptr<TypedExpression>> m_typedForms;
    std::vector<MemberSite> m_memberSites;
    int m_resultSlot = -1;
};

// The shared empty statement of blank, comment and continuation lines.
Statement& EmptyStatement();

} // namespace brannoc
