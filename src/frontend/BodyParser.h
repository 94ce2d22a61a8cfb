#pragma once
// The statement and expression compiler's parser of one procedure body, shared by the files that
// implement its parts: lines and blocks (BodyParser.cpp), control statements, data statements, calls
// and assignments, expressions, and name resolution.
#include "frontend/BodyCompiler.h"
#include "frontend/ConstantReader.h"
#include "frontend/ReachedNames.h"
#include "code/Statements.h"
#include "library/BuiltinTable.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace brannoc {
struct FileTarget;
}

namespace brannoc::body {

struct BinaryOperator {
    Token token;
    OperationId op;
    int precedence;
};

constexpr BinaryOperator kBinaryOperators[] = {
    {Token::Caret, OperationId::kPower, 800},      {Token::Star, OperationId::kMultiply, 700},
    {Token::Slash, OperationId::kDivide, 700},     {Token::Backslash, OperationId::kIntegerDivide, 600},
    {Token::Mod, OperationId::kModulo, 500},       {Token::Plus, OperationId::kAdd, 400},
    {Token::Minus, OperationId::kSubtract, 400},   {Token::Ampersand, OperationId::kConcatenate, 300},
    {Token::Equal, OperationId::kEqual, 200},      {Token::NotEqual, OperationId::kNotEqual, 200},
    {Token::Less, OperationId::kLess, 200},        {Token::Greater, OperationId::kGreater, 200},
    {Token::LessEqual, OperationId::kLessEqual, 200}, {Token::GreaterEqual, OperationId::kGreaterEqual, 200},
    {Token::Like, OperationId::kLike, 200},        {Token::Is, OperationId::kIs, 200},
    {Token::And, OperationId::kAnd, 150},          {Token::Or, OperationId::kOr, 140},
    {Token::Xor, OperationId::kXor, 130},          {Token::Eqv, OperationId::kEqv, 120},
    {Token::Imp, OperationId::kImp, 110},
};

enum class LocalKind { Variable, Constant };

struct LocalSymbol {
    LocalKind kind = LocalKind::Variable;
    VariableRef ref;
    int constant = -1;
    // Object variables declared as a class module: the class (members bind at compile time) and
    // whether "As New" makes the instance on first use.
    const Module* classModule = nullptr;
    bool autoNew = false;
    // Records and arrays of records: the user-defined type.
    const UserType* userType = nullptr;
};

struct Label {
    int index = -1;
    // The With blocks open at the label (their numbers, outermost first).
    std::vector<int> withChain;
};

// A label reference resolved at the end of the body: GoTo, On Error GoTo and Resume label.
struct PendingGoTo {
    std::function<void(int)> bind;
    std::string name;
    const char* position;
    // GoTo reports an undefined label with its name where it was written; On Error GoTo and Resume
    // report "Label is not defined." at the end of the procedure.
    bool isGoTo = true;
    // A GoTo's jump and the With blocks open at it (a GoTo may leave With blocks, not enter one).
    JumpStatement* jump = nullptr;
    std::vector<int> withChain;
};

enum class BlockKind { If, Select, For, Do, While, With };

// How a call's arguments are written: none, in parentheses, or to the end of the statement.
enum class ArgumentList { None, Parenthesised, ToStatementEnd };

// Arguments read for a procedure: one per parameter (none when left out), and a ParamArray's items.
struct ParsedArguments {
    std::vector<std::optional<Expression>> byParameter;
    std::vector<Expression> extra;
    // Set by the caller: array elements passed by reference travel through hidden slots and go back
    // after the call (the ops that write them back, to follow the call, are collected in writeBacks).
    bool elementsByReference = false;
    std::vector<ExprOp> writeBacks;
};

// The keyword an assignment statement was written with.
enum class AssignKind { Implicit, Let, Set };

// What a record element access names: its type, and for an element declared as a class or a whole array
// held by a record, what that implies.
struct RecordPathEnd {
    TypeCode type;
    // A record: its user-defined type.
    const UserType* record = nullptr;
    // An array of records: the user-defined type of its elements.
    const UserType* elements = nullptr;
    std::string className;
    // A whole array held by a record field that was declared with bounds.
    bool fixedArray = false;
};

// What the compiler knows of a variable as an object: the class module it was declared as (members
// bind early) and whether "As New" makes the instance on first use.
struct ObjectVariable {
    const Module* classModule = nullptr;
    bool autoNew = false;
};

struct Block {
    BlockKind kind;
    int index = 0;                      // the opener's address (statement index and position in its line)
    int afterOpener = 0;                // the address of the statement after the opener
    Statement* opener = nullptr;
    std::vector<JumpStatement*> exits;  // jumps to the statement after the block's end
    bool hasElse = false;
    bool expectCase = false;
    int selectorSlot = -1;
    TypeCode selectorType; // the static type of the Select Case expression
    // Do: whether the Do line tests a condition.
    bool doHasCondition = false;
    // For: the counter's name and hidden slots.
    std::string counterName;
    VariableRef counter;
    int endSlot = -1;
    int stepSlot = -1;
    bool isEach = false;
    // Select Case: the mark slot and the Case lines that carry statements.
    int markSlot = -1;
    std::vector<CaseLineStatement*> caseLines;
    // With: the class of its object when known, its nesting level among the procedure's open With blocks
    // and its number (each With block of the procedure has its own).
    const Module* classModule = nullptr;
    int withLevel = 0;
    int withNumber = 0;
    // With a record: its type (the block keeps a reference to the record; ".element" reaches its elements).
    const UserType* withRecord = nullptr;
    // Exit jumps that leave With blocks release their objects: the With depth at the Exit.
    std::vector<int> exitWithDepths;
};

// Source text (in the engine code page) as a wide string.
std::wstring Widen(std::string_view text);

// The run-time value of a constant read by the constant reader.
Variant FromConstant(const ConstantValue& value);

// The constant that holds a folded value; false for kinds a constant cannot hold.
[[nodiscard]] bool ToConstant(const Variant& value, ConstantValue& constant);

// The type code of a scalar value (Variant for kinds without a type code of their own).
TypeCode TypeOfValue(const Variant& value);

// left op right of two constants, computed as the operator computes it when it runs (a text beside a
// number of fixed kind is aligned first); false on failure, with the first error raised (0 for none).
[[nodiscard]] bool FoldConstantOperands(OperationId op, Variant& left, const Variant& right, long& error);

// op applied to a constant in place, as the operator does when it runs; false on failure, with the first
// error raised (0 for none).
[[nodiscard]] bool FoldConstantOperand(OperationId op, Variant& value, long& error);

// A constant converted to kind in place, as a store into a variable of that kind converts it; false on
// failure, with the first error raised (0 for none).
[[nodiscard]] bool ConvertConstant(Variant& value, VARTYPE kind, long& error);

// The binary operator written as token, or null.
const BinaryOperator* FindBinary(Token token);

// The type named by a type keyword (Integer, String ...), or the empty type code.
TypeCode TypeOfWord(Token token);

const char* SkipBlanks(const char* p);
// The character after the parenthesised group that starts at p (strings inside skipped).
const char* SkipParenthesised(const char* p);

// Tokens that end a statement: end of line, comment, ":" and the Else of a single-line If.
bool IsStatementEnd(Token token);

// The keyword that names a block kind in messages ("If", "For" ...).
std::string_view BlockWord(BlockKind kind);

class BodyParser final {
public:
    BodyParser(Module& module, Procedure& procedure, Lexer& lexer)
        : m_module(module), m_state(*module.State()), m_procedure(procedure), m_lexer(lexer),
          m_reached(ReachedModules(module))
    {
    }

    bool Compile();
    // Compiles an evaluation in a frame of another procedure: the procedure's parameters stand for
    // that procedure's variables (outer, in the same order) and bind to them by reference.
    void SetOuterLocals(const std::vector<LocalName>* outer) { m_outerLocals = outer; }

private:
    using StatementPtr = std::unique_ptr<Statement>;

    // Lines and blocks.
    StatementPtr ParseLine();
    StatementPtr ParseEnd();
    StatementPtr ParseInline(bool inSingleLineIf);
    StatementPtr ParseSimple();
    StatementPtr ParseIf(bool lineStart);
    StatementPtr ParseElseIf();
    StatementPtr ParseElse();
    StatementPtr ParseSelect();
    StatementPtr ParseCase();
    StatementPtr ParseFor();
    StatementPtr ParseNext();
    StatementPtr ParseDo();
    StatementPtr ParseLoop();
    StatementPtr ParseWhile();
    StatementPtr ParseWend();
    StatementPtr ParseWith();
    StatementPtr ParseGoTo();
    // Error handling (ErrorSyntax.cpp).
    StatementPtr ParseOnError();
    StatementPtr ParseResume();
    // True when "Err" at the current token names the Err object (no variable of that name is in scope).
    bool AtErrObject() const;
    // Err or Err.property in an expression.
    [[nodiscard]] bool ParseErrObject(Expression& out, bool wantsObject = false);
    // A statement that begins with Err: Err.Raise, Err.Clear, Err[.property] = value.
    StatementPtr ParseErrStatement();
    [[nodiscard]] bool ParseRaiseArguments(Expression& out);
    // Records (RecordAccess.cpp).
    // The user-defined type of a record variable or an array of records of that name, or null.
    const UserType* UserTypeOf(const std::string& upperName) const;
    // The user-defined type of that name visible here, or null.
    const UserType* FindUserType(std::string_view name) const;
    // The run-time record type of a user-defined type (null for none).
    static IRecordInfo* RecordInfoOf(const UserType* userType);
    // Makes last (an element or record-path load) copy its value into a new hidden slot and push a
    // reference to the slot; returns the op that stores the slot back into the place it came from.
    ExprOp ThroughHiddenSlot(ExprOp& last, ExprOpCode argumentCode, ExprOpCode writeBackCode);
    // An argument for a by-reference parameter: a variable, or a record named by an element access,
    // is passed as a reference; any other expression as its value.
    void PassByReference(Expression& argument, bool simple, ParsedArguments& parsed);
    // value = target & parts (parts without calls): the code of the parts, to be appended in place.
    [[nodiscard]] bool AppendedTail(const Expression& value, const VariableRef& target, Expression& tail) const;
    // Puts the typed form of a numeric argument value in front of its code (kTypedValue), when it has one.
    void PrefixTypedForm(Expression& argument);
    // True at a record variable or an array of records followed by "(" or "." (an element access), or
    // at "." inside a With block on a record.
    bool AtRecordPath() const;
    // The innermost With block when it is on a record, else null.
    const Block* RecordWithBlock() const;
    // The target of a With statement when it begins with a record variable: a record gives the code of a
    // reference to it and its type; an object held by a record gives the code of its value and `parsed`.
    // Neither when the target does not begin with a record variable. False after reporting an error.
    [[nodiscard]] bool ParseRecordWithTarget(Expression& code, const UserType*& type, bool& parsed);
    // The element access a(i).b.c in an expression; its value may be an object whose members follow.
    [[nodiscard]] bool ParseRecordFactor(Expression& out, bool* simpleVariable);
    // A statement that begins with an element access: an assignment to it, or a member call on it.
    [[nodiscard]] bool ParseAssignedValue(Expression& code, AssignKind kind);
    StatementPtr ParseRecordElementStore(Expression code, int path, AssignKind kind);
    StatementPtr ParseRecordStatement(AssignKind kind);
    // Reads the access: its indexes go to code, the path to the procedure; the result tells the type
    // of the place and whether it may take a whole array. -1 after reporting an error.
    int ParseRecordPath(Expression& code, RecordPathEnd& end, bool beforeBounds = false);
    // True at an element access of a record that names an array held by the record (ReDim, Erase):
    // a record variable followed by ".", or "." inside With on a record.
    bool AtHeldArray() const;
    StatementPtr ParseReDimHeldArray(bool preserve);
    StatementPtr ParseEraseHeldArray();
    StatementPtr ParseExit();
    StatementPtr ParseDebug();
    // File streams and files (FileSyntax.cpp).
    // "#" (required or optional) and a stream number expression, appended to code.
    [[nodiscard]] bool ParseStreamNumber(Expression& code, bool hashRequired);
    // The variable an Input #, Line Input #, Get or Put statement reads into or writes from.
    // The variable, array element or record field an Input #, Line Input #, Get or Put reads or writes; an
    // element or field appends the code of its place to code and the op returning it to writeBack; with
    // recordsInPlace, a record element or field is taken by reference.
    [[nodiscard]] bool ParseFileTarget(FileTarget& target, Expression& code, Expression& writeBack,
                                       bool recordsInPlace = false);
    // Whether a Line or Name at the line's start begins its statement (not a variable or procedure).
    bool AtFileStatementWord(Token word) const;
    StatementPtr ParseOpen();
    StatementPtr ParseClose();
    StatementPtr ParseStreamPrint(bool writeForm);
    StatementPtr ParseStreamInput();
    StatementPtr ParseLineInput();
    StatementPtr ParseTransfer(bool put);
    StatementPtr ParseSeekStatement();
    StatementPtr ParseLock(bool unlock);
    StatementPtr ParseNameStatement();
    StatementPtr ParseDim(bool isStatic);
    // User dialogs (DialogSyntax.cpp).
    // At "Begin Dialog".
    bool AtDialogBlock() const;
    // The record type of the procedure's dialog variable, from a scan of its Begin Dialog block.
    void ScanDialogType(int endLine);
    StatementPtr ParseBeginDialog();
    [[nodiscard]] bool ReadDialogField(std::string& field);
    [[nodiscard]] bool ReadDialogList(Expression& list);
    [[nodiscard]] bool CheckDialogFunction(const std::string& name, const char* position, const Procedure*& function);
    // After "Dialog": the statement (its code goes to out) or the function.
    [[nodiscard]] bool ParseDialogCall(Expression& out, bool statement);
    StatementPtr ParseConst();
    StatementPtr ParseAssignmentOrCall(AssignKind kind);
    // A statement that begins with an object: ".member" (With), "Me.", or a name followed by members.
    bool StartsObjectStatement() const;
    StatementPtr ParseObjectStatement(AssignKind kind, bool callOnly);
    StatementPtr ParseCallStatement();
    StatementPtr ParseRaiseEvent();
    // True for a module-level variable declared WithEvents.
    bool IsWithEventsVariable(const VariableRef& target) const;
    StatementPtr ParseArrayAssignment(const VariableRef& target, const UserType* userType, const char* namePosition);
    StatementPtr Declaration();
    Block* Innermost(BlockKind kind);
    // Points the block's exits at after, the address of the statement after its closing statement.
    void CloseBlock(Block& block, int after);
    int CurrentIndex() const { return m_lexer.Line() - m_procedure.firstLine; }
    // The address of the statement being parsed, and of the one after it (the next ":"-separated
    // statement of the line, or the next line), once its own words have been read.
    int Here() const { return LineAddress(CurrentIndex(), m_linePosition); }
    int AfterHere() const;
    // One statement of a line (the line's first or one after ":").
    StatementPtr ParseSegment();

    // Expressions.
    [[nodiscard]] bool ParseExpression(Expression& out, bool* simpleVariable = nullptr);
    [[nodiscard]] bool ParseFactor(Expression& out, bool* simpleVariable);
    [[nodiscard]] bool ParseNumber(Expression& out);
    [[nodiscard]] bool ParseName(Expression& out, bool* simpleVariable);
    // A name's value without the member selections that may follow it (m_factorClass: its class).
    [[nodiscard]] bool ParseNameValue(Expression& out, bool* simpleVariable);
    [[nodiscard]] bool ParseTypeOf(Expression& out);
    [[nodiscard]] bool ParseCallArguments(Procedure& callee, Expression& out, ArgumentList list);
    [[nodiscard]] bool ParseArguments(Procedure& callee, ArgumentList list, std::size_t limit, ParsedArguments& parsed);
    [[nodiscard]] bool AppendArguments(Procedure& callee, const ParsedArguments& parsed, Expression& out);
    // Appends a binary operator, folding it when both operands are constants; an error of the folding
    // is a compile error, reported at position (the operator) or, without one, at the current token.
    void AppendBinary(Expression& out, OperationId op, const char* position = nullptr);
    // Marks the binary operator just appended to convert a Variant operand toward a fixed-kind one.
    static void AlignOperands(Expression& out, TypeCode left, TypeCode right);
    // Walks the postfix code with a stack of operand types; the first operator that refuses its operands
    // reports "Operand/operator type mismatch.". Sets the expression's result type.
    [[nodiscard]] bool TypeCheck(Expression& expression, std::size_t start);
    void AppendConstant(Expression& out, Variant value);
    // Evaluates code made of constants and operators only (unary ones included) at compile time.
    [[nodiscard]] bool EvaluateConstant(const Expression& code, Variant& result);

    // Names.
    std::string ReadName();
    TypeCode ReadSuffix();
    [[nodiscard]] bool ResolveVariable(const std::string& name, TypeCode suffix, VariableRef& ref, bool& found);
    const LocalSymbol* FindLocal(const std::string& upperName) const;
    // Whether name (as written) is a constant or enumeration member where it is used.
    bool NamesConstant(const std::string& name) const;
    Procedure* FindProcedure(const std::string& upperName) const;
    // The Property Let or Set of that name (this module's, or a public one of a plain used module).
    Procedure* FindProperty(const std::string& upperName, ProcedureKind kind) const;
    // At the token after a name: "=" follows (after parenthesised indexes, if any).
    bool IsAssignmentAhead() const;
    // Name[(indexes)] = value through a Property Let or Set of this or a used module.
    StatementPtr ParsePropertyAssignment(Procedure& property, AssignKind kind);
    const Module* ModuleOf(const Procedure& procedure) const;
    bool FindUsedVariable(const std::string& upperName, VariableRef& ref) const;
    // Whether the name is an enumeration of this module or a public one of a module reached through
    // '#Uses.
    bool IsEnumName(const std::string& upperName) const;
    // An As type; a user-defined type's name gives kUserType and the type in userType (when asked for).
    [[nodiscard]] bool ReadType(TypeCode& type, const Module** classModule = nullptr,
                                const UserType** userType = nullptr);
    // Whether a variable of that name is declared (locally, in this module or a used one).
    bool IsDeclaredVariable(const std::string& upperName) const;
    // True when the name, not declared by the module or the modules it reaches, is given by a host
    // extension or a type-library reference.
    bool AtExtensionName(const std::string& upperName, ExtensionName& found) const;
    // The name's value or call through its extension: a named object, a member called on the
    // extension's object (or on the object a module variable holds), a library constant.
    [[nodiscard]] bool ParseExtensionName(const std::string& name, const ExtensionName& found, MemberAccess access,
                                          Expression& out);
    // New Class or New Library.Class of a referenced library (at the class's name): the object is made
    // from the class identifier as CreateObject makes it.
    [[nodiscard]] bool ParseNewLibraryClass(Expression& out);
    // The class module of that name among the modules this one uses, or null.
    const Module* FindClassModule(std::string_view name) const;
    // Whether a type name that is no type word, record or enumeration names a class or object module or a
    // type of the references and extensions.
    bool IsKnownObjectType(std::string_view name) const;
    // The class module a declared type names, or null (not a class, or an array).
    const Module* ClassOfType(const TypeSpec& type) const;
    // What the variable of that name is as an object (a local, a parameter, a variable of this module
    // or a public one of a used module).
    ObjectVariable ClassOfVariable(const std::string& upperName) const;
    // Loads a variable's value ("As New" variables get their instance first).
    void AppendLoad(Expression& out, const VariableRef& ref, const ObjectVariable& object);

    // Members of objects (MemberAccess.cpp).
    // After an object value (its code in out, its class when known, written at start): the
    // ".name [(arguments)]" selections that follow, each a Get; the class of the last value goes to
    // m_factorClass.
    [[nodiscard]] bool ParseMemberChain(Expression& out, const Module* classModule, const char* start);
    // One member at the current token (its name), applied to the object on top of out. classModule is
    // the object's class on entry (null: late-bound) and the result's class on return.
    [[nodiscard]] bool ParseMember(Expression& out, const Module*& classModule, MemberAccess access);
    // A statement that starts with an object value in code (written at start): its selections, the last
    // of which is called or assigned (Let, Set).
    StatementPtr ParseMemberStatement(Expression code, const Module* classModule, AssignKind kind, bool callOnly,
                                      const char* start);
    // The arguments of an early-bound member procedure (and the assigned value of a Let or Set).
    [[nodiscard]] bool ParseMemberArguments(Procedure& member, MemberAccess access, Expression& out, int& count);
    // The arguments of a late-bound member, in the order written (named ones after the positional ones).
    // Appends to a Let's value the op that makes an object its default member's value.
    void AppendLetResolution(Expression& value);
    [[nodiscard]] bool PassesLateByReference(const ExprOp& load, TypeCode type) const;
    [[nodiscard]] bool ParseLateArguments(MemberAccess access, MemberSite& site, Expression& out, int& count);
    // Appends the member access and its end to out; the result's type.
    void AppendMemberCall(Expression& out, MemberSite site, int count, TypeCode result);
    // A default member used as obj(arguments) on an early-bound object (its name written at position).
    [[nodiscard]] bool ParseDefaultMember(Expression& out, const Module*& classModule, MemberAccess access,
                                          const char* position);
    // "." at the start of a factor or statement: the innermost With block's object.
    [[nodiscard]] bool AppendWithObject(Expression& out, const Module*& classModule);
    // "Me": the current instance's object (class modules only).
    [[nodiscard]] bool AppendMe(Expression& out, const Module*& classModule);
    // Appends an op that pushes an object of module (kNew: a new instance; kDefaultObject: the default
    // instance), whose members then bind to the module's procedures.
    void AppendModuleObject(Expression& out, ExprOpCode code, const Module& module);
    // At a member name: true when a "." follows it (after its parenthesised arguments); assignment
    // tells whether "=" follows instead.
    bool MemberContinues(bool& assignment) const;
    int WithLevel() const;
    std::vector<int> WithChain() const;
    [[nodiscard]] bool ReadBounds(std::vector<std::pair<long, long>>& bounds);
    // After "(" of an element reference: the indexes up to ")"; count receives their number.
    [[nodiscard]] bool ParseIndexes(Expression& out, int& count);
    // "(indexes)" after a function's result that can hold an array: the element of that array.
    [[nodiscard]] bool ParseResultIndexes(Expression& out);

    // Built-in calls (BuiltinCalls.cpp).
    // The built-in that word stands for when the program declares nothing of that name, or null.
    const BuiltinRecord* BuiltinFor(Token word, const std::string& upperName) const;
    // After a built-in's name and suffix: the arguments and the call. In a statement a function's result
    // is dropped; only there may an instruction be called.
    [[nodiscard]] bool ParseBuiltinCall(const BuiltinRecord& record, TypeCode suffix, Expression& out, bool statement);
    [[nodiscard]] bool ParseBuiltinArguments(const BuiltinRecord& record, bool parenthesised,
                                             std::vector<std::optional<Expression>>& arguments);
    // Every required parameter has an argument and every argument suits its parameter's kind; false after
    // reporting.
    [[nodiscard]] bool CheckBuiltinArguments(const BuiltinRecord& record,
                                             const std::vector<std::optional<Expression>>& arguments);
    [[nodiscard]] bool CheckBuiltinArgument(const BuiltinRecord& record, int index, const Expression& argument);
    // Len and LenB of a variable of a user-defined type: the size of its record.
    [[nodiscard]] bool ParseRecordLength(const BuiltinRecord& record, const Expression& argument, Expression& out);
    // Appends the value of a pure call with constant arguments; false when it cannot be folded.
    [[nodiscard]] bool FoldBuiltinCall(const BuiltinRecord& record,
                                       const std::vector<std::optional<Expression>>& arguments, bool stringResult,
                                       Expression& out);
    void EmitBuiltinCall(const BuiltinRecord& record, std::vector<std::optional<Expression>>& arguments,
                         bool stringResult, Expression& out);
    StatementPtr ParseForEach();
    StatementPtr ParseReDim();
    StatementPtr ParseReDimVariable(bool preserve);
    [[nodiscard]] bool ParseReDimBounds(Expression& bounds, int& dimensions);
    StatementPtr ParseMid();
    StatementPtr ParseErase();
    StatementPtr ParseAlign(bool right);
    StatementPtr ParseAlignPath(bool right);
    // A declared variable named at the current token; false after reporting `message`.
    [[nodiscard]] bool ReadExistingVariable(VariableRef& ref, CompileMessage message);
    // LSet between two record variables (after "LSet" and the target).
    StatementPtr ParseRecordCopy(const VariableRef& target, const std::string& targetName);
    bool NextIsColonEqual() const;
    // Keeps the variables of the procedure by name in its compiled form.
    void RecordLocalNames();
    bool ParenthesisedToEnd() const;

    Module& m_module;
    ParseState& m_state;
    Procedure& m_procedure;
    Lexer& m_lexer;
    // The modules reached through '#Uses, whose public names this module sees (ReachedNames.h).
    const std::vector<Module*> m_reached;
    CompiledProcedure* m_code = nullptr;
    std::unordered_map<std::string, LocalSymbol> m_locals;
    // Bytes of the variables the procedure declares, laid out as module storage is (at most 16 MB).
    std::uint64_t m_declaredStorage = 0;
    const std::vector<LocalName>* m_outerLocals = nullptr;
    std::unordered_map<std::string, Label> m_labels;
    std::vector<PendingGoTo> m_gotos;
    // Statements of a line that failed to parse. The parser keeps pointers to some statements until the
    // procedure ends (the GoTos waiting for their labels, the exits and openers of open blocks), so a
    // statement it made is never destroyed before then, even when its line is dropped.
    std::vector<StatementPtr> m_discarded;
    // Keeps statement (when there is one) until the procedure ends; answers null, for `return`.
    StatementPtr Discard(StatementPtr statement)
    {
        if (statement)
            m_discarded.push_back(std::move(statement));
        return nullptr;
    }
    std::vector<Block> m_blocks;
    int m_exitIndex = 0;
    // The procedure's user dialog: the record type of its variables, the hidden slot that holds the
    // definition once the block has run, and whether the block has been compiled.
    std::unique_ptr<UserType> m_dialogType;
    int m_dialogSlot = -1;
    bool m_dialogDefined = false;
    int m_withCount = 0;
    // Where the name read last (ReadName) was written: errors about a name point at it.
    const char* m_namePosition = nullptr;
    // Position of the statement being parsed among the ":"-separated statements of its line.
    int m_linePosition = 0;
    // The class module of the factor parsed last, when it is an object whose class is known.
    const Module* m_factorClass = nullptr;
    // The factor just parsed was an array element (name(indexes)); the expression just parsed was
    // nothing but one (what a by-reference argument may take as a reference).
    bool m_factorIsElement = false;
    bool m_expressionIsElement = false;
    // Nesting of the expressions and single-line Ifs being parsed (NestingLimits.h).
    int m_expressionDepth = 0;
    int m_inlineDepth = 0;
};

} // namespace brannoc::body
