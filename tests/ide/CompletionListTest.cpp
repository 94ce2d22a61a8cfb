// Completion lists built for sample sheet texts: the type lists after "As" and "New", the members of
// a type reached through declarations, function results and With blocks, a library's types, the
// global names, argument values, and what the prefix covers.
#include "ShopLibrary.h"

#include "ide/CompletionList.h"
#include "ide/TextDocument.h"

#include <gtest/gtest.h>

using namespace brannoc::ide;
using brannoc::test::ShopLibrary;

namespace {

// A document holding `text` with the caret where the text has "|" (the marker is removed).
struct SampleSheet {
    explicit SampleSheet(std::string text)
    {
        const size_t marker = text.find('|');
        text.erase(marker, 1);
        document.Load(text);
        const std::string before = text.substr(0, marker);
        const int line = static_cast<int>(std::count(before.begin(), before.end(), '\n'));
        const size_t lineStart = before.rfind('\n');
        const int column = static_cast<int>(lineStart == std::string::npos ? marker : marker - lineStart - 1);
        document.MoveCaret(TextPosition{line, column}, false);
    }
    TextDocument document;
};

class CompletionLists : public ::testing::Test {
protected:
    static void SetUpTestSuite() { CoInitialize(nullptr); }
    static void TearDownTestSuite() { CoUninitialize(); }

    // The list the command (or, with `command` false, an automatic trigger) shows for the text.
    std::string ListFor(const std::string& text, bool command = true, const std::string* argumentType = nullptr)
    {
        SampleSheet sheet(text);
        return BuildCompletionList(sheet.document, m_catalog, CompletionRequest{command, argumentType}).text;
    }

    ShopLibrary m_shop;
    BrowseCatalog m_catalog = m_shop.Catalog();
};

constexpr char kBasketMembers[] = "Add A\r\nCount B\r\nItem C\r\nPaint A\r\n";
constexpr char kShopTypes[] = "Shop L\r\nBasket G\r\nCart G\r\nShopColour G\r\nShopper G\r\n";

TEST_F(CompletionLists, TheLibraryIsReadable)
{
    ASSERT_NE(nullptr, m_shop.Library());
    ASSERT_EQ(1u, m_catalog.libraries.size());
}

TEST_F(CompletionLists, AsListsTheFixedTypesFirstThenEachLibrarysVisibleTypes)
{
    const std::string list = ListFor("Sub Main\r\n    Dim x As |\r\nEnd Sub\r\n", false);
    EXPECT_EQ(std::string(kFixedTypeList) + kShopTypes, list)
        << "hidden types and names beginning with \"_\" are left out";
    EXPECT_EQ(0u, list.find("Boolean G\r\nByte G\r\nInteger G\r\n"));
}

TEST_F(CompletionLists, NewListsOnlyTheTypesThatMayBeCreated)
{
    EXPECT_EQ("Shop L\r\nCart G\r\n", ListFor("Sub Main\r\n    Dim x As New |\r\nEnd Sub\r\n", false));
}

TEST_F(CompletionLists, ADotAfterAVariableListsTheMembersOfItsLibraryType)
{
    const char* rows[][2] = {
        {"Sub Main\r\n    Dim b As Basket\r\n    b.|\r\nEnd Sub\r\n", "Dim in the procedure"},
        {"Sub Main\r\n    Static b As Shop.Basket\r\n    x = b.|\r\nEnd Sub\r\n", "qualified by the library"},
        {"Sub Main(ByVal b As Basket)\r\n    b.|\r\nEnd Sub\r\n", "a parameter of the header"},
        {"Private b As Basket\r\nSub Main\r\n    b.|\r\nEnd Sub\r\n", "the declarations section"},
        {"Dim s As Shopper\r\nSub Main\r\n    s.Basket.|\r\nEnd Sub\r\n", "a member's result type"},
        {"Function Make() As Shop.Basket\r\nEnd Function\r\nSub Main\r\n    Make.|\r\nEnd Sub\r\n",
         "a Function's result type"},
        {"Property Get Current As Basket\r\nEnd Property\r\nSub Main\r\n    Current.|\r\nEnd Sub\r\n",
         "a Property Get's type"},
        {"Sub Main\r\n    Dim b As New Cart, c As Basket\r\n    c.|\r\nEnd Sub\r\n", "the second item of a Dim"},
        {"Sub Main\r\n    Dim b As New Cart\r\n    b.|\r\nEnd Sub\r\n", "a class: its default interface"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(kBasketMembers, ListFor(row[0], false)) << row[1] << "\n" << row[0];
}

TEST_F(CompletionLists, MembersBeginningWithAnUnderscoreAreLeftOut)
{
    const std::string list = ListFor("Sub Main\r\n    Dim b As Basket\r\n    b.|\r\nEnd Sub\r\n");
    EXPECT_EQ(std::string::npos, list.find("_Reset")) << list;
}

TEST_F(CompletionLists, ADeclarationInAnotherProcedureDoesNotCount)
{
    EXPECT_EQ("", ListFor("Sub First\r\n    Dim b As Basket\r\nEnd Sub\r\nSub Main\r\n    b.|\r\nEnd Sub\r\n", false));
    EXPECT_EQ("", ListFor("Sub Main\r\n    Dim b As String\r\n    b.|\r\nEnd Sub\r\n", false));
    EXPECT_EQ("", ListFor("Private Declare Function b Lib \"x\" () As Basket\r\nSub Main\r\n    b.|\r\nEnd Sub\r\n", false));
}

TEST_F(CompletionLists, ALeadingDotStandsForTheObjectOfTheWithBlock)
{
    EXPECT_EQ(kBasketMembers,
              ListFor("Dim s As Shopper\r\nSub Main\r\n    With s.Basket\r\n        .|\r\n    End With\r\nEnd Sub\r\n", false));
    EXPECT_EQ(kBasketMembers, ListFor("Dim s As Shopper\r\nSub Main\r\n    With s\r\n        With .Basket\r\n"
                                      "            x = .|\r\n        End With\r\n    End With\r\nEnd Sub\r\n",
                                      false))
        << "a nested With block starting with a dot";
    EXPECT_EQ("Basket B\r\nCheckout A\r\n",
              ListFor("Dim s As Shopper\r\nSub Main\r\n    With s\r\n        With s.Basket\r\n        End With\r\n"
                      "        .|\r\n    End With\r\nEnd Sub\r\n",
                      false))
        << "a closed inner block is stepped over";
    EXPECT_EQ("", ListFor("Sub Main\r\n    .|\r\nEnd Sub\r\n", false)) << "no With block";
}

TEST_F(CompletionLists, ALibraryNameListsItsTypesAfterAsAndItsMembersElsewhere)
{
    EXPECT_EQ("Basket G\r\nCart G\r\nShopColour G\r\nShopper G\r\n", ListFor("Dim x As Shop.|\r\n", false));
    EXPECT_EQ("Cart G\r\n", ListFor("Dim x As New Shop.|\r\n", false));
    EXPECT_EQ("Basket G\r\nCart G\r\nscGreen E\r\nscRed E\r\nShopColour G\r\nShopper G\r\n",
              ListFor("Sub Main\r\n    x = Shop.|\r\nEnd Sub\r\n", false));
}

TEST_F(CompletionLists, TheCommandListsFalseTrueAndTheGlobalNames)
{
    const std::string globals = "False E\r\nTrue E\r\nShop L\r\nscGreen E\r\nscRed E\r\nShopColour G\r\n";
    EXPECT_EQ(globals, ListFor("Sub Main\r\n    If |\r\nEnd Sub\r\n"));
    EXPECT_EQ(globals, ListFor("Sub Main\r\n    x =Tr|\r\nEnd Sub\r\n")) << "any other character before the prefix";
    EXPECT_EQ("", ListFor("Sub Main\r\n    If |\r\nEnd Sub\r\n", false)) << "an automatic trigger shows nothing there";
    EXPECT_EQ("", ListFor("Sub Main\r\n    x = |\r\nEnd Sub\r\n")) << "no word before the blank";
    EXPECT_EQ("", ListFor("Sub Main\r\n    x = (|\r\nEnd Sub\r\n")) << "no word before the parenthesis";
}

TEST_F(CompletionLists, TheCurrentArgumentListsItsValues)
{
    const std::string enumeration = "ShopColour", boolean = "Boolean", number = "Long";
    EXPECT_EQ("scGreen E\r\nscRed E\r\n", ListFor("Sub Main\r\n    b.Paint(|\r\nEnd Sub\r\n", false, &enumeration));
    EXPECT_EQ("scGreen E\r\nscRed E\r\n", ListFor("Sub Main\r\n    b.Add \"x\", |\r\nEnd Sub\r\n", false, &enumeration));
    EXPECT_EQ("False E\r\nTrue E\r\n", ListFor("Sub Main\r\n    b.Paint(scRed, |\r\nEnd Sub\r\n", false, &boolean));
    EXPECT_EQ("", ListFor("Sub Main\r\n    b.Paint(|\r\nEnd Sub\r\n", false, &number));
    EXPECT_EQ("scGreen E\r\nscRed E\r\n", ArgumentListText(m_catalog, "Shop.ShopColour"));
}

TEST_F(CompletionLists, ThePrefixRunsFromTheWordStartToTheCaret)
{
    SampleSheet sheet("Sub Main\r\n    Dim x As Int|eger\r\nEnd Sub\r\n");
    CompletionList automatic = BuildCompletionList(sheet.document, m_catalog, CompletionRequest{false});
    EXPECT_EQ(13, automatic.prefixStart);
    EXPECT_EQ(16, automatic.prefixEnd);
    CompletionList command = BuildCompletionList(sheet.document, m_catalog, CompletionRequest{true});
    EXPECT_EQ(13, command.prefixStart);
    EXPECT_EQ(17, command.prefixEnd) << "the command counts the word character at the caret into the prefix";
    EXPECT_EQ(1, command.line);
}

TEST_F(CompletionLists, KindLettersFollowTheMemberKinds)
{
    EXPECT_EQ('E', MemberKindLetter(*ParseMemberLine("0x40000000:scRed As Long", true)));
    EXPECT_EQ('A', MemberKindLetter(*ParseMemberLine("0x00000002:Add Name As String")));
    EXPECT_EQ('A', MemberKindLetter(*ParseMemberLine("0x00000003:Paint(Glossy As Boolean) As Boolean")));
    EXPECT_EQ('B', MemberKindLetter(*ParseMemberLine("0x00000001:Count() As Long=>")));
    EXPECT_EQ('C', MemberKindLetter(*ParseMemberLine("0x00000000:Item(Index As Long) As Variant=>")));
}

} // namespace
