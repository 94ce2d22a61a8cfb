// Statements that take their direct forms (typed and open numeric expressions, plain stores, numeric
// For counters) must do exactly what the general code does. Each program here runs twice, with the
// direct forms on and off, and must print the same text and stop with the same errors both times.
#include "code/FastExpression.h"

#include "ProgramRunner.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brannoc {
namespace {

using testing::JoinLines;
using testing::ProgramResult;
using testing::RunProgram;

ProgramResult RunWithDirectForms(const std::string& text, bool on)
{
    const bool previous = SetDirectFormsEnabled(on);
    ProgramResult result = RunProgram(text, {}, 20000000);
    SetDirectFormsEnabled(previous);
    return result;
}

void ExpectSameRuns(const std::string& text)
{
    const ProgramResult direct = RunWithDirectForms(text, true);
    const ProgramResult general = RunWithDirectForms(text, false);
    ASSERT_EQ(direct.parse, ParseResult::Okay)
        << (direct.compileErrors.empty() ? std::string("no error record")
                                         : direct.compileErrors.front().lineText + " / " +
                                               std::to_string(direct.compileErrors.front().number));
    EXPECT_TRUE(direct.finished);
    EXPECT_TRUE(general.finished);
    ASSERT_FALSE(general.output.empty());
    // Compare line by line so that a difference shows where it is.
    std::size_t line = 0, a = 0, b = 0;
    while (a < direct.output.size() || b < general.output.size()) {
        const std::size_t endA = direct.output.find(L'\n', a), endB = general.output.find(L'\n', b);
        const std::wstring lineA = direct.output.substr(a, endA - a), lineB = general.output.substr(b, endB - b);
        ASSERT_EQ(lineA, lineB) << "output line " << line;
        if (endA == std::wstring::npos || endB == std::wstring::npos)
            break;
        a = endA + 1;
        b = endB + 1;
        ++line;
    }
    EXPECT_EQ(direct.output, general.output);
    ASSERT_EQ(direct.runErrors.size(), general.runErrors.size());
    for (std::size_t i = 0; i < direct.runErrors.size(); ++i) {
        EXPECT_EQ(direct.runErrors[i].number, general.runErrors[i].number);
        EXPECT_EQ(direct.runErrors[i].description, general.runErrors[i].description);
    }
}

struct Operand {
    const char* declaration; // "As Long" or "" for a Variant
    const char* value;       // source text assigned to it
};

const Operand kOperands[] = {
    {"As Integer", "32767"},      {"As Integer", "-2"},        {"As Integer", "0"},     {"As Integer", "-32768"},
    {"As Long", "2147483647"},    {"As Long", "7"},            {"As Long", "-1"},       {"As Long", "-2147483647 - 1"},
    {"As Double", "2.5"},         {"As Double", "-0.5"},       {"As Double", "1E+308"}, {"As Double", "1E-300"},
    {"As Boolean", "True"},       {"As Boolean", "False"},     {"", "5"},               {"", "100000"},
    {"", "1.5"},                  {"", "\"12\""},              {"", "Empty"},           {"", "Null"},
};

const char* const kOperators[] = {"+", "-", "*", "/", "\\", "Mod", "And", "Or", "Xor", "Eqv", "Imp",
                                  "=", "<>", "<", "<=", ">", ">=", "^", "&"};

const char* const kTargets[] = {"ri", "rl", "rd", "rb", "rv"};

std::string OperandName(std::size_t index) { return "o" + std::to_string(index); }

// Declarations and values of every operand and result variable.
std::vector<std::string> Prologue()
{
    std::vector<std::string> lines{"Sub Main", "    On Error Resume Next",
                                   "    Dim ri As Integer, rl As Long, rd As Double, rb As Boolean, rv"};
    for (std::size_t i = 0; i < std::size(kOperands); ++i) {
        lines.push_back("    Dim " + OperandName(i) + " " + kOperands[i].declaration);
        lines.push_back("    " + OperandName(i) + " = " + kOperands[i].value);
    }
    return lines;
}

// Every operator over every pair of operands, stored into a Variant (which shows the result's kind) and
// into each typed result.
TEST(DirectForms, EveryOperatorOverEveryPairOfKinds)
{
    std::vector<std::string> lines = Prologue();
    for (const char* op : kOperators) {
        for (std::size_t l = 0; l < std::size(kOperands); ++l) {
            for (std::size_t r = 0; r < std::size(kOperands); ++r) {
                const std::string expression = OperandName(l) + " " + op + " " + OperandName(r);
                for (const char* target : kTargets) {
                    lines.push_back(std::string("    Err.Clear: ") + target + " = " + expression + ": Debug.Print \"" +
                                    expression + " -> " + target + "\"; " + target + "; Err.Number");
                }
            }
        }
    }
    lines.push_back("End Sub");
    ExpectSameRuns(JoinLines(lines));
}

// Unary operators, constants beside variables, nested expressions and conditions.
TEST(DirectForms, CompositeExpressionsAndConditions)
{
    std::vector<std::string> lines = Prologue();
    const char* const shapes[] = {
        "-{a}",          "Not {a}",        "Abs({a})",         "Int({a})",          "Fix({a})",
        "{a} * 7 + {b}", "({a} + {b}) * 2", "{a} Mod 7 - {b}",  "{a} \\ 3 + 0.5",    "-{a} - {b} * {b}",
        "{a} + 1",       "1 - {a}",        "{a} * 0.5",        "({a} < {b}) And ({b} >= 0)",
        "Not ({a} = {b}) Or {a} > 1",      "({a} And 255) - 100",
    };
    for (const char* shape : shapes) {
        for (std::size_t l = 0; l < std::size(kOperands); ++l) {
            for (std::size_t r = 0; r < std::size(kOperands); r += 3) {
                std::string expression = shape;
                for (std::size_t at; (at = expression.find("{a}")) != std::string::npos;)
                    expression.replace(at, 3, OperandName(l));
                for (std::size_t at; (at = expression.find("{b}")) != std::string::npos;)
                    expression.replace(at, 3, OperandName(r));
                lines.push_back("    Err.Clear: rv = " + expression + ": Debug.Print \"" + expression +
                                "\"; rv; Err.Number");
                lines.push_back("    Err.Clear: rl = " + expression + ": Debug.Print rl; Err.Number");
                lines.push_back("    Err.Clear: If " + expression + " Then Debug.Print \"then\" Else Debug.Print \"else\"");
                lines.push_back("    Debug.Print Err.Number");
            }
        }
    }
    lines.push_back("End Sub");
    ExpectSameRuns(JoinLines(lines));
}

// Typed parameters bound by reference to a caller's Variant hold whatever the Variant holds; array
// elements inside and outside the bounds; Select Case over numbers and strings; loops over counters of
// each kind, up and down, across the Integer limit.
TEST(DirectForms, ReferencesArraysCasesAndCounters)
{
    ExpectSameRuns(JoinLines({
        "Dim m(2) As Long",
        "Sub Twice(ByRef x As Long, ByRef d As Double)",
        "    On Error Resume Next",
        "    Err.Clear: x = x * 2 + 1: Debug.Print x; Err.Number",
        "    Err.Clear: d = d / 4 - x: Debug.Print d; Err.Number",
        "    If x > 10 Then Debug.Print \"big\" Else Debug.Print \"small\"",
        "End Sub",
        "Sub Main",
        "    On Error Resume Next",
        "    Dim v, w, a(1 To 3) As Integer, d(3) As Double, k As Long, i As Integer, c",
        "    v = 5: w = 2.5: Twice v, w: Debug.Print v; w",
        "    v = \"7\": w = \"x\": Twice v, w: Debug.Print v; w",
        "    v = 2147483647: w = Empty: Twice v, w: Debug.Print v; w",
        "    For k = 1 To 3",
        "        a(k) = k * 1000: d(k) = k / 3: m(k - 1) = -k",
        "    Next k",
        "    For k = 0 To 4",
        "        Err.Clear: Debug.Print a(k) * 32; Err.Number; d(k) + a(k); Err.Number; m(k) - 1; Err.Number",
        "    Next k",
        "    For Each c In Array(1, 2, 3, \"b\", 2.5, 7, 32767)",
        "        Select Case c",
        "            Case 1: Debug.Print \"one\"",
        "            Case 2, 3: Debug.Print \"two or three\"",
        "            Case \"b\": Debug.Print \"b\"",
        "            Case 2.5 To 6: Debug.Print \"range\"",
        "            Case Is > 100: Debug.Print \"big\"",
        "            Case Else: Debug.Print \"else\"",
        "        End Select",
        "    Next c",
        "    For i = 32760 To 32767 Step 3",
        "        Debug.Print i;",
        "    Next i",
        "    Debug.Print Err.Number",
        "    Err.Clear",
        "    For v = 32765 To 32769",
        "        Debug.Print v;",
        "    Next v",
        "    For k = 10 To -10 Step -7",
        "        Debug.Print k;",
        "    Next k",
        "    For w = 1 To 2 Step 0.25",
        "        Debug.Print w;",
        "    Next w",
        "    For k = 2147483640 To 2147483647 Step 5",
        "        Debug.Print k;",
        "    Next k",
        "    Debug.Print Err.Number",
        "    Debug.Print \"end\"",
        "End Sub",
    }));
}

// The same statements run again and again while their Variants change kind (Integer past its limit to
// Long, to Double, Boolean, String, Empty and Null and back), so that the typed forms assumed for the
// kinds seen first must give way and be made again.
TEST(DirectForms, VariantsThatChangeKindInALoop)
{
    ExpectSameRuns(JoinLines({
        "Sub Main",
        "    On Error Resume Next",
        "    Dim i, s, t, d, k, r As Long",
        "    s = 0: t = 32700: d = 0",
        "    For i = 1 To 200",
        "        Select Case i Mod 9",
        "            Case 0: k = 1.5",
        "            Case 1: k = True",
        "            Case 2: k = \"4\"",
        "            Case 3: k = Empty",
        "            Case 4: k = Null",
        "            Case 5: k = 100000",
        "            Case Else: k = i",
        "        End Select",
        "        Err.Clear: s = (s + i * 7) Mod 1000003 + k: Debug.Print s; Err.Number",
        "        Err.Clear: t = t + (i And 255) - k: Debug.Print t; Err.Number",
        "        Err.Clear: d = d * 0.5 + k: Debug.Print d; Err.Number",
        "        Err.Clear: r = k * 3 - i: Debug.Print r; Err.Number",
        "        Err.Clear: If k > 2 Then Debug.Print \"more\" Else Debug.Print \"less\"",
        "        Debug.Print Err.Number",
        "    Next i",
        "    Debug.Print \"end\"",
        "End Sub",
    }));
}

// Select Case over selectors of every numeric kind and of Variants that change kind, with Case lines of
// whole and Double values, ranges, Is comparisons and lists (read as constant tests) mixed with items
// that only the general code compares; and If/ElseIf chains whose typed conditions give up on overflow.
TEST(DirectForms, SelectCaseAndConditionChainsOverMixedKinds)
{
    ExpectSameRuns(JoinLines({
        "Function Pick(x) As String",
        "    Select Case x",
        "        Case 0: Pick = \"zero\"",
        "        Case 1, 2, 2.5: Pick = \"small\"",
        "        Case 3 To 5.5, 40000: Pick = \"middle\"",
        "        Case \"7\", 7.25: Pick = \"seven\"",
        "        Case Is >= 100000, Is < -3: Pick = \"outside\"",
        "        Case 6 To 8: Pick = \"six to eight\"",
        "        Case True: Pick = \"true\"",
        "        Case -2 To -1: Pick = \"negative\"",
        "        Case Else: Pick = \"else\"",
        "    End Select",
        "End Function",
        "Sub Main",
        "    On Error Resume Next",
        "    Dim i As Integer, l As Long, d As Double, b As Boolean, v, k As Long, w",
        "    For k = -5 To 12",
        "        i = k: l = k * 5000: d = k / 2: b = k Mod 2 = 0",
        "        Debug.Print Pick(i); \" \"; Pick(l); \" \"; Pick(d); \" \"; Pick(b); \" \"; Pick(k * 0.75)",
        "        Select Case k * 3",
        "            Case 0, 3: Debug.Print \"a\";",
        "            Case Is < 0: Debug.Print \"b\";",
        "            Case 6 To 9: Debug.Print \"c\";",
        "            Case 12 To 11: Debug.Print \"never\";",
        "            Case Is <> 15: Debug.Print \"d\";",
        "        End Select",
        "        Select Case d",
        "            Case 1 To 2: Debug.Print \"e\"",
        "            Case 2.5, 3: Debug.Print \"f\"",
        "            Case Is > 4.5: Debug.Print \"g\"",
        "            Case Else: Debug.Print \"h\"",
        "        End Select",
        "    Next k",
        "    For k = 1 To 12",
        "        Select Case k Mod 6",
        "            Case 0: w = 1.5",
        "            Case 1: w = \"2\"",
        "            Case 2: w = Empty",
        "            Case 3: w = Null",
        "            Case 4: w = 32767",
        "            Case Else: w = False",
        "        End Select",
        "        Debug.Print Pick(w); \" \";",
        "        Err.Clear",
        "        Select Case w * 2",
        "            Case 0: Debug.Print \"zero\"; Err.Number",
        "            Case 3, 4: Debug.Print \"three or four\"; Err.Number",
        "            Case Else: Debug.Print \"else\"; Err.Number",
        "        End Select",
        "    Next k",
        "    i = 32767: l = 2147483647",
        "    Dim j As Integer",
        "    For k = 0 To 2",
        "        Err.Clear: j = k",
        "        Select Case i + j",
        "            Case 32767: Debug.Print \"top\"; Err.Number",
        "            Case Else: Debug.Print \"past\"; Err.Number",
        "        End Select",
        "        Err.Clear",
        "        If l - k = 0 Then",
        "            Debug.Print \"never\"",
        "        ElseIf i + k > 32767 Then",
        "            Debug.Print \"past\"; Err.Number",
        "        ElseIf l + k > 0 Then",
        "            Debug.Print \"long\"; Err.Number",
        "        Else",
        "            Debug.Print \"else\"; Err.Number",
        "        End If",
        "    Next k",
        "    Debug.Print \"end\"",
        "End Sub",
    }));
}

// Mid over String and Variant variables appended and compared directly: starts below 1 and past the end,
// negative and long lengths (errors the general code raises), Null and non-string Variants, and a
// variable appending a part of itself.
TEST(DirectForms, MidPartsAppendedAndCompared)
{
    ExpectSameRuns(JoinLines({
        "Sub Main",
        "    On Error Resume Next",
        "    Dim s As String, t As String, v, w, i As Long, n As Integer, k As Long",
        "    s = \"ABCDEFGHIJ\": v = \"xyz\": w = Null",
        "    For i = -1 To 13",
        "        For n = -1 To 3",
        "            Err.Clear: t = t & Mid(s, i, n): Debug.Print t; Err.Number",
        "            Err.Clear: If Mid(s, i, n) = \"CD\" Then Debug.Print \"cd\"; Err.Number Else Debug.Print \"no\"; Err.Number",
        "            Err.Clear: If Mid(s, i, n) < \"C\" Then Debug.Print \"less\"; Err.Number Else Debug.Print \"not\"; Err.Number",
        "            Err.Clear: If Mid(v, i, n) <> \"y\" Then Debug.Print \"other\"; Err.Number Else Debug.Print \"y\"; Err.Number",
        "            Err.Clear: If Mid(w, i, n) = \"\" Then Debug.Print \"empty\"; Err.Number Else Debug.Print \"else\"; Err.Number",
        "            Err.Clear: v = v & Mid(v, i, n): Debug.Print v; Err.Number",
        "        Next n",
        "        k = i Mod 3",
        "        Select Case k",
        "            Case 0: w = 12.5",
        "            Case 1: w = Empty",
        "            Case Else: w = \"pq\" & i",
        "        End Select",
        "        Err.Clear: w = w & Mid(s, k + 1, 2): Debug.Print w; Err.Number",
        "        Err.Clear: t = Mid(t, 2, 40): s = s & Mid(s, 3, 2)",
        "    Next i",
        "    Err.Clear: If Mid$(s, 2, 3) >= \"BC\" Then Debug.Print \"ge\"; Err.Number",
        "    Debug.Print s; Len(s); t; Len(t)",
        "End Sub",
    }));
}

// Double operations whose whole operands (Integer and Long locals, whole subexpressions, Variants
// holding whole numbers) are read as Doubles in place: overflowing whole subexpressions, comparisons
// and Variants that change kind.
TEST(DirectForms, WholeOperandsReadAsDoubles)
{
    ExpectSameRuns(JoinLines({
        "Sub Main",
        "    On Error Resume Next",
        "    Dim i As Integer, l As Long, d As Double, r As Double, b As Boolean, v, w, k As Long",
        "    d = 0.5: v = 3",
        "    For k = -3 To 3",
        "        i = k * 10922: l = k * 715827882: w = k",
        "        Err.Clear: r = d * 0.5 + l: Debug.Print r; Err.Number",
        "        Err.Clear: r = (l Mod 7) * 0.5 - i: Debug.Print r; Err.Number",
        "        Err.Clear: r = i / d + (i + l): Debug.Print r; Err.Number",
        "        Err.Clear: r = (i * 3) - d * (l \\ 2): Debug.Print r; Err.Number",
        "        Err.Clear: b = d * 4 < i: Debug.Print b; Err.Number",
        "        Err.Clear: b = (i + i) >= d - 1: Debug.Print b; Err.Number",
        "        Err.Clear: If l * 2 > d Then Debug.Print \"gt\"; Err.Number Else Debug.Print \"le\"; Err.Number",
        "        Err.Clear: v = v * 0.5 + w: Debug.Print v; Err.Number",
        "        Err.Clear: v = (w And 255) * 1.5 + v: Debug.Print v; Err.Number",
        "        Err.Clear: d = d + (k Mod 7) * 0.25 + i: Debug.Print d; Err.Number",
        "        If k = 0 Then w = \"2.5\" Else w = k * 30000",
        "    Next k",
        "    Debug.Print \"end\"",
        "End Sub",
    }));
}

// Array elements at indexes that are local variables read in place: Integer and Long locals, by-reference
// parameters and Variants, inside and outside the bounds, and values that do not fit the element.
TEST(DirectForms, ElementsAtLocalIndexes)
{
    ExpectSameRuns(JoinLines({
        "Dim m(1 To 4) As Long",
        "Sub Place(ByRef k As Long, ByRef n As Integer, ByVal x As Double)",
        "    On Error Resume Next",
        "    Err.Clear: m(k) = n * 1000: Debug.Print Err.Number",
        "    Err.Clear: m(n) = m(k) + x: Debug.Print Err.Number",
        "    Err.Clear: Debug.Print m(k) - m(n); Err.Number",
        "End Sub",
        "Sub Main",
        "    On Error Resume Next",
        "    Dim d(2) As Double, i As Integer, l As Long, v, t As Long",
        "    For l = -1 To 5",
        "        i = 5 - l: v = l",
        "        Err.Clear: d(i) = l / 4: Debug.Print Err.Number",
        "        Err.Clear: d(v) = d(i) + i: Debug.Print Err.Number",
        "        Err.Clear: t = d(l) * 8: Debug.Print t; Err.Number",
        "        Place l, i, 0.5",
        "        Place l, i, 1E+300",
        "    Next l",
        "    For l = 1 To 4: Debug.Print m(l);: Next l",
        "    Debug.Print d(0); d(1); d(2)",
        "End Sub",
    }));
}

// Element stores, appends and call arguments that take typed forms: out-of-range indexes, values that
// overflow the element kind or need converting, arrays passed by reference, and appended strings.
TEST(DirectForms, ElementStoresAppendsAndArguments)
{
    ExpectSameRuns(JoinLines({
        "Dim g() As Double",
        "Function Half(ByVal n As Long, ByVal d As Double) As Double",
        "    Half = n / 2 + d",
        "End Function",
        "Sub Fill(a() As Integer, ByVal k As Long)",
        "    On Error Resume Next",
        "    Err.Clear: a(k) = k * 10000: Debug.Print a(k); Err.Number",
        "    Err.Clear: a(k - 1) = k: Debug.Print a(k - 1); Err.Number",
        "End Sub",
        "Sub Main",
        "    On Error Resume Next",
        "    Dim b(5) As Boolean, l(-2 To 2) As Long, w(3) As Integer, i As Long, s As String, v",
        "    ReDim g(4)",
        "    For i = -3 To 6",
        "        Err.Clear: b(i) = i Mod 2 = 0: Debug.Print b(i); Err.Number",
        "        Err.Clear: l(i) = i * 1073741824: Debug.Print l(i); Err.Number",
        "        Err.Clear: g(i) = i / 3: Debug.Print g(i); Err.Number",
        "        Err.Clear: g(i \\ 2) = i: Debug.Print g(i \\ 2); Err.Number",
        "        Err.Clear: w(i) = i * 20000: Debug.Print Err.Number",
        "        Fill w, i",
        "        Err.Clear: Debug.Print Half(i * 3, i - 0.5); Half(2147483647 + i, 1); Err.Number",
        "        s = s & i & \",\": v = v & i",
        "    Next i",
        "    Debug.Print s; v; Len(s)",
        "    Erase g",
        "    Err.Clear: g(1) = 2: Debug.Print Err.Number",
        "    Debug.Print \"end\"",
        "End Sub",
    }));
}

// Strings read from and written into String, fixed-length String and Variant fields of records, of
// records in arrays and of nested records, from every kind of source read in place (constants,
// variables, array elements, other fields, Mid parts), with indexes inside and outside the bounds and
// Variant fields holding values that are not strings.
TEST(DirectForms, StringFieldsOfRecords)
{
    ExpectSameRuns(JoinLines({
        "Type Inner",
        "    Short As String * 3",
        "    Extra As Variant",
        "End Type",
        "Type Item",
        "    Text As String",
        "    Fixed As String * 5",
        "    Extra As Variant",
        "    Nested As Inner",
        "End Type",
        "Sub Main",
        "    On Error Resume Next",
        "    Dim items(-1 To 3) As Item, one As Item, words(4) As String, s As String, v, i As Long, k As Integer",
        "    words(0) = \"\": words(1) = \"a\": words(2) = \"abcde\": words(3) = \"abcdefghij\": words(4) = \"xy\"",
        "    s = \"seed\"",
        "    For i = -2 To 5",
        "        k = (i + 5) Mod 5",
        "        Select Case k",
        "            Case 0: v = 12.5",
        "            Case 1: v = Null",
        "            Case 2: v = Empty",
        "            Case Else: v = words(k)",
        "        End Select",
        "        Err.Clear: items(i).Text = words(k): Debug.Print Err.Number; \"[\"; items(i).Text; \"]\"",
        "        Err.Clear: items(i).Fixed = items(i).Text: Debug.Print Err.Number; \"[\"; items(i).Fixed; \"]\"",
        "        Err.Clear: items(i).Nested.Short = Mid(s, 2, k): Debug.Print Err.Number; \"[\"; items(i).Nested.Short; \"]\"",
        "        Err.Clear: items(i).Extra = v: items(i).Nested.Extra = items(i).Fixed",
        "        Err.Clear: s = items(i).Extra: Debug.Print Err.Number; \"[\"; s; \"]\"",
        "        Err.Clear: one.Text = items(i).Nested.Extra: Debug.Print Err.Number; \"[\"; one.Text; \"]\"",
        "        Err.Clear: one.Fixed = one.Fixed: one.Nested.Short = one.Text: Debug.Print \"[\"; one.Fixed; one.Nested.Short; \"]\"",
        "        Err.Clear: one.Extra = items(i).Extra: Debug.Print Err.Number; TypeName(one.Extra)",
        "        Err.Clear: If items(i).Text = \"abcde\" Then Debug.Print \"five\"; Err.Number Else Debug.Print \"not five\"; Err.Number",
        "        Err.Clear: If items(i).Fixed < one.Text Then Debug.Print \"less\"; Err.Number Else Debug.Print \"not less\"; Err.Number",
        "        Err.Clear: If items(i).Extra <> \"xy\" Then Debug.Print \"other\"; Err.Number Else Debug.Print \"xy\"; Err.Number",
        "        s = s & k",
        "    Next i",
        "    Debug.Print \"end\"",
        "End Sub",
    }));
}

// Variants whose kinds go back and forth more often than a statement gets new forms: the forms made
// earlier are taken up again and must compute exactly what the general code computes.
TEST(DirectForms, VariantKindsGoingBackAndForth)
{
    ExpectSameRuns(JoinLines({
        "Sub Main",
        "    On Error Resume Next",
        "    Dim i, n, big, q, r, total, k",
        "    total = 0",
        "    For i = 1 To 4000",
        "        Select Case i Mod 400",
        "            Case 1: n = 32750",
        "            Case 101: n = 1.5",
        "            Case 201: n = 2147483600",
        "            Case 301: n = -32760",
        "        End Select",
        "        Err.Clear: n = n + 3: k = Err.Number",
        "        q = n \\ 7: r = n Mod 11: big = n * 100000",
        "        total = total + q - r + big / 100000 + n / 4",
        "        If i Mod 97 = 0 Or k <> 0 Then Debug.Print i; n; TypeName(n); q; TypeName(q); r; big; TypeName(big); k",
        "    Next i",
        "    Debug.Print total; TypeName(total)",
        "End Sub",
    }));
}

} // namespace
} // namespace brannoc
