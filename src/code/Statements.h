#pragma once
// The statement classes of a statement vector. Control moves by setting the current activation's
// indexes; a statement that calls a procedure yields and resumes from its entry's state (the position in
// its expression code), so nothing of a statement in progress lives in the statement object.
#include "code/FastExpression.h"
#include "code/ProcedureBody.h"
#include "code/StringForms.h"
#include "code/TextOperand.h"

namespace brannoc {

class StatementList;

// A jump target: a statement index (a source line) and the position of a statement within that line's
// ":"-separated list (0: the line from its start).
constexpr int LineAddress(int index, int position) { return index | (position << 16); }
constexpr int AddressIndex(int address) { return address & 0xFFFF; }
constexpr int AddressPosition(int address) { return address >> 16; }

// Dim, Const and Static lines: nothing runs, the listing remains.
class DeclarationStatement final : public Statement {
public:
    bool IsEmpty() const override { return true; }
};

// The procedure-entry and procedure-exit statements and other lines that do nothing when run.
class NoOperationStatement final : public Statement {
public:
    [[nodiscard]] bool Execute() override { return true; }
    bool EmitRegisters(RegisterBuilder& builder) override;
};

// Let / Set / implicit assignment to a variable.
class AssignStatement final : public Statement {
public:
    AssignStatement(Expression value, VariableRef target)
        : m_value(std::move(value)), m_target(target), m_fastTarget(target)
    {
    }
    // A numeric value stored without conversion goes the direct way; everything else through Step.
    [[nodiscard]] bool Execute() override;
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    bool EmitRegisters(RegisterBuilder& builder) override;
    // The register form's store of a string read in place (StoreText): false, with nothing changed,
    // when it gives up; true when it stored or raised an error (the halt bit tells).
    [[nodiscard]] bool StoreTextInPlace(const RunContext& context) const { return StoreText(*this, context); }

private:
    // How a typed value reaches a variable of a fixed kind without a VARIANT in between: the same kind,
    // or a whole number widened (Integer to Long, Integer or Long to Double); or how a numeric value
    // reaches a Variant.
    // kText: a string read in place into a String or Variant variable (AssignText).
    enum class DirectStore : std::uint8_t { kUntried, kNone, kWhole, kInteger, kReal, kWholeToReal, kVariant, kText };
    // The direct store chosen for the statement: false when it gave up, and then nothing was changed.
    using DirectRun = bool (*)(const AssignStatement& self, const RunContext& context);
    void ChooseDirectStore();
    template <DirectStore Store>
    [[nodiscard]] static bool StoreDirect(const AssignStatement& self, const RunContext& context);
    [[nodiscard]] static bool StoreIntoVariant(const AssignStatement& self, const RunContext& context);
    [[nodiscard, gnu::noinline]] static bool StoreIntoVariantOther(const AssignStatement& self,
                                                                  const RunContext& context);
    [[nodiscard]] static bool StoreText(const AssignStatement& self, const RunContext& context);
    // The first run and every statement without a direct store.
    [[nodiscard, gnu::noinline]] bool ExecuteOther();
    // Chooses the store of a string read in place when the value is one (a String variable, element,
    // field, constant or Mid part) and the target a String or Variant variable; true when it is chosen.
    // mayReadVariant: a value that is a Variant variable counts too (it may hold no string, and then the
    // statement goes the general way).
    bool PrepareTextStore(bool mayReadVariant = false);

    Expression m_value;
    VariableRef m_target;
    FastTarget m_fastTarget;
    LazyFastExpression m_fast;
    const TypedExpression* m_typed = nullptr;
    DirectStore m_directStore = DirectStore::kUntried;
    DirectRun m_run = nullptr;
    // A Variant target: the typed form of the declared kinds or the fast expression's assumed form.
    const TypedExpression* m_variantForm = nullptr;
    TextOperand m_text;
};

// s = s & value for a String or Variant variable: the value is appended to the variable's string in
// place (AppendToStorage), so a loop of such statements does not copy the string each time.
class AppendStatement final : public Statement {
public:
    AppendStatement(Expression tail, VariableRef target) : m_tail(std::move(tail)), m_target(target) {}
    // A tail of parts joined by & (buf = buf & CStr(n) & ","), each a string read in place (a variable,
    // a constant, a Mid part) or CStr of a whole number, is appended without the value stack.
    [[nodiscard]] bool Execute() override;
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    struct TailPart {
        TextOperand text;
        // CStr of a whole number (the text is unused).
        TypedExpression number;
        bool isNumber = false;
    };
    // Reads m_tail into m_parts; false when some part is not of those kinds.
    bool CompileParts();
    // Appends the parts' texts: false (nothing done) when a part gave up; else as Execute answers.
    [[nodiscard]] bool AppendParts(const RunContext& context, bool& answer);

    Expression m_tail;
    VariableRef m_target;
    enum class Direct : std::uint8_t { kUntried, kNone, kReady };
    Direct m_direct = Direct::kUntried;
    std::vector<std::unique_ptr<TailPart>> m_parts;
};

// a(i, ...) = value: the code leaves the indexes and then the value (its code from valueStart) on the
// stack. One numeric index and a numeric value with typed forms go the direct way into an array of
// Integer, Long, Boolean or Double elements.
class AssignElementStatement final : public Statement {
public:
    // `letsValue`: a Let (an object value gives way to its default member's value), not a Set.
    AssignElementStatement(Expression code, VariableRef target, int count, int valueStart, bool letsValue)
        : m_code(std::move(code)), m_target(target), m_count(count), m_valueStart(valueStart), m_letsValue(letsValue)
    {
    }
    [[nodiscard]] bool Execute() override;
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    bool EmitRegisters(RegisterBuilder& builder) override;

private:
    // Compiles the typed forms of the index and the value when the array's element kind takes them.
    void PrepareDirect();
    [[nodiscard]] bool StoreDirect(const RunContext& context) const;

    Expression m_code;
    VariableRef m_target;
    int m_count;
    int m_valueStart;
    bool m_letsValue;
    enum class Direct : std::uint8_t { kUntried, kNone, kReady };
    Direct m_direct = Direct::kUntried;
    VARTYPE m_elementKind = VT_EMPTY;
    // The frame slot of an index that is a local Integer or Long variable, else -1.
    int m_localIndex = -1;
    TypedExpression m_index;
    TypedExpression m_value;
};

// For Each element In array: keeps the array and the position in hidden slots; an empty array skips
// the loop.
class ForEachStatement final : public Statement {
public:
    ForEachStatement(VariableRef element, Expression group, int arraySlot, int positionSlot)
        : m_element(element), m_group(std::move(group)), m_arraySlot(arraySlot), m_positionSlot(positionSlot)
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    void SetExitTarget(int index) { m_exitTarget = index; }

private:
    VariableRef m_element;
    Expression m_group;
    int m_arraySlot;
    int m_positionSlot;
    int m_exitTarget = 0;
};

// Next of a For Each: the next element, or the end of the loop.
class NextEachStatement final : public Statement {
public:
    NextEachStatement(VariableRef element, int arraySlot, int positionSlot, int loopStart)
        : m_element(element), m_arraySlot(arraySlot), m_positionSlot(positionSlot), m_loopStart(loopStart)
    {
    }
    [[nodiscard]] bool Execute() override;

private:
    VariableRef m_element;
    int m_arraySlot;
    int m_positionSlot;
    int m_loopStart;
};

// LSet / RSet of a string variable: the destination keeps its length.
class AlignStatement final : public Statement {
public:
    // With indexes, the target is the element of the array variable that the code's first `indexCount`
    // values name; the value follows them.
    AlignStatement(Expression value, VariableRef target, bool right, int indexCount = 0)
        : m_value(std::move(value)), m_target(target), m_right(right), m_indexCount(indexCount)
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    // The String the text is aligned into: the variable's, or the element's; null after raising.
    [[nodiscard]] BSTR* Destination(const RunContext& context);

    Expression m_value;
    VariableRef m_target;
    bool m_right;
    int m_indexCount;
};

// Mid(var, start [, length]) = value: replaces characters of a string variable in place. The code leaves
// start, the length when given, and the value.
class MidStatement final : public Statement {
public:
    MidStatement(Expression code, VariableRef target, bool hasLength)
        : m_code(std::move(code)), m_target(target), m_hasLength(hasLength)
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    Expression m_code;
    VariableRef m_target;
    bool m_hasLength;
};

// Evaluates an expression and drops what it leaves (calls of Subs and Functions as statements).
class EvaluateStatement final : public Statement {
public:
    explicit EvaluateStatement(Expression code) : m_code(std::move(code)) {}
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    bool EmitRegisters(RegisterBuilder& builder) override;

private:
    Expression m_code;
};

class DebugPrintStatement final : public Statement {
public:
    DebugPrintStatement(Expression items, int count, bool newLine)
        : m_items(std::move(items)), m_count(count), m_newLine(newLine)
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    Expression m_items;
    int m_count;
    bool m_newLine;
};

// A move of the execution point: GoTo, Exit, Loop and Wend without condition, and ElseIf, Else and Case
// lines reached by falling out of the branch above them.
class JumpStatement final : public Statement {
public:
    [[nodiscard]] bool Execute() override;
    bool EmitRegisters(RegisterBuilder& builder) override;
    void SetTarget(int index) { m_target = index; }
    int Target() const { return m_target; }
    // A jump out of With blocks drops their objects; a GoTo into a With block from outside is refused
    // when it runs.
    void SetWithRelease(int count) { m_withRelease = count; }
    void SetIntoWith() { m_intoWith = true; }

private:
    int m_target = 0;
    int m_withRelease = 0;
    bool m_intoWith = false;
};

// Exit Sub / Function / Property: moves to the procedure-exit statement, ends handler mode and clears
// the error record (as Resume does).
class ExitProcedureStatement final : public Statement {
public:
    explicit ExitProcedureStatement(int exitIndex) : m_exitIndex(exitIndex) {}
    [[nodiscard]] bool Execute() override;

private:
    int m_exitIndex;
};

// Tests a condition and jumps when it equals jumpWhen (Do While/Until, Loop While/Until, While).
class ConditionalJumpStatement final : public Statement {
public:
    ConditionalJumpStatement(Expression condition, bool jumpWhen)
        : m_condition(std::move(condition)), m_jumpWhen(jumpWhen)
    {
    }
    [[nodiscard]] bool Execute() override;
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    bool EmitRegisters(RegisterBuilder& builder) override;
    void SetTarget(int index) { m_target = index; }

private:
    // The first run and conditions without a typed form.
    [[nodiscard, gnu::noinline]] bool ExecuteOther(const RunContext& context);

    Expression m_condition;
    bool m_jumpWhen;
    int m_target = 0;
    LazyFastExpression m_fast;
    // The typed form of the condition once it is known to have one.
    const TypedExpression* m_typed = nullptr;
};

// Block If (with its ElseIf conditions) and Select Case (with its Case conditions over the kept
// selector). The conditions are tried in order in the same entry; the first true one runs the lines
// after its partner; none true runs the Else part or leaves the block.
class BranchStatement final : public Statement {
public:
    // Select Case: the selector expression and the hidden slot that keeps its value.
    void SetSelector(Expression selector, int slot)
    {
        m_selector = std::move(selector);
        m_selectorSlot = slot;
    }
    void AddBranch(Expression condition, int target)
    {
        m_conditions.push_back(std::move(condition));
        m_fastConditions.emplace_back();
        m_targets.push_back(target);
        m_marks.push_back(0);
    }
    void SetBranchTarget(std::size_t branch, int target) { m_targets[branch] = target; }
    void SetElseTarget(int target, bool marked = false)
    {
        m_elseTarget = target;
        m_elseMarked = marked;
    }
    // Case lines with statements after ":" are entered through a mark in a hidden slot: a branch added
    // with `marked` sets it before moving to its line.
    void SetMarkSlot(int slot) { m_markSlot = slot; }
    void MarkLastBranch() { m_marks.back() = 1; }
    std::size_t BranchCount() const { return m_conditions.size(); }
    // A Select Case over a string read in place whose Case lines hold string constants: the part its
    // selector enters (1 + branch index, or one past the branches for the Else part); 0 when the selector
    // cannot be read in place (nothing happened).
    [[nodiscard]] int TextCasePart(const RunContext& context) const;
    // The same part for a selector text read elsewhere (the register form reads it at an index it computed).
    [[nodiscard]] int PartOfText(std::wstring_view selector) const;
    // Selector and conditions with a direct form are evaluated directly, the rest through Step.
    [[nodiscard]] bool Execute() override;
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    bool EmitRegisters(RegisterBuilder& builder) override;

private:
    // Takes the branch of part (1 + branch index; past the last: the Else part).
    void Enter(const RunContext& context, int part);

    // One item of a Case line whose value (or bounds) is a numeric constant: the selector `op` low, or
    // low <= selector <= high for a range. Whole bounds compare with a whole selector as whole numbers,
    // everything else as Doubles (every Integer and Long is exact as a Double).
    struct CaseTest {
        OperationId op = OperationId::kEqual;
        bool range = false;
        bool whole = false;
        LONG low = 0;
        LONG high = 0;
        double lowReal = 0;
        double highReal = 0;
        // Items of a Case line whose constants are strings compare a string selector by code unit.
        bool text = false;
        std::wstring_view lowText;
        std::wstring_view highText;
    };
    // How the direct form tests each branch: the typed form of an If or ElseIf condition, or the Case
    // items m_caseTests[first, first + count) when the Case line has only constant numeric items; with
    // neither, the branch's fast expression or the general code.
    struct DirectBranch {
        const TypedExpression* condition = nullptr;
        // An If or ElseIf condition comparing two strings read in place.
        const TextComparison* text = nullptr;
        std::uint16_t firstTest = 0;
        std::uint16_t testCount = 0;
        // The Case items are string constants.
        bool textTests = false;
    };
    // A Select Case whose selector has a whole typed form and whose Case lines all hold whole constant
    // items: each item as the range of selectors it takes (low > high: none), in the order of the lines,
    // with the part (1 + branch index) it enters.
    struct WholeRange {
        LONG low = 0;
        LONG high = 0;
        int part = 0;
    };
    // Builds m_wholeRanges when every Case item reads as whole ranges; false otherwise.
    bool PrepareWholeRanges();
    [[nodiscard]] bool ExecuteWholeRanges(const RunContext& context);
    [[nodiscard]] bool ExecuteConditions(const RunContext& context);
    // Tries the branches in order with test(branch index, truth), which answers false when it gave up
    // (the general code then runs from that branch); takes the first true one, or the Else part.
    template <typename Test>
    [[nodiscard]] bool TakeFirstTrue(const RunContext& context, Test test);
    // Works out m_direct (the first time the statement runs, when the procedure is complete).
    void PrepareDirect();
    // Reads the Case items of condition (the parser's code over the selector slot) into m_caseTests;
    // false (nothing added) when an item is anything but a numeric constant, a range of two or an Is
    // comparison with one.
    bool ReadCaseTests(const Expression& condition, const CompiledProcedure& procedure);
    // Whether a numeric selector (whole: in `whole`, else in `real`) matches the items of branch.
    bool MatchesCase(const DirectBranch& branch, bool isWhole, LONG whole, double real) const;
    // Whether a string selector matches the string items of branch.
    bool MatchesText(const DirectBranch& branch, std::wstring_view selector) const;
    // A Select Case over a string read in place whose Case lines all hold string constant items: the
    // selector is read once and compared where it is stored, and nothing is kept.
    [[nodiscard]] bool ExecuteTextCases(const RunContext& context);
    // The direct run: answers as Execute does.
    [[nodiscard]] bool ExecuteDirect(const RunContext& context);

    // A Case item "text" of a Select over a string whose Case lines hold only such items: the items in
    // order, each with the part it enters, compared by length and first code unit before the rest.
    struct TextEqual {
        UINT length = 0;
        wchar_t first = 0;
        const wchar_t* text = nullptr;
        int part = 0;
    };
    // Fills m_textEquals when every Case item is an equality with a string; else leaves it empty.
    void PrepareTextEquals();

    std::vector<DirectBranch> m_directBranches;
    std::vector<TextEqual> m_textEquals;
    std::vector<WholeRange> m_wholeRanges;
    const TypedExpression* m_wholeSelector = nullptr;
    std::vector<CaseTest> m_caseTests;
    // Conditions comparing strings (one per branch; used through DirectBranch::text).
    std::vector<TextComparison> m_textConditions;
    // PartOfText's work, in line in TextCasePart (the register loop's call of it stays the only call).
    [[nodiscard, gnu::always_inline]] inline int TextPart(std::wstring_view selector) const;
    TextOperand m_textSelector;
    // kConditions: an If whose conditions all have typed forms. kTextCases: ExecuteTextCases.
    enum class Direct : std::uint8_t { kUntried, kNone, kReady, kWholeRanges, kConditions, kTextCases };
    Direct m_direct = Direct::kUntried;

    Expression m_selector;
    LazyFastExpression m_fastSelector;
    int m_selectorSlot = -1;
    std::vector<Expression> m_conditions;
    std::vector<LazyFastExpression> m_fastConditions;
    std::vector<int> m_targets;
    std::vector<std::uint8_t> m_marks;
    int m_elseTarget = 0;
    bool m_elseMarked = false;
    int m_markSlot = -1;
};

// A Case line with statements after ":": entered from its Select Case (the mark is set) it runs them;
// reached by falling out of the branch above it leaves the Select block.
class CaseLineStatement final : public Statement {
public:
    CaseLineStatement(int markSlot, std::unique_ptr<StatementList> body)
        : m_markSlot(markSlot), m_body(std::move(body))
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    void SetTarget(int index) { m_target = index; }

private:
    int m_markSlot;
    std::unique_ptr<StatementList> m_body;
    int m_target = 0;
};

// For counter = start To end [Step step]. Start, end and step are evaluated once, in that order, the start
// assigned to the counter before the end is evaluated; end and step are kept in hidden slots of the frame.
// The step slot holds 1 before the end and step are evaluated, so that a loop whose bound failed (and was
// resumed past) still ends at its first Next.
class ForStatement final : public Statement {
public:
    ForStatement(VariableRef counter, Expression start, Expression end, Expression step, int endSlot, int stepSlot)
        : m_counter(counter), m_start(std::move(start)), m_end(std::move(end)), m_step(std::move(step)),
          m_endSlot(endSlot), m_stepSlot(stepSlot)
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    bool EmitRegisters(RegisterBuilder& builder) override;
    void SetExitTarget(int index) { m_exitTarget = index; }
    const VariableRef& Counter() const { return m_counter; }
    int EndSlot() const { return m_endSlot; }
    int StepSlot() const { return m_stepSlot; }

private:
    // Stores the value on top of the value stack into a hidden slot, in the counter's kind, and pops it.
    [[nodiscard]] bool KeepBound(const RunContext& context, int slot);
    // The first test: is the counter already past the end?
    [[nodiscard]] bool TestFirst(const RunContext& context, ExecEntry& entry);

    VariableRef m_counter;
    Expression m_start;
    Expression m_end;
    Expression m_step; // empty without Step
    int m_endSlot;
    int m_stepSlot;
    int m_exitTarget = 0;
};

// Next: adds the step to the counter and goes back to the line after its For while the loop goes on. A
// loop whose For never ran (entered by GoTo) has no step: its Next leaves it.
class NextStatement final : public Statement {
public:
    NextStatement(VariableRef counter, int endSlot, int stepSlot, int loopStart)
        : m_counter(counter), m_counterKind(static_cast<VARTYPE>(counter.type.ValueTag())), m_endSlot(endSlot),
          m_stepSlot(stepSlot), m_loopStart(loopStart),
          m_localWhole(counter.scope == StorageScope::Local && (m_counterKind == VT_I4 || m_counterKind == VT_VARIANT))
    {
    }
    [[nodiscard]] bool Execute() override;
    bool EmitRegisters(RegisterBuilder& builder) override;

private:
    // Every other counter, step and end (and a Long counter whose sum overflows).
    [[nodiscard, gnu::noinline]] bool ExecuteOther();
    // The general step: any kinds, through the operators (storage null: the counter could not be found).
    [[nodiscard]] bool Advance(const RunContext& context, VARIANT* storage);

    VariableRef m_counter;
    VARTYPE m_counterKind; // VT_VARIANT for a Variant counter
    int m_endSlot;
    int m_stepSlot;
    int m_loopStart;
    bool m_localWhole;
};

// Stores a value into a hidden slot (With's object).
class KeepValueStatement final : public Statement {
public:
    KeepValueStatement(Expression value, int slot) : m_value(std::move(value)), m_slot(slot) {}
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    Expression m_value;
    int m_slot;
};

// Several statements on one line (":"), or the Then and Else parts of a single-line If. A line's own
// list starts at the position that a jump into the line asked for.
class StatementList final : public Statement {
public:
    void Add(std::unique_ptr<Statement> statement) { m_statements.push_back(std::move(statement)); }
    bool IsEmptyList() const { return m_statements.empty(); }
    std::size_t Size() const { return m_statements.size(); }
    // The list's only statement, or null when it holds none or several.
    Statement* Only() const { return m_statements.size() == 1 ? m_statements.front().get() : nullptr; }
    void SetLineLevel() { m_lineLevel = true; }
    // Runs the statements from position start; answers as Step does, with entry.state the position of
    // the statement to resume after.
    [[nodiscard]] bool RunFrom(ExecEntry& entry, int start, int stateBase);
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    std::vector<std::unique_ptr<Statement>> m_statements;
    bool m_lineLevel = false;
};

class SingleLineIfStatement final : public Statement {
public:
    SingleLineIfStatement(Expression condition, std::unique_ptr<StatementList> thenPart,
                          std::unique_ptr<StatementList> elsePart)
        : m_condition(std::move(condition)), m_then(std::move(thenPart)), m_else(std::move(elsePart))
    {
    }
    [[nodiscard]] bool Execute() override;
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    bool EmitRegisters(RegisterBuilder& builder) override;

private:
    // Runs the Then (true) or Else part from its start.
    [[nodiscard]] bool RunPart(ExecEntry& entry, bool truth);

    Expression m_condition;
    LazyFastExpression m_fast;
    // A condition comparing two strings read in place, tried when it has no numeric form.
    enum class Direct : std::uint8_t { kUntried, kNone, kReady };
    Direct m_direct = Direct::kUntried;
    TextComparison m_text;
    std::unique_ptr<StatementList> m_then;
    std::unique_ptr<StatementList> m_else;
};

// End (and Exit All): ends the run through the engine's control operation.
class EndStatement final : public Statement {
public:
    explicit EndStatement(int action = 3) : m_action(action) {}
    [[nodiscard]] bool Execute() override;

private:
    int m_action;
};

// A label line with a statement after the label: runs the statement.
class LabelledStatement final : public Statement {
public:
    explicit LabelledStatement(std::unique_ptr<Statement> inner) : m_inner(std::move(inner)) {}
    [[nodiscard]] bool Execute() override { return m_inner->Execute(); }
    bool IsEmpty() const override { return m_inner->IsEmpty(); }
    bool EmitRegisters(RegisterBuilder& builder) override { return m_inner->EmitRegisters(builder); }

private:
    std::unique_ptr<Statement> m_inner;
};

} // namespace brannoc
