// Parameter information: the calls open at the caret, the argument index with nested parentheses,
// optional parameters in square brackets, argument types, and the prototypes found for sheet
// procedures and library members.
#include "ShopLibrary.h"

#include "ide/CodeDeclarations.h"
#include "ide/ParameterInfo.h"

#include <gtest/gtest.h>

using namespace brannoc::ide;
using brannoc::test::ShopLibrary;

namespace {

// The line up to the caret marker "|", and the caret's column.
struct CaretLine {
    explicit CaretLine(std::string text) : column(static_cast<int>(text.find('|')))
    {
        text.erase(static_cast<size_t>(column), 1);
        line = text;
    }
    std::string line;
    int column;
};

std::vector<std::string> SiteNames(const std::string& text)
{
    CaretLine caret(text);
    std::vector<std::string> names;
    for (const CallSite& site : OpenCallSites(caret.line, caret.column))
        names.push_back(site.name);
    return names;
}

int IndexOfInnermost(const std::string& text)
{
    CaretLine caret(text);
    std::vector<CallSite> sites = OpenCallSites(caret.line, caret.column);
    return sites.empty() ? -2 : ArgumentIndex(caret.line, sites.front(), caret.column);
}

TEST(ParameterInfo, OpenCallsAreFoundInnermostFirst)
{
    EXPECT_EQ((std::vector<std::string>{"Bar", "Foo", "x"}), SiteNames("    x = Foo(a(1, 2), Bar(3, |"))
        << "the assigned name is a call site too (a property being assigned)";
    EXPECT_EQ((std::vector<std::string>{"Foo", "x"}), SiteNames("    x = Foo(a(1, 2), Bar(3, 4), |"));
    EXPECT_EQ((std::vector<std::string>{"MsgBox"}), SiteNames("    MsgBox \"a, (b\", |"))
        << "commas and parentheses inside strings do not count";
    EXPECT_EQ((std::vector<std::string>{"obj.Title"}), SiteNames("    obj.Title = |"));
    EXPECT_EQ((std::vector<std::string>{"Add", "x"}), SiteNames("    x = Add%(|")) << "a type character ends the name";
    EXPECT_EQ((std::vector<std::string>{"a(1).Run"}), SiteNames("    a(1).Run(|"));
    EXPECT_EQ((std::vector<std::string>{"Second"}), SiteNames("    First 1: Second |")) << "after a \":\"";
    EXPECT_TRUE(SiteNames("    MsgBox \"(|").empty()) << "inside a string";
    EXPECT_TRUE(SiteNames("    ' Foo(|").empty()) << "inside a comment";
}

TEST(ParameterInfo, TheArgumentIndexCountsCommasAtDepthZero)
{
    EXPECT_EQ(0, IndexOfInnermost("    x = Foo(|"));
    EXPECT_EQ(2, IndexOfInnermost("    x = Foo(a(1, 2), Bar(3, 4), |"));
    EXPECT_EQ(1, IndexOfInnermost("    x = Foo(a(1, 2), Bar(3, |"));
    EXPECT_EQ(1, IndexOfInnermost("    MsgBox \"a, b\", |"));
    EXPECT_EQ(1, IndexOfInnermost("    Show a:=1, |")) << "a named argument's \":=\" is no separator";

    CaretLine closed("    x = Foo(1, 2)|");
    EXPECT_EQ(-1, ArgumentIndex(closed.line, CallSite{"Foo", 8, 11, CallOpening::Parenthesis}, closed.column));
    CaretLine separated("    Foo 1, 2: |");
    EXPECT_EQ(-1, ArgumentIndex(separated.line, CallSite{"Foo", 4, 7, CallOpening::Blank}, separated.column));
    CaretLine before("    Foo|(1)");
    EXPECT_EQ(-1, ArgumentIndex(before.line, CallSite{"Foo", 4, 7, CallOpening::Parenthesis}, before.column));
}

TEST(ParameterInfo, OptionalParametersStandInSquareBrackets)
{
    const char* rows[][2] = {
        {"Add(Name As String, Optional Colour As ShopColour)", "Add(Name As String, [Colour As ShopColour])"},
        {"Foo(a, Optional b As Variant) As Long", "Foo(a, [b]) As Long"},
        {"Foo(Optional x As Integer = 5, Optional y)", "Foo([x As Integer = 5], [y])"},
        {"Foo(a() As Integer, Optional ByVal b As Variant)", "Foo(a() As Integer, [ByVal b])"},
        {"NoOptional(a As Long)", "NoOptional(a As Long)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row[1], BracketOptionals(row[0])) << row[0];
}

TEST(ParameterInfo, TheArgumentTypeIsTakenFromThePrototype)
{
    const std::string prototype = "Paint(Colour As ShopColour, Glossy As Boolean) As Boolean";
    EXPECT_EQ("ShopColour", ParameterTypeAt(prototype, 0));
    EXPECT_EQ("Boolean", ParameterTypeAt(prototype, 1));
    EXPECT_EQ("", ParameterTypeAt(prototype, 2));
    EXPECT_EQ("Long", ParameterTypeAt("Foo(a() As Integer, [b As Long = 3])", 1));
    EXPECT_EQ("Integer", ParameterTypeAt("Foo(a() As Integer, [b As Long = 3])", 0)) << "\"()\" is stepped over";
    EXPECT_EQ("", ParameterTypeAt("Foo(a, [b])", 1));
    EXPECT_TRUE(HasParameters("Foo(a)"));
    EXPECT_FALSE(HasParameters("Main()"));
    EXPECT_FALSE(HasParameters("Size As Currency"));
}

TEST(ParameterInfo, LibraryPrototypesDropPropertyMarksAndDefaultValues)
{
    EXPECT_EQ("Add(Name As String, Optional Colour As ShopColour)",
              MemberPrototype(*ParseMemberLine("0x00000002:Add Name As String, Optional Colour As ShopColour")));
    EXPECT_EQ("MsgBox(Prompt As String, Optional Buttons As Variant) As Long",
              MemberPrototype(*ParseMemberLine("0x60020001:MsgBox(Prompt As String, Optional Buttons As Variant : 0) As Long")));
    EXPECT_EQ("Item(Index As Long) As Variant", MemberPrototype(*ParseMemberLine("0x00000000:Item(Index As Long) As Variant=>")));
    EXPECT_EQ("Size As Currency", MemberPrototype(*ParseMemberLine("0x00000004:Size As Currency")));
}

class ParameterTips : public ::testing::Test {
protected:
    static void SetUpTestSuite() { CoInitialize(nullptr); }
    static void TearDownTestSuite() { CoUninitialize(); }

    std::optional<ParameterTip> TipFor(std::string text)
    {
        const size_t marker = text.find('|');
        text.erase(marker, 1);
        m_document.Load(text);
        const std::string before = text.substr(0, marker);
        const size_t lineStart = before.rfind('\n');
        m_document.MoveCaret(TextPosition{static_cast<int>(std::count(before.begin(), before.end(), '\n')),
                                          static_cast<int>(marker - lineStart - 1)},
                             false);
        return FindParameterTip(m_document, m_catalog);
    }

    ShopLibrary m_shop;
    BrowseCatalog m_catalog = m_shop.Catalog();
    TextDocument m_document;
};

constexpr char kAddFunction[] = "Function Add(a As Integer, Optional b As Integer = 2) As Integer\r\nEnd Function\r\n";

TEST_F(ParameterTips, ASheetProcedureGivesTheParameterPartOfItsHeader)
{
    std::optional<ParameterTip> tip = TipFor(std::string(kAddFunction) + "Sub Main\r\n    x = Add(1, |\r\nEnd Sub\r\n");
    ASSERT_TRUE(tip.has_value());
    EXPECT_EQ("Add(a As Integer, [b As Integer = 2]) As Integer", tip->prototype);
    EXPECT_EQ(1, tip->argument);
    EXPECT_EQ(11, tip->site.openColumn);
    EXPECT_EQ(3, tip->line);
}

TEST_F(ParameterTips, AStatementCallAndATypeCharacterOpenTheArguments)
{
    std::optional<ParameterTip> blank = TipFor("Sub Report(Text As String, Count As Long)\r\nEnd Sub\r\nSub Main\r\n    Report |\r\nEnd Sub\r\n");
    ASSERT_TRUE(blank.has_value());
    EXPECT_EQ("Report(Text As String, Count As Long)", blank->prototype);
    EXPECT_EQ(0, blank->argument);
    std::optional<ParameterTip> typed = TipFor(std::string(kAddFunction) + "Sub Main\r\n    x = Add%(|\r\nEnd Sub\r\n");
    ASSERT_TRUE(typed.has_value());
    EXPECT_EQ(0, typed->argument);
}

TEST_F(ParameterTips, ALibraryMemberGivesItsDescription)
{
    std::optional<ParameterTip> tip = TipFor("Sub Main\r\n    Dim b As Basket\r\n    b.Add \"pear\", |\r\nEnd Sub\r\n");
    ASSERT_TRUE(tip.has_value());
    EXPECT_EQ("Add(Name As String, [Colour As ShopColour])", tip->prototype);
    EXPECT_EQ(1, tip->argument);
    std::optional<ParameterTip> function = TipFor("Dim s As Shopper\r\nSub Main\r\n    ok = s.Basket.Paint(|\r\nEnd Sub\r\n");
    ASSERT_TRUE(function.has_value());
    EXPECT_EQ("Paint(Colour As ShopColour, Glossy As Boolean) As Boolean", function->prototype);
}

TEST_F(ParameterTips, AnAssignmentShowsTheProperty)
{
    std::optional<ParameterTip> tip =
        TipFor("Property Get Size(Index As Integer) As Long\r\nEnd Property\r\nProperty Let Size(Index As Integer, Value As Long)\r\n"
               "End Property\r\nSub Main\r\n    Size = |\r\nEnd Sub\r\n");
    ASSERT_TRUE(tip.has_value());
    EXPECT_EQ("Size(Index As Integer, Value As Long)", tip->prototype) << "the Let of the property being assigned";
}

TEST_F(ParameterTips, NoTipWithoutParametersOrOutsideACall)
{
    EXPECT_FALSE(TipFor("Sub Tidy\r\nEnd Sub\r\nSub Main\r\n    Tidy |\r\nEnd Sub\r\n").has_value()) << "\"() \" has no parameters";
    EXPECT_FALSE(TipFor(std::string(kAddFunction) + "Sub Main\r\n    x = Add(1, 2)|\r\nEnd Sub\r\n").has_value());
    EXPECT_FALSE(TipFor(std::string(kAddFunction) + "Sub Main\r\n    x = Add(1, 2): |\r\nEnd Sub\r\n").has_value());
    EXPECT_FALSE(TipFor("Sub Main\r\n    Dim x As |\r\nEnd Sub\r\n").has_value());
}

TEST(CodeDeclarations, DeclaredTypesAreFoundInTheirOrder)
{
    TextDocument document;
    document.Load("Private Shared As Alpha, Other As Lib.Beta\r\nPublic WithEvents Sink As Gamma\r\n"
                  "Function Make(Optional ByVal n As Long = 1) As Delta\r\nEnd Function\r\n"
                  "Sub Main(ByRef Shared As Epsilon)\r\n    Dim Local As New Zeta: ReDim Grid(3) As Eta\r\n    x = 1\r\nEnd Sub\r\n");
    const int inMain = 6;
    EXPECT_EQ("Epsilon", DeclaredTypeOf(document, inMain, "shared")) << "the procedure's parameter comes first";
    EXPECT_EQ("Alpha", DeclaredTypeOf(document, 3, "Shared")) << "outside Main the declarations section";
    EXPECT_EQ("Lib.Beta", DeclaredTypeOf(document, inMain, "Other"));
    EXPECT_EQ("Gamma", DeclaredTypeOf(document, inMain, "Sink"));
    EXPECT_EQ("Zeta", DeclaredTypeOf(document, inMain, "Local"));
    EXPECT_EQ("Eta", DeclaredTypeOf(document, inMain, "Grid"));
    EXPECT_EQ("Delta", DeclaredTypeOf(document, inMain, "Make"));
    EXPECT_EQ("", DeclaredTypeOf(document, inMain, "Missing"));
    EXPECT_EQ("", DeclaredTypeOf(document, 1, "Local")) << "not outside its procedure";
}

TEST(CodeDeclarations, HeadersAreTakenApart)
{
    std::optional<ProcedureHeader> header = ParseProcedureHeader("Public Function Add%(a As Integer) As Integer");
    ASSERT_TRUE(header.has_value());
    EXPECT_EQ("Add", header->name);
    EXPECT_EQ("(a As Integer) As Integer", header->parameterPart);
    std::optional<ProcedureHeader> bare = ParseProcedureHeader("Sub Main");
    ASSERT_TRUE(bare.has_value());
    EXPECT_EQ("()", bare->parameterPart) << "\"() \" put in front of a header without a list";
    EXPECT_FALSE(ParseProcedureHeader("Private Declare Sub Beep Lib \"k\"").has_value());
    EXPECT_FALSE(ParseProcedureHeader("x = 1").has_value());
}

} // namespace
