#include "frontend/Compiler.h"
#include "frontend/DeclarationReader.h"

#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace brannoc {
namespace {

// Module texts given directly, by name.
class TextSource final : public ModuleSource {
public:
    std::optional<ModuleText> Read(std::string_view name) override
    {
        const auto found = texts.find(std::string(name));
        if (found == texts.end())
            return std::nullopt;
        return found->second;
    }
    void Add(const std::string& name, const std::string& text, bool objectFile = false)
    {
        texts[name] = ModuleText{text, objectFile};
    }
    std::map<std::string, ModuleText> texts;
};

// Records the order in which procedure bodies are compiled.
class RecordingBodies final : public ProcedureBodyCompiler {
public:
    bool CompileBody(Module& module, Procedure& procedure, Lexer&) override
    {
        order.push_back(module.Name() + "." + procedure.name);
        return true;
    }
    std::vector<std::string> order;
};

struct Expected {
    std::wstring message;
    int line;
    int offset;
    std::string lineText;
};

struct Fixture {
    TextSource source;
    Compiler compiler{source};

    ParseResult Compile(const std::string& text, int limit = 1, int mode = 0)
    {
        source.Add("Macro", text);
        compiler.SetErrorLimit(limit);
        return compiler.Parse("Macro", mode);
    }
    void ExpectErrors(const std::vector<Expected>& expected, const std::string& context)
    {
        const auto& errors = compiler.Errors();
        ASSERT_EQ(errors.size(), expected.size()) << context;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(errors[i].message, expected[i].message) << context;
            EXPECT_EQ(errors[i].line, expected[i].line) << context;
            EXPECT_EQ(errors[i].offset, expected[i].offset) << context;
            EXPECT_EQ(errors[i].lineText, expected[i].lineText) << context;
        }
    }
};

const std::string kMain = "Sub Main\r\nEnd Sub\r\n";

struct ErrorCase {
    std::string text;
    Expected expected;
};

TEST(CompilerTest, SingleErrors)
{
    const std::vector<ErrorCase> cases = {
        {"Sub Foo\r\nEnd Sub\r\n", {L"Sub Main has not been defined.", 2, 7, "End Sub"}},
        {"Private Sub Main\r\nEnd Sub\r\n", {L"Expecting a Public Sub. 'Main'", 1, 0, "Private Sub Main"}},
        {"Sub Main(a)\r\nEnd Sub\r\n", {L"Not expecting any parameters. 'Main'", 1, 0, "Sub Main(a)"}},
        {"Function Main()\r\nEnd Function\r\n", {L"Expecting a Public Sub. 'Main'", 1, 0, "Function Main()"}},
        {"Sub Main\r\nx = 1\r\n", {L"Unexpected end of file.", 3, 0, ""}},
        {"Sub Main\r\nSub Other\r\nEnd Sub\r\n", {L"Unterminated block statement.", 2, 0, "Sub Other"}},
        {"x = 1\r\n" + kMain, {L"Unexpected text.", 1, 0, "x = 1"}},
        {"Dim Next As Integer\r\n" + kMain, {L"Expecting a var name.", 1, 4, "Dim Next As Integer"}},
        {"Dim s As String * 1001\r\n" + kMain,
         {L"Fixed size string sizes allowed: 1 to 1000, 1*1024, 2*1024, ... 23*1024.", 1, 22, "Dim s As String * 1001"}},
        {"Dim s As String * 0\r\n" + kMain,
         {L"Fixed size string sizes allowed: 1 to 1000, 1*1024, 2*1024, ... 23*1024.", 1, 19, "Dim s As String * 0"}},
        {"Dim s As String * 24576\r\n" + kMain,
         {L"Fixed size string sizes allowed: 1 to 1000, 1*1024, 2*1024, ... 23*1024.", 1, 23, "Dim s As String * 24576"}},
        {"Dim a(1 To 2, 3, 4, 5, 6, 7, 8)\r\n" + kMain,
         {L"Too many dimensions (more than 6).", 1, 30, "Dim a(1 To 2, 3, 4, 5, 6, 7, 8)"}},
        {"Dim a(5 To 2)\r\n" + kMain, {L"Lower bound is larger than upper bound.", 1, 12, "Dim a(5 To 2)"}},
        {"DefInt C-A\r\n" + kMain, {L"Letter range is out of order.", 1, 10, "DefInt C-A"}},
        {"DefInt AB\r\n" + kMain, {L"Expecting a single letter.", 1, 7, "DefInt AB"}},
        {"DefInt A\r\nDefLng A\r\n" + kMain, {L"Default value type invalid or already set.", 2, 8, "DefLng A"}},
        {"DefDec A\r\n" + kMain, {L"Unexpected text.", 1, 0, "DefDec A"}},
        {"Dim x, x\r\n" + kMain, {L"Identifier is already in use. 'x'", 1, 8, "Dim x, x"}},
        {"Option Base 2\r\n" + kMain, {L"Invalid instruction.", 1, 12, "Option Base 2"}},
        {"Option Compare Text\r\n" + kMain, {L"Invalid instruction.", 1, 7, "Option Compare Text"}},
        {"Declare Sub F Lib kernel\r\n" + kMain, {L"Expecting a quoted DLL library name.", 1, 18, "Declare Sub F Lib kernel"}},
        {"Declare F Lib \"k\"\r\n" + kMain, {L"Expecting either 'Sub' or 'Function'.", 1, 8, "Declare F Lib \"k\""}},
        {"Property Get P() As Integer\r\nEnd Property\r\nProperty Let P(v As Integer, w As Integer)\r\nEnd Property\r\n" + kMain,
         {L"Property Get and Let/Set parameters must match.", 3, 42, "Property Let P(v As Integer, w As Integer)"}},
        {"Property Get P(a) As Integer\r\nEnd Property\r\nProperty Let P(v As Integer)\r\nEnd Property\r\n" + kMain,
         {L"Property Get and Let/Set parameters must match.", 3, 28, "Property Let P(v As Integer)"}},
        {"Property P()\r\nEnd Property\r\n" + kMain, {L"Expecting 'Get', 'Let' or 'Set'.", 1, 9, "Property P()"}},
        {"Sub F(ByVal a())\r\nEnd Sub\r\n" + kMain, {L"Can't pass an array by value.", 1, 15, "Sub F(ByVal a())"}},
        {"Sub F(ParamArray a() As Integer)\r\nEnd Sub\r\n" + kMain,
         {L"ParamArray parameter must be variant array.", 1, 31, "Sub F(ParamArray a() As Integer)"}},
        {"Sub F(a, a)\r\nEnd Sub\r\n" + kMain, {L"Identifier is already in use. 'a'", 1, 9, "Sub F(a, a)"}},
        {"Sub F(s As String * 5)\r\nEnd Sub\r\n" + kMain,
         {L"Parameter of this type not supported.", 1, 21, "Sub F(s As String * 5)"}},
        {"Sub F(Optional a As Integer = \"x\")\r\nEnd Sub\r\n" + kMain,
         {L"Type mismatch.", 1, 33, "Sub F(Optional a As Integer = \"x\")"}},
        {"Sub F\r\nEnd Sub\r\nSub F\r\nEnd Sub\r\n" + kMain, {L"Identifier is already in use. 'F'", 3, 5, "Sub F"}},
        {"Type T\r\nx As Integer\r\n", {L"Unexpected end of file.", 3, 0, ""}},
        {"Dim v As Unknown\r\n" + kMain, {L"Expecting a valid data type (eg. Integer).", 1, 9, "Dim v As Unknown"}},
        {"Const c As Object = 1\r\n" + kMain, {L"Expecting a valid const type (eg. Integer).", 1, 18, "Const c As Object = 1"}},
        {"Sub F\r\nAttribute F.VB_UserMemId = 0\r\nEnd Sub\r\n" + kMain,
         {L"Can't define a default property in a macro or code module.", 2, 28, "Attribute F.VB_UserMemId = 0"}},
    };
    for (const ErrorCase& row : cases) {
        Fixture fixture;
        EXPECT_EQ(fixture.Compile(row.text, 1), ParseResult::SyntaxErrors) << row.text;
        fixture.ExpectErrors({row.expected}, row.text);
    }
}

TEST(CompilerTest, AcceptedDeclarations)
{
    const std::vector<std::string> cases = {
        "Dim Text As Integer, Line As String, Name\r\n",
        "Dim s As String * 1000, t As String * 2048, u As String * 23552\r\n",
        "Dim a(1 To 2, 3, 4, 5, 6, 7)\r\n",
        "Dim d()\r\nPublic p%, q$\r\nPrivate r As Long\r\nGlobal g As Variant\r\n",
        "Const A = 1, B As Long = A + 2, C$ = \"x\" & \"y\"\r\n",
        "Type T\r\n  x As Integer\r\n  s As String * 10\r\n  a(3) As Double\r\nEnd Type\r\nDim r As T\r\n",
        "Dim later As Rec\r\nType Rec\r\n  v As Variant\r\nEnd Type\r\n",
        "Enum Colour\r\n  Red\r\n  Green = 5\r\n  Blue\r\nEnd Enum\r\nConst K = Blue\r\n",
        "DefInt A-C, X\r\nDefStr S\r\n",
        "Option Base 1\r\nOption Explicit\r\nOption Private Module\r\n",
        "Declare Function GetTickCount Lib \"kernel32\" () As Long\r\n"
        "Private Declare Sub Sleep Lib \"kernel32\" Alias \"Sleep\" (ByVal ms As Long)\r\n",
        "Function F%(ByVal a As Integer, Optional b As Long = 4, Optional c)\r\nEnd Function\r\n",
        "Sub G(ByRef x, ParamArray rest())\r\nEnd Sub\r\n",
        "Property Get P(i As Integer) As String\r\nEnd Property\r\nProperty Let P(i As Integer, v As String)\r\nEnd Property\r\n",
        "Property Set O(v As Object)\r\nEnd Property\r\n",
        "' comment\r\n\r\nRem remark\r\n",
        "Sub Line\r\nEnd Sub\r\n",
    };
    for (const std::string& text : cases) {
        Fixture fixture;
        EXPECT_EQ(fixture.Compile(text + kMain, 1), ParseResult::Okay) << text;
        fixture.ExpectErrors({}, text);
    }
}

TEST(CompilerTest, SuffixRightAfterTextLiteralIsTypeMismatch)
{
    // Every suffix character but "&" (the concatenation operator), after a string and after a date, in a
    // Const declaration and in an Optional default; the error stands at the suffix.
    for (const char suffix : std::string("%!#@$?")) {
        const std::string rows[] = {
            std::string("Const c = \"ab\"") + suffix,
            std::string("Const d = #1/2/2000#") + suffix,
            std::string("Sub F(Optional s As String = \"x\"") + suffix + ")\r\nEnd Sub",
        };
        const int offsets[] = {14, 20, 32};
        for (std::size_t i = 0; i < std::size(rows); ++i) {
            Fixture fixture;
            const std::string& text = rows[i];
            EXPECT_EQ(fixture.Compile(text + "\r\n" + kMain, 1), ParseResult::SyntaxErrors) << text;
            fixture.ExpectErrors({{L"Type mismatch.", 1, offsets[i], text.substr(0, text.find('\r'))}}, text);
        }
    }
    const std::string accepted[] = {"Const c = \"ab\"&\"c\"", "Const d = #1/2/2000#&\"x\"", "Const e = \"ab\"& \"c\""};
    for (const std::string& text : accepted) {
        Fixture fixture;
        EXPECT_EQ(fixture.Compile(text + "\r\n" + kMain, 1), ParseResult::Okay) << text;
        fixture.ExpectErrors({}, text);
    }
}

TEST(CompilerTest, ErrorLimitOneVersusThree)
{
    const std::string text = "Dim Next\r\nx = 1\r\nDim a(2 To 1)\r\n" + kMain;
    Fixture one;
    EXPECT_EQ(one.Compile(text, 1), ParseResult::SyntaxErrors);
    one.ExpectErrors({{L"Expecting a var name.", 1, 4, "Dim Next"}}, "limit 1");
    Fixture three;
    EXPECT_EQ(three.Compile(text, 3), ParseResult::SyntaxErrors);
    three.ExpectErrors({{L"Expecting a var name.", 1, 4, "Dim Next"},
                        {L"Unexpected text.", 2, 0, "x = 1"},
                        {L"Lower bound is larger than upper bound.", 3, 12, "Dim a(2 To 1)"}},
                       "limit 3");
}

TEST(CompilerTest, OneErrorPerStatement)
{
    Fixture fixture;
    EXPECT_EQ(fixture.Compile("Dim Next, Dim\r\n" + kMain, 5), ParseResult::SyntaxErrors);
    fixture.ExpectErrors({{L"Expecting a var name.", 1, 4, "Dim Next, Dim"}}, "two faults");
}

TEST(CompilerTest, UsesCycleBackToTheMacro)
{
    Fixture fixture;
    fixture.source.Add("Lib1", "'#Uses \"Macro\"\r\nSub Helper\r\nEnd Sub\r\n");
    EXPECT_EQ(fixture.Compile("'#Uses \"Lib1\"\r\n" + kMain), ParseResult::SyntaxErrors);
    ASSERT_EQ(fixture.compiler.Errors().size(), 1u);
    const CompileError& error = fixture.compiler.Errors()[0];
    EXPECT_EQ(error.number, 10009u);
    EXPECT_EQ(error.message, L"Invalid '#Uses module dependency.");
    EXPECT_EQ(error.module, "Lib1");
    EXPECT_EQ(error.line, 1);
    EXPECT_EQ(error.lineText, "'#Uses \"Macro\"");
    EXPECT_EQ(fixture.compiler.FindModule("Macro"), nullptr);
    EXPECT_EQ(fixture.compiler.FindModule("Lib1"), nullptr);
}

TEST(CompilerTest, CodeModulesMayUseEachOtherAndBodiesFollowTheMain)
{
    Fixture fixture;
    RecordingBodies bodies;
    fixture.compiler.SetBodyCompiler(&bodies);
    fixture.source.Add("A", "'#Uses \"B\"\r\nSub InA\r\nEnd Sub\r\n");
    fixture.source.Add("B", "  '#Uses \"A\"\r\nSub InB\r\nEnd Sub\r\n");
    EXPECT_EQ(fixture.Compile("'#Uses \"A\"\r\n" + kMain), ParseResult::Okay);
    fixture.ExpectErrors({}, "mutual uses");
    EXPECT_EQ(bodies.order, (std::vector<std::string>{"Macro.Main", "A.InA", "B.InB"}));
    ASSERT_NE(fixture.compiler.FindModule("A"), nullptr);
    EXPECT_EQ(fixture.compiler.FindModule("A")->UseCount(), 2);
    EXPECT_EQ(fixture.compiler.FindModule("B")->UseCount(), 1);
}

TEST(CompilerTest, UsesLinesRules)
{
    struct Row {
        std::string usesLine;
        ParseResult result;
        unsigned errorNumber;
        std::wstring message;
    };
    const std::wstring kInvalidComment = L"Invalid '#Uses \"module\" comment.";
    const std::wstring kDoesNotExist = L"Macro/module does not exist.";
    const std::vector<Row> rows = {
        {"'#Uses \"Missing\" Only: Win16", ParseResult::Okay, 0, L""},
        {"'#Uses \"Missing\" Only:Win32x", ParseResult::Okay, 0, L""},
        {"'#Uses \"Missing\" Only: Win32", ParseResult::NotFound, 10013, kDoesNotExist},
        {"'#Uses Missing", ParseResult::SyntaxErrors, 10008, kInvalidComment},
        {"'#Uses \"  \"", ParseResult::SyntaxErrors, 10008, kInvalidComment},
        {"Dim x '#Uses \"Missing\"", ParseResult::Okay, 0, L""},
        {"'$Include: \"Missing\"", ParseResult::NotFound, 10013, kDoesNotExist},
        {"'#Uses \" Helper \"", ParseResult::Okay, 0, L""},
    };
    for (const Row& row : rows) {
        Fixture fixture;
        fixture.source.Add("Helper", "Sub H\r\nEnd Sub\r\n");
        EXPECT_EQ(fixture.Compile(row.usesLine + "\r\n" + kMain), row.result) << row.usesLine;
        if (row.errorNumber == 0) {
            EXPECT_TRUE(fixture.compiler.Errors().empty()) << row.usesLine;
        } else {
            ASSERT_EQ(fixture.compiler.Errors().size(), 1u) << row.usesLine;
            EXPECT_EQ(fixture.compiler.Errors()[0].number, row.errorNumber) << row.usesLine;
            EXPECT_EQ(fixture.compiler.Errors()[0].message, row.message) << row.usesLine;
            EXPECT_EQ(fixture.compiler.Errors()[0].line, 1) << row.usesLine;
        }
    }
}

TEST(CompilerTest, ClassModuleHeaderAndEntries)
{
    const std::string header = "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1\r\nEND\r\nAttribute VB_Name = \"Counter\"\r\n";
    {
        Fixture fixture;
        fixture.source.Add("Counter.cls", header + "Private Sub Class_Initialize\r\nEnd Sub\r\n", true);
        EXPECT_EQ(fixture.compiler.Parse("Counter.cls", 2), ParseResult::Okay);
        const Module* module = fixture.compiler.FindModule("Counter.cls");
        ASSERT_NE(module, nullptr);
        EXPECT_EQ(module->Kind(), ModuleKind::Class);
        EXPECT_EQ(module->RecordName(), "Counter");
        ASSERT_NE(module->Compiled(), nullptr);
        ASSERT_NE(module->Compiled()->entry, nullptr);
        EXPECT_EQ(module->Compiled()->entry->name, "Class_Initialize");
    }
    {
        Fixture fixture;
        fixture.source.Add("C.cls", header + "Public Sub Class_Initialize\r\nEnd Sub\r\n", true);
        EXPECT_EQ(fixture.compiler.Parse("C.cls", 2), ParseResult::SyntaxErrors);
        fixture.ExpectErrors({{L"Expecting a Private Sub. 'Class_Initialize'", 6, 0, "Public Sub Class_Initialize"}},
                             "public initializer");
    }
    {
        Fixture fixture;
        fixture.source.Add("P.cls", header + "Attribute VB_PredeclaredId = True\r\n", true);
        EXPECT_EQ(fixture.compiler.Parse("P.cls", 2), ParseResult::Okay);
        EXPECT_EQ(fixture.compiler.FindModule("P.cls")->Kind(), ModuleKind::Object);
    }
    {
        Fixture fixture;
        fixture.source.Add("N.cls", "VERSION 1.0 CLASS\r\nSub X\r\nEnd Sub\r\n", true);
        EXPECT_EQ(fixture.compiler.Parse("N.cls", 2), ParseResult::SyntaxErrors);
        fixture.ExpectErrors({{L"Error(s) in object header.", 2, 0, "Sub X"}}, "no VB_Name");
    }
}

TEST(CompilerTest, CodeModuleEntryRules)
{
    Fixture fixture;
    fixture.source.Add("Code", "Private Sub Main\r\nEnd Sub\r\n");
    EXPECT_EQ(fixture.compiler.Parse("Code", 3), ParseResult::Okay);
    EXPECT_EQ(fixture.compiler.FindModule("Code")->Compiled()->entry->name, "Main");
    fixture.source.Add("Code2", "Sub Main(x)\r\nEnd Sub\r\n");
    EXPECT_EQ(fixture.compiler.Parse("Code2", 3), ParseResult::Okay);
    EXPECT_EQ(fixture.compiler.FindModule("Code2")->Compiled()->entry, nullptr);
    EXPECT_EQ(fixture.compiler.Parse("Nothing here", 0), ParseResult::NotFound);
}

TEST(CompilerTest, BlockedDeclare)
{
    Fixture fixture;
    fixture.compiler.GetLexer().SetBlockedKeywords("Declare");
    EXPECT_EQ(fixture.Compile("Declare Sub F Lib \"k\"\r\n" + kMain), ParseResult::SyntaxErrors);
    fixture.ExpectErrors({{L"This language feature has been disabled.", 1, 0, "Declare Sub F Lib \"k\""}}, "blocked");
}

TEST(CompilerTest, LayoutAndProcedureRecords)
{
    Fixture fixture;
    const std::string text = "DefInt A-C, X\r\nOption Base 1\r\nDim b As Byte, l As Long, s As String * 3, v, arr(3)\r\n"
                             "Sub Main ' entry\r\n  x = 1\r\nEnd Sub\r\n";
    ASSERT_EQ(fixture.Compile(text), ParseResult::Okay);
    const Module* module = fixture.compiler.FindModule("Macro");
    const CompiledModule* compiled = module->Compiled();
    ASSERT_EQ(compiled->variables.size(), 5u);
    EXPECT_EQ(compiled->variables[0]->offset, 0u);
    EXPECT_EQ(compiled->variables[1]->offset, 4u);
    EXPECT_EQ(compiled->variables[2]->offset, 8u);
    EXPECT_EQ(compiled->variables[3]->offset, 16u);
    EXPECT_EQ(compiled->variables[4]->offset, 32u);
    EXPECT_EQ(compiled->storageSize, 44u);
    EXPECT_EQ(compiled->variables[4]->bounds, (std::vector<Bounds>{{1, 3}}));
    EXPECT_EQ(compiled->variables[3]->type.code, TypeCode(TypeCode::kVariant));
    EXPECT_EQ(module->DefaultTypeFor("apple"), TypeCode(TypeCode::kInteger));
    EXPECT_EQ(module->DefaultTypeFor("Xray"), TypeCode(TypeCode::kInteger));
    EXPECT_EQ(module->DefaultTypeFor("delta"), TypeCode(TypeCode::kVariant));
    const Procedure& main = *compiled->procedures[0];
    EXPECT_EQ(main.firstLine, 4);
    EXPECT_EQ(main.lineCount, 3);
    EXPECT_EQ(main.text, "Sub Main ' entry\r\n  x = 1\r\nEnd Sub");
    EXPECT_EQ(main.headerComment, "' entry");
}

TEST(CompilerTest, VariableStorageLimit)
{
    Fixture fixture;
    // 16 fixed strings of 23*1024 characters take 16 * 47104 bytes; 357 of them pass 16 777 216.
    std::string text = "Dim s1 As String * 23552";
    for (int i = 2; i <= 357; ++i)
        text += ", s" + std::to_string(i) + " As String * 23552";
    EXPECT_EQ(fixture.Compile(text + "\r\n" + kMain), ParseResult::SyntaxErrors);
    ASSERT_EQ(fixture.compiler.Errors().size(), 1u);
    EXPECT_EQ(fixture.compiler.Errors()[0].message, L"Variable storage space exceeded.");
    Fixture fits;
    text = "Dim s1 As String * 23552";
    for (int i = 2; i <= 356; ++i)
        text += ", s" + std::to_string(i) + " As String * 23552";
    EXPECT_EQ(fits.Compile(text + "\r\n" + kMain), ParseResult::Okay);
}

// A source whose memory reserve runs out while the driver resolves a used module's name.
class ExhaustingSource final : public ModuleSource {
public:
    std::optional<ModuleText> Read(std::string_view name) override
    {
        if (name == "Macro")
            return ModuleText{"'#Uses \"Lib\"\r\n" + kMain, false};
        return ModuleText{"Sub InLib\r\nEnd Sub\r\n", false};
    }
    std::string ResolveName(std::string_view, std::string_view name) override
    {
        compiler->GetLexer().SetMemoryExhausted(true);
        return std::string(name);
    }
    Compiler* compiler = nullptr;
};

TEST(CompilerTest, UsesOfAModuleWhenMemoryRunsOut)
{
    ExhaustingSource source;
    Compiler compiler(source);
    source.compiler = &compiler;
    EXPECT_EQ(compiler.Parse("Macro", 0), ParseResult::AllocFailed);
    ASSERT_EQ(compiler.Errors().size(), 1u);
    EXPECT_EQ(compiler.Errors()[0].number, 10001u);
    EXPECT_EQ(compiler.Errors()[0].message, L"Out of memory.");
    EXPECT_EQ(compiler.Errors()[0].lineText, "'#Uses \"Lib\"");
}

TEST(CompilerTest, ExpectingMessagesHaveOneBlankBeforeTheQuotedToken)
{
    const std::vector<ErrorCase> cases = {
        {"Type T\r\n  x As Integer\r\nEnd Sub\r\n" + kMain, {L"Expecting 'Type'", 3, 4, "End Sub"}},
        {"Enum E\r\n  A\r\nEnd Sub\r\n" + kMain, {L"Expecting 'Enum'", 3, 4, "End Sub"}},
    };
    for (const ErrorCase& row : cases) {
        Fixture fixture;
        EXPECT_EQ(fixture.Compile(row.text, 1), ParseResult::SyntaxErrors) << row.text;
        fixture.ExpectErrors({row.expected}, row.text);
    }
}

struct EnumRow {
    const char* member;
    long long value;
};

TEST(CompilerTest, EnumMembersWithoutValueCountOnFromThePreviousMember)
{
    Fixture fixture;
    const std::string text = "Enum Colour\r\n  Red\r\n  Green = 5\r\n  Blue\r\n  Cold = -3\r\n  Warm\r\n"
                             "  Hot = &H7FFF\r\n  Hotter\r\nEnd Enum\r\nConst K = Blue + Warm\r\n" + kMain;
    ASSERT_EQ(fixture.Compile(text), ParseResult::Okay);
    fixture.ExpectErrors({}, "enum");
    const CompiledModule* compiled = fixture.compiler.FindModule("Macro")->Compiled();
    ASSERT_EQ(compiled->enums.size(), 1u);
    const std::vector<Constant>& members = compiled->enums[0]->members;
    const EnumRow expected[] = {{"Red", 0},  {"Green", 5}, {"Blue", 6},       {"Cold", -3},
                                {"Warm", -2}, {"Hot", 32767}, {"Hotter", 32768}};
    ASSERT_EQ(members.size(), std::size(expected));
    for (std::size_t i = 0; i < members.size(); ++i) {
        EXPECT_EQ(members[i].name, expected[i].member);
        EXPECT_EQ(members[i].value.integer, expected[i].value) << expected[i].member;
        EXPECT_EQ(members[i].value.type, TypeCode(TypeCode::kLong)) << expected[i].member;
    }
    ASSERT_EQ(compiled->constants.size(), 1u);
    EXPECT_EQ(compiled->constants[0]->value.integer, 4);
}

TEST(CompilerTest, DateLiteralsInConstants)
{
    Fixture fixture;
    const std::string text = "Const D = #1/2/2024#, Noon = #1/2/2024 12:00:00 PM#, S = \"on \" & #1/2/2024#\r\n"
                             "Const T As Date = #12/31/1899#\r\n" + kMain;
    ASSERT_EQ(fixture.Compile(text), ParseResult::Okay);
    fixture.ExpectErrors({}, "dates");
    const CompiledModule* compiled = fixture.compiler.FindModule("Macro")->Compiled();
    ASSERT_EQ(compiled->constants.size(), 4u);
    EXPECT_EQ(compiled->constants[0]->value, ConstantValue::Real(45293.0, TypeCode::kDate));
    EXPECT_EQ(compiled->constants[0]->type, TypeCode(TypeCode::kDate));
    EXPECT_EQ(compiled->constants[1]->value, ConstantValue::Real(45293.5, TypeCode::kDate));
    EXPECT_EQ(compiled->constants[2]->value, ConstantValue::String(L"on 1/2/2024"));
    EXPECT_EQ(compiled->constants[3]->value, ConstantValue::Real(1.0, TypeCode::kDate));
}

TEST(CompilerTest, DateLiteralThatIsNoDate)
{
    Fixture fixture;
    EXPECT_EQ(fixture.Compile("Const D = #not a date#\r\n" + kMain), ParseResult::SyntaxErrors);
    ASSERT_EQ(fixture.compiler.Errors().size(), 1u);
    EXPECT_EQ(fixture.compiler.Errors()[0].message, L"Type mismatch.");
    EXPECT_EQ(fixture.compiler.Errors()[0].line, 1);
}

// Asks the declaration reader for the implicit type of one name while the body of Main compiles.
class ImplicitTypeBody final : public ProcedureBodyCompiler {
public:
    bool CompileBody(Module& module, Procedure&, Lexer& lexer) override
    {
        DeclarationReader reader(lexer, module, nullptr, nullptr, nullptr);
        accepted = reader.ImplicitType(name, suffix, followedByParen, type);
        return true;
    }
    std::string name;
    char suffix = 0;
    bool followedByParen = false;
    bool accepted = false;
    TypeCode type;
};

struct ImplicitRow {
    const char* declarations;
    const char* name;
    char suffix;
    bool followedByParen;
    std::uint16_t type;      // expected type when accepted
    const wchar_t* message;  // expected error, or null
};

TEST(CompilerTest, ImplicitTypeOfUndeclaredNames)
{
    const char* kEveryDef = "DefBool B\r\nDefByte Y\r\nDefCur C\r\nDefDate T\r\nDefLng L\r\nDefSng F\r\n"
                            "DefObj O\r\nDefVar V\r\n";
    const char* defs = "DefInt I-K\r\nDefStr S\r\nDefDbl D\r\nDim existing As Long\r\nConst C = 1\r\n";
    const ImplicitRow rows[] = {
        // The default type of the first letter, changed by Def statements.
        {defs, "index", 0, false, TypeCode::kInteger, nullptr},
        {defs, "Kilo", 0, false, TypeCode::kInteger, nullptr},
        {defs, "sName", 0, false, TypeCode::kString, nullptr},
        {defs, "delta", 0, false, TypeCode::kDouble, nullptr},
        {defs, "value", 0, false, TypeCode::kVariant, nullptr},
        {"", "index", 0, false, TypeCode::kVariant, nullptr},
        {kEveryDef, "bFlag", 0, false, TypeCode::kBoolean, nullptr},
        {kEveryDef, "yByte", 0, false, TypeCode::kByte, nullptr},
        {kEveryDef, "cMoney", 0, false, TypeCode::kCurrency, nullptr},
        {kEveryDef, "tWhen", 0, false, TypeCode::kDate, nullptr},
        {kEveryDef, "lCount", 0, false, TypeCode::kLong, nullptr},
        {kEveryDef, "fRatio", 0, false, TypeCode::kSingle, nullptr},
        {kEveryDef, "oThing", 0, false, TypeCode::kObject, nullptr},
        {kEveryDef, "vAny", 0, false, TypeCode::kVariant, nullptr},
        {kEveryDef, "oThing", '$', false, TypeCode::kString, nullptr},
        // A suffix wins over the letter.
        {defs, "index", '$', false, TypeCode::kString, nullptr},
        {defs, "n", '!', false, TypeCode::kSingle, nullptr},
        {defs, "n", '#', false, TypeCode::kDouble, nullptr},
        {defs, "n", '%', false, TypeCode::kInteger, nullptr},
        {defs, "n", '&', false, TypeCode::kLong, nullptr},
        {defs, "n", '?', false, TypeCode::kLong, nullptr},
        {defs, "n", '@', false, TypeCode::kCurrency, nullptr},
        // Existing module variables keep their type; a different suffix is refused.
        {defs, "existing", 0, false, TypeCode::kLong, nullptr},
        {defs, "EXISTING", '&', false, TypeCode::kLong, nullptr},
        {defs, "existing", '$', false, 0, L"Var is already defined as a different type."},
        {defs, "C", 0, false, 0, L"Expecting a var name."},
        {defs, "fresh", 0, true, 0, L"Expecting an already dimensioned array."},
        {"Option Explicit\r\n", "fresh", 0, false, 0, L"Expecting an existing scalar var."},
    };
    for (const ImplicitRow& row : rows) {
        const std::string context = std::string(row.declarations) + " / " + row.name + (row.suffix ? std::string(1, row.suffix) : "");
        Fixture fixture;
        ImplicitTypeBody body;
        body.name = row.name;
        body.suffix = row.suffix;
        body.followedByParen = row.followedByParen;
        fixture.compiler.SetBodyCompiler(&body);
        const ParseResult result = fixture.Compile(std::string(row.declarations) + kMain);
        if (row.message == nullptr) {
            EXPECT_EQ(result, ParseResult::Okay) << context;
            EXPECT_TRUE(body.accepted) << context;
            EXPECT_EQ(body.type, TypeCode(row.type)) << context;
        } else {
            EXPECT_EQ(result, ParseResult::SyntaxErrors) << context;
            EXPECT_FALSE(body.accepted) << context;
            ASSERT_EQ(fixture.compiler.Errors().size(), 1u) << context;
            EXPECT_EQ(fixture.compiler.Errors()[0].message, row.message) << context;
        }
    }
}

} // namespace
} // namespace brannoc
